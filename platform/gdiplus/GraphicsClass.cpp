#include "include/platform/GdiPlus.h"
#include "platform/gdiplus/LastStatus.h"

namespace Gdiplus {

using namespace DllExports;

void End::operator()(GpGraphics* p) const noexcept
{
    GdipDeleteGraphics(p);
}

Graphics::Graphics(HDC hDC)
{
    GpGraphics* pGraphics = nullptr;
    Keep(GdipCreateFromHDC(hDC, &pGraphics));
    m_pGraphics.reset(pGraphics);
}

Graphics::Graphics(Image* pImage)
{
    GpGraphics* pGraphics = nullptr;
    Keep(GdipGetImageGraphicsContext(pImage ? pImage->Native() : nullptr, &pGraphics));
    m_pGraphics.reset(pGraphics);
}

Status Graphics::DrawImage(Image* pImage, INT x, INT y)
{
    return Keep(GdipDrawImageI(Native(), pImage ? pImage->Native() : nullptr, x, y));
}

Status Graphics::DrawImage(Image* pImage, INT x, INT y, INT nWidth, INT nHeight)
{
    return Keep(GdipDrawImageRectI(Native(), pImage ? pImage->Native() : nullptr, x, y, nWidth, nHeight));
}

Status Graphics::DrawImage(Image* pImage, REAL x, REAL y, REAL nWidth, REAL nHeight, REAL xSrc, REAL ySrc,
                           REAL nSrcWidth, REAL nSrcHeight, Unit unit, const ImageAttributes* pAttributes,
                           DrawImageAbort pfnAbort, void* pData)
{
    return Keep(GdipDrawImageRectRect(Native(), pImage ? pImage->Native() : nullptr, x, y, nWidth, nHeight,
                                      xSrc, ySrc, nSrcWidth, nSrcHeight, unit,
                                      pAttributes ? pAttributes->Native() : nullptr, pfnAbort, pData));
}

Status Graphics::FillRectangle(const Brush* pBrush, INT x, INT y, INT nWidth, INT nHeight)
{
    return Keep(GdipFillRectangleI(Native(), pBrush ? pBrush->Native() : nullptr, x, y, nWidth, nHeight));
}

Status Graphics::FillRegion(const Brush* pBrush, const Region* pRegion)
{
    return Keep(
        GdipFillRegion(Native(), pBrush ? pBrush->Native() : nullptr, pRegion ? pRegion->Native() : nullptr));
}

Status Graphics::DrawRectangle(const Pen* pPen, INT x, INT y, INT nWidth, INT nHeight)
{
    return Keep(GdipDrawRectangleI(Native(), pPen ? pPen->Native() : nullptr, x, y, nWidth, nHeight));
}

Status Graphics::GetLastStatus() const
{
    return kx::gdiplus::TakeFrom(m_lastResult);
}

Status Graphics::Keep(Status status) const
{
    return kx::gdiplus::KeepIn(m_lastResult, status);
}

} // namespace Gdiplus
