#pragma once

#include "include/platform/Geometry.h"

#include <algorithm>
#include <cstdint>

namespace kx::gdi {

constexpr bool IsEmpty(const RECT& rect) noexcept
{
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

// With the sides of two corners that came in any order.
inline RECT Ordered(const RECT& rect) noexcept
{
    return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom), std::max(rect.left, rect.right),
            std::max(rect.top, rect.bottom)};
}

// The cut of two rectangles, empty when they have none.
inline RECT Cut(const RECT& a, const RECT& b) noexcept
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

// A coordinate, or the end of their range that it lies beyond. What is then cut to a surface is exact.
constexpr LONG ToSide(std::int64_t n) noexcept
{
    return static_cast<LONG>(std::clamp<std::int64_t>(n, INT32_MIN, INT32_MAX));
}

// A rectangle moved by a distance.
inline RECT Moved(const RECT& rect, std::int64_t dx, std::int64_t dy) noexcept
{
    return {ToSide(rect.left + dx), ToSide(rect.top + dy), ToSide(rect.right + dx), ToSide(rect.bottom + dy)};
}

// A block of pixels in a context's coordinates; nothing for a size of 0 or below.
struct Block
{
    int x;
    int y;
    int cx;
    int cy;
};

// The block as a rectangle; sides beyond the range of coordinates stay at its end.
inline RECT AreaOf(const Block& block) noexcept
{
    return {block.x, block.y, ToSide(std::int64_t{block.x} + block.cx),
            ToSide(std::int64_t{block.y} + block.cy)};
}

} // namespace kx::gdi
