// Regions from many rectangles, and from the bits of a mask.

#include "platform/gdi/PixelRegion.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdlib>
#include <memory>
#include <new>
#include <tuple>
#include <vector>

namespace kx::gdi {

namespace {

// Makes a region of rectangles that come in its own order, in one pass. Pixman makes one of any rectangles,
// but sorts them, which for the half million runs of a checkered picture takes ten times as long as finding
// them.
//
// It fills in pixman's region record, which pixman.h declares: the rectangles lie in one block that free
// ends, in bands of equal top and bottom from the top, each from the left, without two that touch in a band
// or two bands that touch and are alike.
class BandBuilder
{
public:
    // For so many rectangles at most. Throws std::bad_alloc.
    explicit BandBuilder(std::size_t nMost);

    // False for one that is out of order; the builder is of no more use then.
    bool Add(const RECT& rect) noexcept;
    // The region of those added, to be ended with pixman_region32_fini.
    pixman_region32_t Finish() noexcept;

private:
    struct Free
    {
        void operator()(pixman_region32_data_t* p) const noexcept { std::free(p); }
    };

    void CloseBand() noexcept;
    bool IsLikePrevious() const noexcept;

    std::unique_ptr<pixman_region32_data_t, Free> m_data;
    pixman_box32_t* m_boxes;
    std::size_t m_nPrevious = 0; // where the last closed band begins
    std::size_t m_nBand = 0;     // where the open band begins
    std::size_t m_nCount = 0;
    int m_nLeft = INT32_MAX; // of the closed bands
    int m_nRight = INT32_MIN;
};

constexpr std::size_t BytesFor(std::size_t nBoxes) noexcept
{
    return sizeof(pixman_region32_data_t) + nBoxes * sizeof(pixman_box32_t);
}

pixman_box32_t* BoxesOf(pixman_region32_data_t* data) noexcept
{
    return reinterpret_cast<pixman_box32_t*>(data + 1);
}

BandBuilder::BandBuilder(std::size_t nMost)
    : m_data(static_cast<pixman_region32_data_t*>(std::malloc(BytesFor(nMost))))
{
    if (!m_data) throw std::bad_alloc();
    m_boxes = BoxesOf(m_data.get());
}

bool BandBuilder::IsLikePrevious() const noexcept
{
    const std::size_t nBoxes = m_nCount - m_nBand;
    if (m_nBand - m_nPrevious != nBoxes || m_boxes[m_nPrevious].y2 != m_boxes[m_nBand].y1) return false;
    return std::equal(m_boxes + m_nPrevious, m_boxes + m_nBand, m_boxes + m_nBand,
                      [](const auto& a, const auto& b) { return a.x1 == b.x1 && a.x2 == b.x2; });
}

void BandBuilder::CloseBand() noexcept
{
    m_nLeft = std::min(m_nLeft, m_boxes[m_nBand].x1);
    m_nRight = std::max(m_nRight, m_boxes[m_nCount - 1].x2);
    if (IsLikePrevious()) {
        const auto nBottom = m_boxes[m_nBand].y2;
        for (std::size_t n = m_nPrevious; n < m_nBand; ++n)
            m_boxes[n].y2 = nBottom;
        m_nCount = m_nBand;
    } else {
        m_nPrevious = m_nBand;
        m_nBand = m_nCount;
    }
}

pixman_region32_t BandBuilder::Finish() noexcept
{
    pixman_region32_t region;
    if (m_nCount == 0) {
        pixman_region32_init(&region);
        return region;
    }
    CloseBand();
    if (m_nCount == 1) {
        pixman_region32_init_with_extents(&region, m_boxes);
        return region;
    }
    region.extents = {m_nLeft, m_boxes[0].y1, m_nRight, m_boxes[m_nCount - 1].y2};
    if (void* const fitting = std::realloc(m_data.get(), BytesFor(m_nCount))) {
        static_cast<void>(m_data.release());
        m_data.reset(static_cast<pixman_region32_data_t*>(fitting));
    }
    m_data->size = m_data->numRects = static_cast<long>(m_nCount);
    region.data = m_data.release();
    assert(pixman_region32_selfcheck(&region));
    return region;
}

bool BandBuilder::Add(const RECT& rect) noexcept
{
    if (m_nCount > 0) {
        pixman_box32_t& last = m_boxes[m_nCount - 1];
        if (rect.top == last.y1) {
            if (rect.bottom != last.y2 || rect.left < last.x2) return false;
            if (rect.left == last.x2) {
                last.x2 = rect.right;
                return true;
            }
        } else {
            if (rect.top < last.y2) return false;
            CloseBand();
        }
    }
    m_boxes[m_nCount++] = {rect.left, rect.top, rect.right, rect.bottom};
    return true;
}

// The runs of set bits in a row of a mask, whose words hold 64 bits, the lowest first.
constexpr int MASK_BITS = 64;

// Calls `edge(x)` for each place where a run begins or ends, in turn; the last may end behind the words.
template <class Edge>
void ForEachEdge(std::span<const std::uint64_t> row, Edge&& edge)
{
    std::uint64_t before = 0; // the bit to the left
    int x = 0;
    for (const std::uint64_t word : row) {
        for (std::uint64_t edges = word ^ (word << 1 | before); edges != 0; edges &= edges - 1)
            edge(x + std::countr_zero(edges));
        before = word >> (MASK_BITS - 1);
        x += MASK_BITS;
    }
    if (before != 0) edge(x);
}

std::size_t CountRuns(std::span<const std::uint64_t> row)
{
    std::uint64_t before = 0;
    int nBegins = 0;
    for (const std::uint64_t word : row) {
        nBegins += std::popcount(word & ~(word << 1 | before));
        before = word >> (MASK_BITS - 1);
    }
    return static_cast<std::size_t>(nBegins);
}

bool InRows(const pixman_box32_t& a, const pixman_box32_t& b) noexcept
{
    return std::tie(a.y1, a.x1) < std::tie(b.y1, b.x1);
}

} // namespace

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
    if (!pixman_region32_init_rects(&region.m_region, boxes.data(), static_cast<int>(boxes.size())))
        throw std::bad_alloc();
    return region;
}

} // namespace kx::gdi
