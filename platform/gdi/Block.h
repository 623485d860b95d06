#pragma once

#include "platform/gdi/Canvas.h"

#include <cstdint>

namespace kx::gdi {

// A block of pixels in a context's coordinates; nothing for a size of 0 or below.
struct Block
{
    int x;
    int y;
    int cx;
    int cy;
};

// Where it lies on the surface; sides beyond the range of coordinates stay at its end.
inline RECT Place(const Block& block) noexcept
{
    return {block.x, block.y, ToSide(std::int64_t{block.x} + block.cx),
            ToSide(std::int64_t{block.y} + block.cy)};
}

// The part of a one-to-one copy that lies on both surfaces: `area` of the destination's, of which each pixel
// comes from the source's that lies `dx` to the left and `dy` above it.
struct Fit
{
    RECT area;
    int dx = 0;
    int dy = 0;
};

inline Fit FitBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc) noexcept
{
    const std::int64_t dx = std::int64_t{block.x} - xSrc;
    const std::int64_t dy = std::int64_t{block.y} - ySrc;
    const RECT area = Cut(Cut(Place(block), to.reach), Moved(from.bounds, dx, dy));
    if (IsEmpty(area)) return {};
    return {area, static_cast<int>(dx), static_cast<int>(dy)};
}

} // namespace kx::gdi
