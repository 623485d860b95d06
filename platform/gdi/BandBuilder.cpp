#include "platform/gdi/BandBuilder.h"

#include <cassert>
#include <new>

namespace kx::gdi {

namespace {

constexpr std::size_t BytesFor(std::size_t nBoxes) noexcept
{
    return sizeof(pixman_region32_data_t) + nBoxes * sizeof(pixman_box32_t);
}

pixman_box32_t* BoxesOf(pixman_region32_data_t* data) noexcept
{
    return reinterpret_cast<pixman_box32_t*>(data + 1);
}

} // namespace

BandBuilder::BandBuilder(std::size_t nMost)
    : m_data(static_cast<pixman_region32_data_t*>(std::malloc(BytesFor(nMost)))), m_nMost(nMost)
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
    if (m_nBand > 0 && IsLikePrevious()) {
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
    if (m_nCount > m_nBand) CloseBand();
    pixman_region32_t region;
    if (m_nCount <= 1) {
        if (m_nCount == 0)
            pixman_region32_init(&region);
        else
            pixman_region32_init_with_extents(&region, m_boxes);
        return region;
    }
    region.extents = {m_nLeft, m_boxes[0].y1, m_nRight, m_boxes[m_nCount - 1].y2};
    if (void* const fitting = std::realloc(m_data.get(), BytesFor(m_nCount))) {
        static_cast<void>(m_data.release());
        m_data.reset(static_cast<pixman_region32_data_t*>(fitting));
        m_nMost = m_nCount;
    }
    m_data->size = static_cast<long>(m_nMost);
    m_data->numRects = static_cast<long>(m_nCount);
    region.data = m_data.release();
    assert(pixman_region32_selfcheck(&region));
    return region;
}

} // namespace kx::gdi
