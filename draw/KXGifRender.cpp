#include "KXGifRender.h"

#include "draw/FitRect.h"
#include "draw/WideText.h"
#include "internal/Guard.h"

#include <cstdint>
#include <cstring>
#include <vector>

using kx::Guard;

namespace {

constexpr DWORD nNoFrame = 0xFFFFFFFF;
constexpr DWORD nDefaultDelay = 100;

// A property with its record, in one block; a record without a value where the picture has no such property.
std::shared_ptr<Gdiplus::PropertyItem> ReadProperty(const Gdiplus::Image& image, Gdiplus::PROPID id)
{
    using Gdiplus::PropertyItem;
    const UINT nSize = image.GetPropertyItemSize(id);
    const auto pBlock = std::make_shared<PropertyItem[]>(nSize / sizeof(PropertyItem) + 1);
    if (nSize < sizeof(PropertyItem) || image.GetPropertyItem(id, nSize, pBlock.get()) != Gdiplus::Ok)
        pBlock[0] = {};
    return {pBlock, pBlock.get()};
}

// The delay of a frame in milliseconds; 0 where the property has none for it.
std::uint64_t DelayOf(const Gdiplus::PropertyItem& item, DWORD nFrame)
{
    DWORD nHundredths = 0;
    if (nFrame < item.length / sizeof(nHundredths))
        std::memcpy(&nHundredths, static_cast<const BYTE*>(item.value) + nFrame * sizeof(nHundredths),
                    sizeof(nHundredths));
    return std::uint64_t{nHundredths} * 10;
}

DWORD CountFrames(const Gdiplus::Image& image)
{
    const UINT nDimensions = image.GetFrameDimensionsCount();
    if (nDimensions == 0) return 0;
    std::vector<GUID> dimensions(nDimensions);
    image.GetFrameDimensionsList(dimensions.data(), nDimensions);
    return image.GetFrameCount(dimensions.data());
}

} // namespace

CKXGifRender::~CKXGifRender() = default;

int CKXGifRender::Load(const CString& strPath)
{
    Release();
    if (strPath.IsEmpty()) return 0;
    return Guard([&] {
        m_pImage = std::make_shared<Gdiplus::Image>(kx::draw::WideText(strPath));
        if (m_pImage->GetLastStatus() != Gdiplus::Ok) return 0;
        m_pDelayItem = ReadProperty(*m_pImage, Gdiplus::PropertyTagFrameDelay);
        m_nFrameCount = CountFrames(*m_pImage);
        return 1;
    });
}

void CKXGifRender::Release()
{
    m_pImage.reset();
    m_pDelayItem.reset();
    m_nFrameCount = 0;
    m_nCurFrame = nNoFrame;
}

void CKXGifRender::PlayNextFrame()
{
    if (!m_pImage || !m_pDelayItem) return;
    if (++m_nCurFrame >= m_nFrameCount) m_nCurFrame = 0;
    m_pImage->SelectActiveFrame(&Gdiplus::FrameDimensionTime, m_nCurFrame);
    const std::uint64_t nDelay = DelayOf(*m_pDelayItem, m_nCurFrame);
    m_nFrameDelay = nDelay < 10 || nDelay > 0xFF00 ? nDefaultDelay : static_cast<DWORD>(nDelay);
}

int CKXGifRender::Play()
{
    if (!CanPlay() || m_nPlayState != Stopped) return 0;
    m_nCurFrame = nNoFrame;
    PlayNextFrame();
    m_nPlayState = Running;
    return 1;
}

int CKXGifRender::Playing(unsigned long dwNow)
{
    if (!CanPlay() || m_nPlayState != Running) return 0;
    const auto nNow = static_cast<DWORD>(dwNow);
    if (nNow - m_dwLastTime >= m_nFrameDelay) {
        PlayNextFrame();
        m_dwLastTime = nNow;
    }
    return 1;
}

void CKXGifRender::Pause()
{
    m_nPlayState = m_nPlayState == Paused ? Running : Paused;
}

int CKXGifRender::Stop()
{
    if (m_nPlayState == Stopped) return 0;
    m_nPlayState = Stopped;
    return 1;
}

void CKXGifRender::Render(CDC* pDC, int x, int y)
{
    if (!m_pImage) return;
    Gdiplus::Graphics graphics(pDC ? pDC->m_hDC : nullptr);
    graphics.DrawImage(m_pImage.get(), x, y);
}

void CKXGifRender::GetFixRenderRect(const CRect& rc, CRect& rcResult)
{
    if (!m_pImage) {
        rcResult = rc;
        return;
    }
    const CSize size(static_cast<int>(m_pImage->GetWidth()), static_cast<int>(m_pImage->GetHeight()));
    rcResult = kx::draw::FitRect(rc, size);
}

void CKXGifRender::FixRender(Gdiplus::Graphics& graphics, const CRect& rc)
{
    if (!m_pImage) return;
    CRect fixed;
    GetFixRenderRect(rc, fixed);
    graphics.DrawImage(m_pImage.get(), fixed.left, fixed.top, fixed.Width(), fixed.Height());
}
