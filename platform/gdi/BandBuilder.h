#pragma once

#include "platform/gdi/Rect.h"

#include <cstdlib>
#include <memory>
#include <pixman.h>

namespace kx::gdi {

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
    std::size_t m_nMost;
    std::size_t m_nPrevious = 0; // where the last closed band begins
    std::size_t m_nBand = 0;     // where the open band begins
    std::size_t m_nCount = 0;
    int m_nLeft = INT32_MAX; // of the closed bands
    int m_nRight = INT32_MIN;
};

inline bool BandBuilder::Add(const RECT& rect) noexcept
{
    if (m_nCount > m_nBand) {
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

} // namespace kx::gdi
