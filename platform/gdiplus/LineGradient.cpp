#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/Calls.h"

#include <algorithm>
#include <cmath>

using namespace kx::gdiplus;

namespace Gdiplus {

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
        std::int64_t nCount = 0; // of pixels in the same period
        if (m_bForward)
            nCount = m_nLength - nPlace + (nWay >= 0 && nWay <= m_nLength ? 1 : 0);
        else
            nCount = nPlace + (nWay > m_nLength && nWay < 2 * m_nLength ? 0 : 1);
        const auto run = out.subspan(n, std::min(out.size() - n, static_cast<std::size_t>(nCount)));
        DrawRun(ColorAt(nPlace), step, mask, run);
        n += run.size();
    }
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

} // namespace DllExports

} // namespace Gdiplus
