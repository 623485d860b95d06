#include "platform/gdi/Rect.h"
#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/Calls.h"

#include <algorithm>
#include <cmath>

using namespace kx::gdiplus;

namespace Gdiplus {

GpPathGradient::GpPathGradient(const GpPath::Figure& sides)
    : m_area({kx::gdi::ToSide(sides.left), kx::gdi::ToSide(sides.top), kx::gdi::ToSide(sides.right),
              kx::gdi::ToSide(sides.bottom)}),
      m_sides(sides),
      m_x(static_cast<double>(sides.left + sides.right) / 2),
      m_y(static_cast<double>(sides.top + sides.bottom) / 2),
      m_center(ToChannels(0xFFFFFFFF)),
      m_surround(m_center)
{
}

void GpPathGradient::MoveCenter(const GpPoint& point) noexcept
{
    m_x = point.X;
    m_y = point.Y;
}

// From left to right a row goes through the triangle to the left side, the one to the upper or lower side, in
// which it has one colour, and the one to the right side; any of them may be missed.
void GpPathGradient::Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept
{
    // All from the centre.
    const double left = static_cast<double>(m_sides.left) - m_x;
    const double right = static_cast<double>(m_sides.right) - m_x;
    const double down = static_cast<double>(y) + 0.5 - m_y;
    const double begin = static_cast<double>(x) + 0.5 - m_x;
    // The row's part of the way to the upper or lower side, which tells where the triangles meet.
    const double part =
        down == 0 ? 0 : down / (static_cast<double>(down < 0 ? m_sides.top : m_sides.bottom) - m_y);
    const auto pixelsTo = [&](double end) {
        return static_cast<std::size_t>(std::clamp(end, 0.0, static_cast<double>(out.size())));
    };
    const std::size_t nLeft = pixelsTo(std::ceil(std::min(0.0, left * part) - begin));
    const std::size_t nMiddle =
        std::max(nLeft, pixelsTo(std::floor(std::max(0.0, right * part) - begin) + 1));
    const auto across = [&](double side, double from, std::span<DWORD> run) {
        if (run.empty()) return;
        const Channels step = Mixed(m_surround, 1 / side, m_center, -1 / side);
        DrawRun(Mixed(step, from, m_center, 1), step, mask, run);
    };
    across(left, begin, out.first(nLeft));
    if (nMiddle > nLeft)
        DrawRun(Mixed(m_center, 1 - part, m_surround, part), {}, mask, out.subspan(nLeft, nMiddle - nLeft));
    across(right, begin + static_cast<double>(nMiddle), out.subspan(nMiddle));
}

namespace DllExports {

GpStatus GdipCreatePath(GpFillMode mode, GpPath** ppPath)
{
    return MakeObject(ppPath, [&] {
        if (mode != FillModeAlternate && mode != FillModeWinding) return InvalidParameter;
        return Give<GpPath>(ppPath);
    });
}

GpStatus GdipAddPathRectangleI(GpPath* pPath, INT x, INT y, INT nWidth, INT nHeight)
{
    return Guarded([&] {
        if (!pPath) return InvalidParameter;
        if (nWidth <= 0 || nHeight <= 0) return Ok;
        if (pPath->figure) return NotImplemented;
        pPath->figure = {x, y, std::int64_t{x} + nWidth, std::int64_t{y} + nHeight};
        return Ok;
    });
}

GpStatus GdipDeletePath(GpPath* pPath)
{
    return EndObject(pPath);
}

GpStatus GdipCreatePathGradientFromPath(const GpPath* pPath, GpPathGradient** ppBrush)
{
    return MakeObject(ppBrush, [&] {
        if (!pPath) return InvalidParameter;
        return pPath->figure ? Give<GpPathGradient>(ppBrush, *pPath->figure) : OutOfMemory;
    });
}

GpStatus GdipSetPathGradientCenterColor(GpPathGradient* pBrush, ARGB color)
{
    return Guarded([&] {
        if (!pBrush) return InvalidParameter;
        pBrush->SetCenter(color);
        return Ok;
    });
}

GpStatus GdipSetPathGradientCenterPointI(GpPathGradient* pBrush, const GpPoint* pPoint)
{
    return Guarded([&] {
        if (!pBrush || !pPoint) return InvalidParameter;
        pBrush->MoveCenter(*pPoint);
        return Ok;
    });
}

GpStatus GdipSetPathGradientSurroundColorsWithCount(GpPathGradient* pBrush, const ARGB* pColors, INT* pnCount)
{
    return Guarded([&] {
        if (!pBrush || !pColors || !pnCount || *pnCount < 1) return InvalidParameter;
        if (*pnCount > 1) return NotImplemented;
        pBrush->SetSurround(*pColors);
        return Ok;
    });
}

} // namespace DllExports

} // namespace Gdiplus
