#include "platform/gdi/PixelRegion.h"

#include "include/platform/Gdi.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace kx::gdi {

namespace {

void Check(pixman_bool_t done)
{
    if (!done) throw std::bad_alloc();
}

} // namespace

PixelRegion::PixelRegion(const RECT& rect) noexcept
{
    const pixman_box32_t box{rect.left, rect.top, rect.right, rect.bottom};
    if (IsEmpty(rect))
        pixman_region32_init(&m_region);
    else
        pixman_region32_init_with_extents(&m_region, &box);
}

PixelRegion::PixelRegion(const PixelRegion& other) : PixelRegion()
{
    Check(pixman_region32_copy(&m_region, &other.m_region));
}

PixelRegion::PixelRegion(PixelRegion&& other) noexcept : PixelRegion()
{
    std::swap(m_region, other.m_region);
}

PixelRegion& PixelRegion::operator=(PixelRegion other) noexcept
{
    std::swap(m_region, other.m_region);
    return *this;
}

std::span<const pixman_box32_t> PixelRegion::Boxes() const noexcept
{
    int nCount = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(&m_region, &nCount);
    return {boxes, static_cast<std::size_t>(nCount)};
}

RECT PixelRegion::Extents() const noexcept
{
    return Complexity() == NULLREGION ? RECT{} : ToRect(*pixman_region32_extents(&m_region));
}

int PixelRegion::Complexity() const noexcept
{
    switch (pixman_region32_n_rects(&m_region)) {
    case 0:
        return NULLREGION;
    case 1:
        return SIMPLEREGION;
    default:
        return COMPLEXREGION;
    }
}

bool PixelRegion::Contains(int x, int y) const noexcept
{
    return pixman_region32_contains_point(&m_region, x, y, nullptr);
}

void PixelRegion::Move(int dx, int dy)
{
    const RECT from = Extents();
    const RECT to = Moved(from, dx, dy);
    if (std::int64_t{to.right} - to.left == std::int64_t{from.right} - from.left &&
        std::int64_t{to.bottom} - to.top == std::int64_t{from.bottom} - from.top)
        return pixman_region32_translate(&m_region, dx, dy);
    // pixman's own sums would wrap around.
    std::vector<RECT> rects;
    for (const auto& box : Boxes())
        rects.push_back(Moved(ToRect(box), dx, dy));
    *this = FromRects(rects);
}

void PixelRegion::IntersectWith(const PixelRegion& other)
{
    Check(pixman_region32_intersect(&m_region, &m_region, &other.m_region));
}

void PixelRegion::UniteWith(const PixelRegion& other)
{
    Check(pixman_region32_union(&m_region, &m_region, &other.m_region));
}

void PixelRegion::Subtract(const PixelRegion& other)
{
    Check(pixman_region32_subtract(&m_region, &m_region, &other.m_region));
}

} // namespace kx::gdi
