#include "include/platform/GdiPlus.h"
#include "platform/gdiplus/LastStatus.h"

namespace Gdiplus {

using namespace DllExports;
using kx::gdiplus::KeepIn;
using kx::gdiplus::TakeFrom;

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
