#pragma once

#include "platform/gdi/Surface.h"
#include "platform/gdiplus/Image.h"
#include "platform/gdiplus/Quad.h"
#include "platform/gdiplus/ScaleAxis.h"

#include <array>
#include <vector>

namespace kx::gdiplus {

// Makes the rows of a picture's block stretched over a block of a target. Each direction goes by itself:
// reducing takes the mean of what a target pixel covers, enlarging goes linearly from one pixel's centre to
// the next's, up to the centres at the block's edges. Colours count by their alpha, so that what is
// transparent has no colour to give. The work and the memory are bounded by the wanted area and the part of
// the picture under it, whatever the size of the blocks.
class Scaler
{
public:
    // `area`: the target's pixels that are wanted. Throws std::bad_alloc.
    Scaler(const PixelView& from, const Stretch& columns, const Stretch& rows, const RECT& area);

    // The part of the area that the picture covers; may be empty.
    RECT Area() const noexcept;
    // A row of that part, pixels that mean what the picture's do, opaque ones with 255 in the high byte.
    // Going through the rows in turn, up or down, reads each row of the picture about once.
    void Row(int y, DWORD* out) noexcept;

private:
    struct Held
    {
        int row = -1; // of the picture; -1: none
        std::vector<Quad> quads;
    };
    const Quad* Across(int nRow) noexcept;
    void Sum(const Span& span) noexcept;

    PixelView m_from;
    Axis m_columns;
    Axis m_rows;
    std::array<Held, 2> m_held; // rows stretched across, which two rows of the target share
    std::vector<Quad> m_sum;
};

// The whole of a picture stretched over the whole of a surface, of pixels that mean what the picture's do.
// Throws std::bad_alloc.
void Scale(const PixelView& from, gdi::Surface& to);

} // namespace kx::gdiplus
