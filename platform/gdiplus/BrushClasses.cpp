#include "include/platform/GdiPlus.h"
#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/LastStatus.h"

namespace Gdiplus {

using namespace DllExports;

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
    return kx::gdiplus::KeepIn(m_lastResult, status);
}

Status Brush::GetLastStatus() const
{
    return kx::gdiplus::TakeFrom(m_lastResult);
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

Status PathGradientBrush::SetSurroundColors(const Color* pColors, INT* pnCount)
{
    static_assert(sizeof(Color) == sizeof(ARGB));
    return Keep(GdipSetPathGradientSurroundColorsWithCount(static_cast<GpPathGradient*>(Native()),
                                                           reinterpret_cast<const ARGB*>(pColors), pnCount));
}

} // namespace Gdiplus
