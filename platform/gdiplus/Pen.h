#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/LiveHandles.h"
#include "platform/gdi/PixelRegion.h"

namespace Gdiplus {

// One colour, and a width of at least 1.
class GpPen
{
public:
    GpPen(ARGB of, REAL nWidth) noexcept : color(of), width(nWidth < 1 ? 1 : nWidth) {}

    // The pixels of a rectangle's outline, whose lines lie in the middle of the pen's: one of a width of 1
    // covers the column x for a line at x, one of 2 the column before it too. Throws std::bad_alloc.
    kx::gdi::PixelRegion Outline(INT x, INT y, INT nWidth, INT nHeight) const;

    const ARGB color;
    const double width;

private:
    kx::LiveHandle m_live;
};

} // namespace Gdiplus
