#include "platform/gdi/RoundShape.h"

#include <cmath>

namespace kx::gdi {

namespace {

int Axis(std::int64_t nAsked, std::int64_t nSide) noexcept
{
    const std::int64_t nFitting = std::min(std::abs(nAsked), nSide);
    return static_cast<int>(std::clamp<std::int64_t>(nFitting, 0, RoundShape::MAX_AXIS));
}

// The axis of an ellipse that lies `nWidth` inside.
int InnerAxis(int nAxis, int nWidth) noexcept
{
    return static_cast<int>(std::max<std::int64_t>(nAxis - 2 * std::int64_t{nWidth}, 0));
}

} // namespace

RoundShape::RoundShape(const RECT& rect, int cxEllipse, int cyEllipse) noexcept
    : m_rect(rect),
      m_cx(Axis(cxEllipse, std::int64_t{rect.right} - rect.left)),
      m_cy(Axis(cyEllipse, std::int64_t{rect.bottom} - rect.top))
{
    if (m_cx == 0 || m_cy == 0) m_cx = m_cy = 0;
}

std::int64_t RoundShape::FromEdge(int y) const noexcept
{
    return std::min(std::int64_t{y} - m_rect.top, std::int64_t{m_rect.bottom} - 1 - y);
}

// How far the row that many above or below it lies inside the rectangle's sides. Counted in half pixels from
// the ellipse's centre, the row's centres lie at `v`, and the greatest `u` with u*u*cy*cy + v*v*cx*cx <=
// cx*cx*cy*cy is inside.
std::int64_t RoundShape::Inset(std::int64_t nFromEdge) const noexcept
{
    if (nFromEdge >= m_cy / 2) return 0;
    const std::int64_t cx = m_cx;
    const std::int64_t cy = m_cy;
    const std::int64_t v = cy - (2 * nFromEdge + 1);
    const std::int64_t nSquare = (cy * cy - v * v) * (cx * cx) / (cy * cy);
    const auto u = static_cast<std::int64_t>(std::sqrt(static_cast<double>(nSquare)));
    return (cx - u) / 2;
}

RECT RoundShape::RowAt(int y, std::int64_t nInset) const noexcept
{
    return {ToSide(m_rect.left + nInset), y, ToSide(m_rect.right - nInset), ToSide(std::int64_t{y} + 1)};
}

RECT RoundShape::Row(int y) const noexcept
{
    const std::int64_t nFromEdge = FromEdge(y);
    return nFromEdge < 0 ? RECT{} : RowAt(y, Inset(nFromEdge));
}

RECT RoundShape::RowInside(int y, int nWidth) const noexcept
{
    const std::int64_t nFromEdge = FromEdge(y);
    if (nFromEdge < nWidth) return {};
    // A pixel that touches the outside with a side is outline; an outline without gaps needs no more.
    if (nWidth == 1) return RowAt(y, std::max(Inset(nFromEdge) + 1, Inset(nFromEdge - 1)));
    const RECT inner{ToSide(std::int64_t{m_rect.left} + nWidth), ToSide(std::int64_t{m_rect.top} + nWidth),
                     ToSide(std::int64_t{m_rect.right} - nWidth),
                     ToSide(std::int64_t{m_rect.bottom} - nWidth)};
    return RoundShape(inner, InnerAxis(m_cx, nWidth), InnerAxis(m_cy, nWidth)).Row(y);
}

} // namespace kx::gdi
