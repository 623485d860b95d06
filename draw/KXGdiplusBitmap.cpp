#include "KXGdiplusBitmap.h"

#include "draw/Encoder.h"
#include "draw/FitRect.h"
#include "draw/MemoryStream.h"
#include "draw/NoImageMessage.h"
#include "draw/Pave.h"
#include "draw/WideText.h"
#include "internal/Guard.h"
#include "internal/Wrap.h"

#include <algorithm>
#include <cstddef>
#include <utility>

using kx::Guard;
using kx::Plus;

namespace {

// A picture that reads from a block. Such a block ends with the last object that shares the picture.
struct BitmapInMemory
{
    explicit BitmapInMemory(kx::draw::MemoryStream memory)
        : pBlock(std::move(memory.pBlock)), bitmap(memory.pStream.get())
    {
    }
    std::shared_ptr<void> pBlock;
    Gdiplus::Bitmap bitmap;
};

// The block from one corner pixel to the other.
CRect Inclusive(int nLeft, int nTop, int nRight, int nBottom)
{
    return {nLeft, nTop, Plus(nRight, 1), Plus(nBottom, 1)};
}

bool IsPictureSize(unsigned long nWidth, unsigned long nHeight)
{
    constexpr unsigned long nMaxSide = Gdiplus::MAX_IMAGE_SIDE;
    return nWidth <= nMaxSide && nHeight <= nMaxSide && nWidth * nHeight <= Gdiplus::MAX_IMAGE_PIXELS;
}

} // namespace

CKXGdiplusBitmap::CKXGdiplusBitmap(HBITMAP hBitmap)
{
    Guard([&] {
        Hold(std::make_shared<Gdiplus::Bitmap>(hBitmap, nullptr));
        return 1;
    });
}

CKXGdiplusBitmap::CKXGdiplusBitmap(const CKXGdiplusBitmap& bitmap)
{
    *this = bitmap;
}

CKXGdiplusBitmap& CKXGdiplusBitmap::operator=(const CKXGdiplusBitmap& bitmap)
{
    if (this == &bitmap || bitmap.m_pBitmap == m_pBitmap || bitmap.m_pBuffer == m_pBuffer) return *this;
    Free();
    m_nWidth = bitmap.m_nWidth;
    m_nHeight = bitmap.m_nHeight;
    if (bitmap.m_pBuffer)
        HoldPixels(m_nWidth, m_nHeight, bitmap.m_pBuffer.get(), Gdiplus::PixelFormat32bppARGB);
    else
        m_pBitmap = bitmap.m_pBitmap;
    return *this;
}

CKXGdiplusBitmap::~CKXGdiplusBitmap()
{
    Free();
}

void CKXGdiplusBitmap::Free()
{
    m_pBitmap.reset();
    m_pBuffer.reset();
}

CSize CKXGdiplusBitmap::GetImageSize() const
{
    return {static_cast<int>(m_nWidth), static_cast<int>(m_nHeight)};
}

void CKXGdiplusBitmap::GetImageSize(unsigned long& nWidth, unsigned long& nHeight) const
{
    nWidth = m_nWidth;
    nHeight = m_nHeight;
}

void CKXGdiplusBitmap::Hold(std::shared_ptr<Gdiplus::Bitmap> pBitmap)
{
    m_pBitmap = std::move(pBitmap);
    m_nWidth = m_pBitmap->GetWidth();
    m_nHeight = m_pBitmap->GetHeight();
}

// For an empty object, which stays so for a lack of memory.
void CKXGdiplusBitmap::HoldPixels(DWORD nWidth, DWORD nHeight, const void* pPixels,
                                  Gdiplus::PixelFormat format)
{
    Guard([&] {
        const std::size_t nStride = std::size_t{nWidth} * 4;
        auto pBuffer = std::make_unique_for_overwrite<BYTE[]>(nStride * nHeight);
        std::copy_n(static_cast<const BYTE*>(pPixels), nStride * nHeight, pBuffer.get());
        m_pBitmap = std::make_shared<Gdiplus::Bitmap>(static_cast<int>(nWidth), static_cast<int>(nHeight),
                                                      static_cast<int>(nStride), format, pBuffer.get());
        m_pBuffer = std::move(pBuffer);
        m_nWidth = nWidth;
        m_nHeight = nHeight;
        return 1;
    });
}

void CKXGdiplusBitmap::Load(const char* pszPath)
{
    Free();
    Guard([&] {
        Hold(std::make_shared<Gdiplus::Bitmap>(kx::draw::WideText(pszPath)));
        return 1;
    });
}

void CKXGdiplusBitmap::Load(unsigned long nWidth, unsigned long nHeight, DWORD* const pPixels)
{
    Free();
    if (!pPixels || !IsPictureSize(nWidth, nHeight)) return;
    HoldPixels(static_cast<DWORD>(nWidth), static_cast<DWORD>(nHeight), pPixels,
               Gdiplus::PixelFormat32bppRGB);
}

int CKXGdiplusBitmap::Load(BYTE* pData, unsigned long nSize)
{
    return Guard([&] {
        auto memory = kx::draw::MemoryStream::CopyOf(pData, nSize);
        if (!memory.pStream) return 0;
        const auto pPicture = std::make_shared<BitmapInMemory>(std::move(memory));
        Free();
        Hold({pPicture, &pPicture->bitmap});
        return 1;
    });
}

int CKXGdiplusBitmap::DrawInto(Gdiplus::Graphics& graphics, const CRect& rc) const
{
    if (!m_pBitmap) return 0;
    graphics.DrawImage(m_pBitmap.get(), rc.left, rc.top, rc.Width(), rc.Height());
    return 1;
}

int CKXGdiplusBitmap::DrawInto(const CDC* pDC, const CRect& rc) const
{
    if (!m_pBitmap || !pDC) return 0;
    Gdiplus::Graphics graphics(pDC->m_hDC);
    return DrawInto(graphics, rc);
}

int CKXGdiplusBitmap::Render(CDC* pDC, int x, int y) const
{
    const CSize size = GetImageSize();
    return DrawInto(pDC, CRect(x, y, Plus(x, size.cx), Plus(y, size.cy)));
}

int CKXGdiplusBitmap::Render(CDC* pDC, int nLeft, int nTop, int nRight, int nBottom) const
{
    return DrawInto(pDC, Inclusive(nLeft, nTop, nRight, nBottom));
}

int CKXGdiplusBitmap::Render(Gdiplus::Graphics* pGraphics, int nLeft, int nTop, int nRight, int nBottom) const
{
    return pGraphics ? DrawInto(*pGraphics, Inclusive(nLeft, nTop, nRight, nBottom)) : 0;
}

int CKXGdiplusBitmap::Render(CDC* pDC, const CRect& rc) const
{
    return DrawInto(pDC, rc);
}

CRect CKXGdiplusBitmap::GetFitRenderRect(const CRect& rc) const
{
    return kx::draw::FitRect(rc, GetImageSize());
}

int CKXGdiplusBitmap::FitRender(CDC* pDC, const CRect& rc) const
{
    const CRect fit = GetFitRenderRect(rc);
    if (!DrawInto(pDC, fit)) return 0;
    SelectObject(pDC->m_hDC, GetStockObject(NULL_BRUSH));
    Rectangle(pDC->m_hDC, fit.left, fit.top, fit.right, fit.bottom);
    return 1;
}

void CKXGdiplusBitmap::PaveRender(CDC* pDC, const CRect& rc) const
{
    if (m_pBitmap) kx::draw::Pave(pDC, *m_pBitmap, rc);
}

int CKXGdiplusBitmap::SaveToFile(const CString& strPath, CString strMimeType) const
{
    if (!m_pBitmap) return kx::draw::TellNoImage();
    return Guard([&] { return kx::draw::Save(*m_pBitmap, strPath, kx::draw::WideText(strMimeType)); });
}

int CKXGdiplusBitmap::ThumbnailImage(const CString& strPath, int nWidth, int nHeight) const
{
    if (!m_pBitmap) return kx::draw::TellNoImage();
    return Guard([&] {
        const auto pThumbnail = kx::draw::MakeThumbnail(*m_pBitmap, nWidth, nHeight);
        return pThumbnail ? kx::draw::Save(*pThumbnail, strPath, u"image/jpeg") : 0;
    });
}

int CKXGdiplusBitmap::ThumbnailImage(BYTE** ppData, int& nSize, int nWidth, int nHeight) const
{
    if (!m_pBitmap) return kx::draw::TellNoImage();
    return Guard([&] {
        const auto pThumbnail = kx::draw::MakeThumbnail(*m_pBitmap, nWidth, nHeight);
        return pThumbnail ? kx::draw::Save(*pThumbnail, u"image/bmp", ppData, nSize) : 0;
    });
}

int CKXGdiplusBitmap::GetEncoderClsid(const unsigned short* pszMimeType, GUID* pClsid)
{
    return kx::draw::FindEncoder(pszMimeType, pClsid);
}
