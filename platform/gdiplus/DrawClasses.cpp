#include "include/platform/GdiPlus.h"
#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/Calls.h"

namespace Gdiplus {

using namespace DllExports;
using kx::gdiplus::KeepIn;
using kx::gdiplus::TakeFrom;

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
    return TakeFrom(m_lastResult);
}

Status Graphics::Keep(Status status) const
{
    return KeepIn(m_lastResult, status);
}

void End::operator()(GpImageAttributes* p) const noexcept
{
    GdipDisposeImageAttributes(p);
}

ImageAttributes::ImageAttributes()
{
    GpImageAttributes* pAttributes = nullptr;
    KeepIn(m_lastResult, GdipCreateImageAttributes(&pAttributes));
    m_pAttributes.reset(pAttributes);
}

Status ImageAttributes::SetColorMatrix(const ColorMatrix* pMatrix, ColorMatrixFlags flags,
                                       ColorAdjustType type)
{
    return KeepIn(m_lastResult,
                  GdipSetImageAttributesColorMatrix(Native(), type, 1, pMatrix, nullptr, flags));
}

Status ImageAttributes::GetLastStatus() const
{
    return TakeFrom(m_lastResult);
}

void End::operator()(GpBrush* p) const noexcept
{
    GdipDeleteBrush(p);
}

Brush::~Brush() = default;

void Brush::Take(GpBrush* pBrush, Status status)
{
    m_pBrush.reset(pBrush);
    Keep(status);
}

Status Brush::Keep(Status status) const
{
    return KeepIn(m_lastResult, status);
}

Status Brush::GetLastStatus() const
{
    return TakeFrom(m_lastResult);
}

LinearGradientBrush::LinearGradientBrush(const Point& first, const Point& second, const Color& colorFirst,
                                         const Color& colorSecond)
{
    GpLineGradient* pBrush = nullptr;
    const Status status = GdipCreateLineBrushI(&first, &second, colorFirst.GetValue(), colorSecond.GetValue(),
                                               WrapModeTile, &pBrush);
    Take(pBrush, status);
}

PathGradientBrush::PathGradientBrush(const GraphicsPath* pPath)
{
    GpPathGradient* pBrush = nullptr;
    const Status status = GdipCreatePathGradientFromPath(pPath ? pPath->Native() : nullptr, &pBrush);
    Take(pBrush, status);
}

Status PathGradientBrush::SetCenterColor(const Color& color)
{
    return Keep(GdipSetPathGradientCenterColor(static_cast<GpPathGradient*>(Native()), color.GetValue()));
}

Status PathGradientBrush::SetCenterPoint(const Point& point)
{
    return Keep(GdipSetPathGradientCenterPointI(static_cast<GpPathGradient*>(Native()), &point));
}

Status PathGradientBrush::SetSurroundColors(const Color* pColors, INT* pnCount)
{
    static_assert(sizeof(Color) == sizeof(ARGB));
    return Keep(GdipSetPathGradientSurroundColorsWithCount(static_cast<GpPathGradient*>(Native()),
                                                           reinterpret_cast<const ARGB*>(pColors), pnCount));
}

void End::operator()(GpPath* p) const noexcept
{
    GdipDeletePath(p);
}

void End::operator()(GpRegion* p) const noexcept
{
    GdipDeleteRegion(p);
}

void End::operator()(GpPen* p) const noexcept
{
    GdipDeletePen(p);
}

GraphicsPath::GraphicsPath(FillMode mode)
{
    GpPath* pPath = nullptr;
    KeepIn(m_lastResult, GdipCreatePath(mode, &pPath));
    m_pPath.reset(pPath);
}

Status GraphicsPath::AddRectangle(INT x, INT y, INT nWidth, INT nHeight)
{
    return KeepIn(m_lastResult, GdipAddPathRectangleI(Native(), x, y, nWidth, nHeight));
}

Status GraphicsPath::GetLastStatus() const
{
    return TakeFrom(m_lastResult);
}

Region::Region(HRGN hRgn)
{
    GpRegion* pRegion = nullptr;
    KeepIn(m_lastResult, GdipCreateRegionHrgn(hRgn, &pRegion));
    m_pRegion.reset(pRegion);
}

Status Region::GetLastStatus() const
{
    return TakeFrom(m_lastResult);
}

Pen::Pen(const Color& color, REAL nWidth)
{
    GpPen* pPen = nullptr;
    KeepIn(m_lastResult, GdipCreatePen1(color.GetValue(), nWidth, UnitWorld, &pPen));
    m_pPen.reset(pPen);
}

Status Pen::GetLastStatus() const
{
    return TakeFrom(m_lastResult);
}

} // namespace Gdiplus
