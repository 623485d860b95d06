#include "platform/gdi/Rect.h"
#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/Calls.h"

#include <algorithm>
#include <cmath>

using namespace kx::gdiplus;

namespace Gdiplus {

namespace {

// Added before truncation to round to the nearest; 2^-36 lifts sums that rounding errors left just below a
// half, which no other value comes so near.
constexpr double toNearest = 0.5 + 1.0 / (std::int64_t{1} << 36);

constexpr DWORD Cut(double channel) noexcept
{
    return static_cast<DWORD>(static_cast<int>(channel));
}

// Pixels of a colour that changes by the same step from each to the next. Each channel goes to the nearest
// whole number, halves up; they must not leave 0 to 255. With the mask's bits alone.
void DrawRun(const Channels& first, const Channels& step, DWORD mask, std::span<DWORD> out) noexcept
{
    const Channels from = Mixed(first, 1, {1, 1, 1, 1}, toNearest);
    const auto pixelAt = [mask, from, step](int n) {
        return (Cut(from[3] + n * step[3]) << 24 | Cut(from[2] + n * step[2]) << 16 |
                Cut(from[1] + n * step[1]) << 8 | Cut(from[0] + n * step[0])) &
               mask;
    };
    if (step == Channels{}) return std::fill(out.begin(), out.end(), pixelAt(0));
    const int nCount = static_cast<int>(out.size());
    DWORD* pixels = out.data();
    for (int n = 0; n < nCount; ++n)
        pixels[n] = pixelAt(n);
}

} // namespace

GpLineGradient::GpLineGradient(const GpPoint& first, const GpPoint& second, ARGB firstColor,
                               ARGB secondColor) noexcept
    : m_bAcross(first.X != second.X),
      m_bForward(first.X < second.X || first.Y < second.Y),
      m_nFirst(m_bAcross ? first.X : first.Y),
      m_nLength(std::abs((m_bAcross ? std::int64_t{second.X} : std::int64_t{second.Y}) - m_nFirst)),
      m_first(ToChannels(firstColor)),
      m_slope(Mixed(ToChannels(secondColor), 1.0 / static_cast<double>(m_nLength), m_first,
                    -1.0 / static_cast<double>(m_nLength))),
      m_bOpaque((firstColor & secondColor) >> 24 == 255)
{
}

std::int64_t GpLineGradient::Way(std::int64_t coordinate) const noexcept
{
    return m_bForward ? coordinate - m_nFirst : m_nFirst - coordinate;
}

std::int64_t GpLineGradient::Place(std::int64_t nWay) const noexcept
{
    if (nWay == m_nLength) return m_nLength; // the line has its end, periods further on begin again there
    const std::int64_t nPlace = nWay % m_nLength;
    return nPlace < 0 ? nPlace + m_nLength : nPlace;
}

Channels GpLineGradient::ColorAt(std::int64_t nPlace) const noexcept
{
    return Mixed(m_first, 1, m_slope, static_cast<double>(nPlace));
}

void GpLineGradient::Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept
{
    if (!m_bAcross) return DrawRun(ColorAt(Place(Way(y))), {}, mask, out);
    const Channels step = Mixed(m_slope, m_bForward ? 1 : -1, {}, 0);
    for (std::size_t n = 0; n < out.size();) {
        const std::int64_t nWay = Way(x + static_cast<std::int64_t>(n));
        const std::int64_t nPlace = Place(nWay);
        const std::int64_t nCount = // of pixels in the same period
            m_bForward ? m_nLength - nPlace + (nWay >= 0 && nWay <= m_nLength ? 1 : 0)
                       : nPlace + (nWay > m_nLength && nWay < 2 * m_nLength ? 0 : 1);
        const auto run = out.subspan(n, std::min(out.size() - n, static_cast<std::size_t>(nCount)));
        DrawRun(ColorAt(nPlace), step, mask, run);
        n += run.size();
    }
}

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
    DrawRun(Mixed(m_center, 1 - part, m_surround, part), {}, mask, out.subspan(nLeft, nMiddle - nLeft));
    across(right, begin + static_cast<double>(nMiddle), out.subspan(nMiddle));
}

namespace DllExports {

GpStatus GdipCreateLineBrushI(const GpPoint* pFirst, const GpPoint* pSecond, ARGB first, ARGB second,
                              GpWrapMode mode, GpLineGradient** ppBrush)
{
    return MakeObject(ppBrush, [&] {
        if (!pFirst || !pSecond) return InvalidParameter;
        const bool bAcross = pFirst->X != pSecond->X, bDown = pFirst->Y != pSecond->Y;
        if (!bAcross && !bDown) return OutOfMemory;
        if ((bAcross && bDown) || mode != WrapModeTile) return NotImplemented;
        return Give<GpLineGradient>(ppBrush, *pFirst, *pSecond, first, second);
    });
}

GpStatus GdipDeleteBrush(GpBrush* pBrush)
{
    return EndObject(pBrush);
}

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
