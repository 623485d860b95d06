#include "KXGdiplusImage.h"

#include "draw/Encoder.h"
#include "draw/FitRect.h"
#include "draw/MemoryStream.h"
#include "draw/NoImageMessage.h"
#include "draw/Pave.h"
#include "draw/WideText.h"
#include "internal/Debug.h"
#include "internal/Guard.h"
#include "platform/File.h"
#include "platform/Module.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

using kx::Guard;
using kx::draw::MemoryStream;

namespace {

// Every channel becomes the luminance; the opacity stays.
constexpr Gdiplus::ColorMatrix matrixGray{{{0.3F, 0.3F, 0.3F, 0, 0},
                                           {0.59F, 0.59F, 0.59F, 0, 0},
                                           {0.11F, 0.11F, 0.11F, 0, 0},
                                           {0, 0, 0, 1, 0},
                                           {0, 0, 0, 0, 1}}};

CSize SizeOf(const Gdiplus::Image& image)
{
    return {static_cast<int>(image.GetWidth()), static_cast<int>(image.GetHeight())};
}

// Whether the first bytes of a file are those of a picture.
bool IsPicture(const BYTE* pHead, std::size_t nBytes)
{
    const kx::debug::Quiet quiet;
    const auto memory = MemoryStream::CopyOf(pHead, nBytes);
    return !memory.pStream ||
           Gdiplus::Image(memory.pStream.get()).GetLastStatus() != Gdiplus::UnknownImageFormat;
}

} // namespace

CKXGdiplusImage::~CKXGdiplusImage()
{
    Free();
}

void CKXGdiplusImage::Free()
{
    m_pImage.reset();
    m_hGlobal.reset();
}

CSize CKXGdiplusImage::GetImageSize() const
{
    return m_pImage ? SizeOf(*m_pImage) : CSize();
}

int CKXGdiplusImage::Load(unsigned int nID)
{
    const HINSTANCE hModule = AfxGetResourceHandle();
    const HRSRC hResource = FindResourceA(hModule, MAKEINTRESOURCEA(static_cast<WORD>(nID)), "IMAGE");
    const HGLOBAL hData = hResource ? LoadResource(hModule, hResource) : nullptr;
    if (!hData) return 0;
    const int bLoaded = Guard([&] {
        auto memory = MemoryStream::CopyOf(LockResource(hData), SizeofResource(hModule, hResource));
        if (!memory.pStream) return 0;
        const int bRead = Load(memory.pStream.get());
        if (m_pImage) m_hGlobal = std::move(memory.pBlock);
        return bRead;
    });
    FreeResource(hData);
    return bLoaded;
}

int CKXGdiplusImage::Load(const char* pszPath)
{
    return Guard([&] {
        CFile file;
        if (!file.Open(pszPath, CFile::modeRead | CFile::shareDenyNone)) {
            kx::debug::Tell("picture", "%s can't be opened; there is no new picture", pszPath ? pszPath : "");
            return 0;
        }
        const kx::debug::StreamName name(pszPath);
        std::array<BYTE, 16> head;
        const std::size_t nHead = file.Read(head.data(), head.size());
        if (!IsPicture(head.data(), nHead)) return Load(head.data(), nHead); // there is no need of the rest
        const std::uint64_t nLength = file.GetLength();
        if (nLength > Gdiplus::MAX_IMAGE_BYTES)
            kx::debug::Tell("picture", "%s is refused: it is too large; there is no new picture", pszPath);
        if (nLength > Gdiplus::MAX_IMAGE_BYTES || nLength < nHead) return 0;
        const auto pData = std::make_unique_for_overwrite<BYTE[]>(nLength);
        std::copy_n(head.data(), nHead, pData.get());
        const std::size_t nRead = nHead + file.Read(pData.get() + nHead, nLength - nHead);
        return Load(pData.get(), nRead);
    });
}

int CKXGdiplusImage::Load(BYTE* pData, unsigned long nSize)
{
    return Guard([&] {
        auto memory = MemoryStream::CopyOf(pData, nSize);
        if (!memory.pStream) return 0;
        auto pImage = std::make_shared<Gdiplus::Image>(memory.pStream.get());
        Free();
        m_pImage = std::move(pImage);
        m_hGlobal = std::move(memory.pBlock);
        return 1;
    });
}

int CKXGdiplusImage::Load(IStream* pStream)
{
    Free();
    return Guard([&] {
        m_pImage = std::make_shared<Gdiplus::Image>(pStream, m_bUseEmbeddedColorManagement);
        return static_cast<int>(m_pImage->GetLastStatus() == Gdiplus::Ok);
    });
}

void CKXGdiplusImage::Rotate(Gdiplus::RotateFlipType nType)
{
    if (m_pImage) m_pImage->RotateFlip(nType);
}

void CKXGdiplusImage::Render(Gdiplus::Graphics& graphics, const CPoint& pt) const
{
    if (m_pImage) graphics.DrawImage(m_pImage.get(), pt.x, pt.y);
}

void CKXGdiplusImage::Render(CDC* pDC, CRect rc) const
{
    if (!m_pImage || !pDC) return;
    Gdiplus::Graphics graphics(pDC->m_hDC);
    Render(graphics, rc);
}

void CKXGdiplusImage::Render(Gdiplus::Graphics& graphics, CRect rc) const
{
    if (!m_pImage) return;
    if (rc == CRect()) rc = CRect(0, 0, GetImageSize().cx, GetImageSize().cy);
    graphics.DrawImage(m_pImage.get(), rc.left, rc.top, rc.Width(), rc.Height());
}

void CKXGdiplusImage::PaveRender(CDC* pDC, const CRect& rc) const
{
    if (m_pImage) kx::draw::Pave(pDC, *m_pImage, rc);
}

void CKXGdiplusImage::PaveRender(Gdiplus::Graphics& graphics, const CRect& rc) const
{
    if (m_pImage) kx::draw::Pave(graphics, *m_pImage, rc);
}

CRect CKXGdiplusImage::FixedIn(const CRect& rc) const
{
    return m_pImage ? kx::draw::FitRect(rc, GetImageSize()) : rc;
}

void CKXGdiplusImage::GetFixRenderRect(CRect& rc)
{
    rc = FixedIn(rc);
}

void CKXGdiplusImage::FixRender(CDC* pDC, const CRect& rc) const
{
    Render(pDC, FixedIn(rc));
}

void CKXGdiplusImage::FixRender(Gdiplus::Graphics& graphics, const CRect& rc) const
{
    Render(graphics, FixedIn(rc));
}

int CKXGdiplusImage::GetImageData(BYTE** ppData, int& nSize)
{
    if (!m_pImage) return 0;
    return Guard([&] { return kx::draw::Save(*m_pImage, u"image/jpeg", ppData, nSize); });
}

int CKXGdiplusImage::SaveGrayPic(const CString& strPath)
{
    if (!m_pImage) return 0;
    return Guard([&] {
        const CSize size = GetImageSize();
        const auto cx = static_cast<float>(size.cx);
        const auto cy = static_cast<float>(size.cy);
        Gdiplus::Bitmap gray(size.cx, size.cy, Gdiplus::PixelFormat32bppARGB);
        Gdiplus::ImageAttributes attributes;
        attributes.SetColorMatrix(&matrixGray, Gdiplus::ColorMatrixFlagsDefault,
                                  Gdiplus::ColorAdjustTypeDefault);
        Gdiplus::Graphics graphics(&gray);
        graphics.DrawImage(m_pImage.get(), 0, 0, cx, cy, 0, 0, cx, cy, Gdiplus::UnitPixel, &attributes);
        return kx::draw::Save(gray, strPath, u"image/jpeg");
    });
}

int CKXGdiplusImage::SaveThumbnailImage(const CString& strPath, int nWidth, int nHeight,
                                        CString strMimeType) const
{
    if (!m_pImage) return kx::draw::TellNoImage();
    return Guard([&] {
        const auto pThumbnail = kx::draw::MakeThumbnail(*m_pImage, nWidth, nHeight);
        return pThumbnail ? kx::draw::Save(*pThumbnail, strPath, kx::draw::WideText(strMimeType)) : 0;
    });
}

int CKXGdiplusImage::ToThumbnailImage(int nMaxWidth, int nMaxHeight)
{
    if (!m_pImage) return 0;
    CSize size = GetImageSize();
    if (size.cx <= nMaxWidth && size.cy <= nMaxHeight) return 1;
    size = kx::draw::ReduceToFit(size, nMaxWidth, nMaxHeight);
    if (size.cx <= 0 || size.cy <= 0) return 0;
    return Guard([&] {
        std::shared_ptr<Gdiplus::Image> pThumbnail = kx::draw::MakeThumbnail(*m_pImage, size.cx, size.cy);
        if (!pThumbnail || pThumbnail->GetLastStatus() != Gdiplus::Ok) return 0;
        m_pImage = std::move(pThumbnail);
        return 1;
    });
}

int CKXGdiplusImage::GetEncoderClsid(const unsigned short* pszMimeType, GUID* pClsid)
{
    return kx::draw::FindEncoder(pszMimeType, pClsid);
}
