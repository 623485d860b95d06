#pragma once

#include "platform/gdi/Rect.h"

namespace kx::gdi {

// A rectangle whose corners are quarters of an ellipse, of whose pixels those are in that have their centre
// within.
class RoundShape
{
public:
    // The ellipse's axes are cut to the rectangle's, and to MAX_AXIS so that a region of it stays small.
    // Without an axis the corners are square.
    static constexpr int MAX_AXIS = 0x7FFF;
    RoundShape(const RECT& rect, int cxEllipse, int cyEllipse) noexcept;

    // The pixels in row `y` of the rectangle, as a rectangle; an empty one outside.
    RECT Row(int y) const noexcept;
    // The pixels of the row that lie within an outline of `nWidth` pixels, if any, which is the shape's own.
    // One of 1 pixel is as thin as it can be without gaps.
    RECT RowInside(int y, int nWidth) const noexcept;
    // How many rows at the top, and at the bottom, may be narrower than the rectangle.
    int CornerRows() const noexcept { return m_cy / 2; }
    bool IsSquare() const noexcept { return m_cx == 0; }

private:
    std::int64_t FromEdge(int y) const noexcept;
    std::int64_t Inset(std::int64_t nFromEdge) const noexcept;
    RECT RowAt(int y, std::int64_t nInset) const noexcept;

    RECT m_rect;
    int m_cx; // the ellipse's axes
    int m_cy;
};

} // namespace kx::gdi
