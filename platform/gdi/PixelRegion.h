#pragma once

#include "include/KXExport.h"

#include "platform/gdi/Object.h"
#include "platform/gdi/Rect.h"

#include <cstdint>
#include <pixman.h>
#include <span>
#include <utility>

namespace kx::gdi {

// A set of pixels, as a value. A lack of memory throws std::bad_alloc and leaves an empty one.
class PixelRegion
{
public:
    PixelRegion() noexcept { pixman_region32_init(&m_region); }
    explicit PixelRegion(const RECT& rect) noexcept;
    // Rectangles in any order, which may overlap and be empty. Linear when they come in rows from the top,
    // each row from the left.
    static PixelRegion FromRects(std::span<const RECT> rects);
    // The bits set in a mask as CreateMaskRgn takes it.
    static PixelRegion FromMask(const std::uint64_t* mask, int nWidth, int nHeight);
    PixelRegion(const PixelRegion& other);
    PixelRegion(PixelRegion&& other) noexcept;
    PixelRegion& operator=(PixelRegion other) noexcept;
    ~PixelRegion() { pixman_region32_fini(&m_region); }

    // The disjoint rectangles in rows from the top, each row from the left.
    KX_API std::span<const pixman_box32_t> Boxes() const noexcept;
    RECT Extents() const noexcept;
    // NULLREGION, SIMPLEREGION or COMPLEXREGION.
    int Complexity() const noexcept;
    bool Contains(int x, int y) const noexcept;

    // Pixels that leave the range of coordinates are lost.
    void Move(int dx, int dy);
    void IntersectWith(const PixelRegion& other);
    void UniteWith(const PixelRegion& other);
    void Subtract(const PixelRegion& other);

private:
    static PixelRegion FromAnyRects(std::span<const RECT> rects);

    mutable pixman_region32_t m_region; // pixman's readers take it as not const, and change nothing
};

inline RECT ToRect(const pixman_box32_t& box) noexcept
{
    return {box.x1, box.y1, box.x2, box.y2};
}
inline const RECT& ToRect(const RECT& rect) noexcept
{
    return rect;
}

// The object that a region's handle names.
class Region final : public Object
{
public:
    static constexpr Kind KIND = Kind::Region;

    explicit Region(PixelRegion of) noexcept : Object(KIND), pixels(std::move(of)) {}

    PixelRegion pixels;
};

} // namespace kx::gdi
