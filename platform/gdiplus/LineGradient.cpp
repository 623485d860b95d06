#include "platform/gdiplus/LineGradient.h"

#include "platform/gdiplus/DrawObjects.h"

#include <algorithm>
#include <cmath>

using namespace kx::gdiplus;

namespace Gdiplus {

// Where a pixel lies in the period that it lies in.
struct GpLineGradient::Place
{
    double along;  // from 0 to the length
    bool line;     // whether the period is the line itself, to which its end belongs too
    bool next;     // whether it is the one after it, which so lacks its beginning
    bool mirrored; // whether the colours run the other way in it
};

GpLineGradient::GpLineGradient(const GpPoint& first, const GpPoint& second, ARGB firstColor, ARGB secondColor,
                               GpWrapMode mode) noexcept
    : m_x(first.X),
      m_y(first.Y),
      m_dx(static_cast<double>(second.X) - first.X),
      m_dy(static_cast<double>(second.Y) - first.Y),
      m_length(m_dx * m_dx + m_dy * m_dy),
      m_first(ToChannels(firstColor)),
      m_slope(Mixed(ToChannels(secondColor), 1 / m_length, m_first, -1 / m_length)),
      m_flips(mode == WrapModeTileFlipX || mode == WrapModeTileFlipXY),
      m_opaque((firstColor & secondColor) >> 24 == 255)
{
}

GpLineGradient::Place GpLineGradient::PlaceOf(double along) const noexcept
{
    if (along >= 0 && along <= m_length) return {along, true, false, false};
    double in = std::fmod(along, 2 * m_length);
    if (in < 0) in += 2 * m_length;
    const bool bOdd = in >= m_length;
    return {std::clamp(bOdd ? in - m_length : in, 0.0, m_length), false,
            along > m_length && along < 2 * m_length, bOdd && m_flips};
}

void GpLineGradient::Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept
{
    const double start = (static_cast<double>(x) - m_x) * m_dx + (static_cast<double>(y) - m_y) * m_dy;
    for (std::size_t n = 0; n < out.size();) {
        const Place place = PlaceOf(start + static_cast<double>(n) * m_dx);
        double count = static_cast<double>(out.size() - n);
        if (m_dx > 0) {
            const double rest = (m_length - place.along) / m_dx;
            count = std::min(count, place.line ? std::floor(rest) + 1 : std::ceil(rest));
        } else if (m_dx < 0) {
            const double rest = place.along / -m_dx;
            count = std::min(count, place.next ? std::ceil(rest) : std::floor(rest) + 1);
        }
        const auto run = out.subspan(n, static_cast<std::size_t>(std::max(count, 1.0)));
        const double along = place.mirrored ? m_length - place.along : place.along;
        const double step = place.mirrored ? -m_dx : m_dx;
        DrawRun(Mixed(m_first, 1, m_slope, along), Mixed(m_slope, step, {}, 0), mask, run);
        n += run.size();
    }
}

namespace DllExports {

GpStatus GdipCreateLineBrushI(const GpPoint* pFirst, const GpPoint* pSecond, ARGB first, ARGB second,
                              GpWrapMode mode, GpLineGradient** ppBrush)
{
    return MakeObject(ppBrush, [&] {
        if (!pFirst || !pSecond || mode < WrapModeTile || mode > WrapModeTileFlipXY) return InvalidParameter;
        if (pFirst->X == pSecond->X && pFirst->Y == pSecond->Y) return OutOfMemory;
        return Give<GpLineGradient>(ppBrush, *pFirst, *pSecond, first, second, mode);
    });
}

GpStatus GdipDeleteBrush(GpBrush* pBrush)
{
    return EndObject(pBrush);
}

} // namespace DllExports

} // namespace Gdiplus
