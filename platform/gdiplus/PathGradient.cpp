#include "platform/gdi/Rect.h"
#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/Calls.h"

#include <algorithm>
#include <cmath>

using namespace kx::gdiplus;

namespace Gdiplus {

namespace {

double Middle(std::int64_t nFirst, std::int64_t nLast) noexcept
{
    return static_cast<double>(nFirst + nLast) / 2;
}

double Half(std::int64_t nFirst, std::int64_t nLast) noexcept
{
    return static_cast<double>(nLast - nFirst) / 2;
}

} // namespace

GpPathGradient::GpPathGradient(const GpPath::Figure& sides)
    : m_area({kx::gdi::ToSide(sides.left), kx::gdi::ToSide(sides.top), kx::gdi::ToSide(sides.right),
              kx::gdi::ToSide(sides.bottom)}),
      m_x(Middle(sides.left, sides.right)),
      m_y(Middle(sides.top, sides.bottom)),
      m_halfWidth(Half(sides.left, sides.right)),
      m_halfHeight(Half(sides.top, sides.bottom)),
      m_center(ToChannels(0xFFFFFFFF)),
      m_surround(m_center)
{
}

// From left to right a row goes through the triangle from the middle to the left side, the one to the upper
// or lower side, in which it has one colour, and the one to the right side.
void GpPathGradient::Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept
{
    const double part = std::abs(static_cast<double>(y) + 0.5 - m_y) / m_halfHeight;
    const double reach = m_halfWidth * part; // from the middle to where the triangles meet
    const double begin = static_cast<double>(x) + 0.5 - m_x;
    const auto pixelsTo = [&](double end) {
        return static_cast<std::size_t>(std::clamp(end, 0.0, static_cast<double>(out.size())));
    };
    const std::size_t nLeft = pixelsTo(std::ceil(-reach - begin));
    const std::size_t nMiddle = std::max(nLeft, pixelsTo(std::floor(reach - begin) + 1));
    const Channels step = Mixed(m_surround, 1 / m_halfWidth, m_center, -1 / m_halfWidth);
    const auto at = [&](double distance) { return Mixed(step, distance, m_center, 1); };
    if (nLeft > 0) DrawRun(at(-begin), Mixed(step, -1, {}, 0), mask, out.first(nLeft));
    if (nMiddle > nLeft)
        DrawRun(Mixed(m_center, 1 - part, m_surround, part), {}, mask, out.subspan(nLeft, nMiddle - nLeft));
    if (nMiddle < out.size())
        DrawRun(at(begin + static_cast<double>(nMiddle)), step, mask, out.subspan(nMiddle));
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
