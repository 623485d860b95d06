#include "platform/gdi/PixelRegion.h"

#include "include/platform/Gdi.h"
#include "platform/gdi/BandBuilder.h"
#include "platform/gdi/MaskRuns.h"

#include <algorithm>
#include <new>
#include <tuple>
#include <utility>

namespace kx::gdi {

namespace {

void Check(pixman_bool_t done)
{
    if (!done) throw std::bad_alloc();
}

bool InRows(const pixman_box32_t& a, const pixman_box32_t& b) noexcept
{
    return std::tie(a.y1, a.x1) < std::tie(b.y1, b.x1);
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

PixelRegion PixelRegion::FromRects(std::span<const RECT> rects)
{
    BandBuilder bands(rects.size());
    for (const RECT& rect : rects)
        if (!IsEmpty(rect) && !bands.Add(rect)) return FromAnyRects(rects);
    PixelRegion region;
    region.m_region = bands.Finish();
    return region;
}

PixelRegion PixelRegion::FromMask(const std::uint64_t* mask, int nWidth, int nHeight)
{
    const std::size_t nWords = (static_cast<std::size_t>(nWidth) + MASK_BITS - 1) / MASK_BITS;
    const auto row = [&](int y) { return std::span(mask + static_cast<std::size_t>(y) * nWords, nWords); };
    std::size_t nRuns = 0;
    for (int y = 0; y < nHeight; ++y)
        nRuns += CountRuns(row(y));
    BandBuilder bands(nRuns);
    for (int y = 0; y < nHeight; ++y) {
        bool bInside = false;
        RECT run{0, y, 0, y + 1};
        ForEachEdge(row(y), [&](int x) {
            (bInside ? run.right : run.left) = x;
            if (bInside) bands.Add(run);
            bInside = !bInside;
        });
    }
    PixelRegion region;
    region.m_region = bands.Finish();
    return region;
}

PixelRegion PixelRegion::FromAnyRects(std::span<const RECT> rects)
{
    std::vector<pixman_box32_t> boxes;
    boxes.reserve(rects.size());
    for (const RECT& rect : rects)
        if (!IsEmpty(rect)) boxes.push_back({rect.left, rect.top, rect.right, rect.bottom});
    // Pixman sorts too, but for some orders in a time that grows with the square of the number.
    std::sort(boxes.begin(), boxes.end(), InRows);
    PixelRegion region;
    Check(pixman_region32_init_rects(&region.m_region, boxes.data(), static_cast<int>(boxes.size())));
    return region;
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
