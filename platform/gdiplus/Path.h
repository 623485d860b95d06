#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/LiveHandles.h"
#include "platform/gdi/PixelRegion.h"

#include <cstdint>
#include <vector>

namespace Gdiplus {

// Rectangles, each a figure of four points, clockwise from the top left.
class GpPath
{
public:
    struct Figure
    {
        std::int64_t left;
        std::int64_t top;
        std::int64_t right;
        std::int64_t bottom;
    };

    explicit GpPath(GpFillMode mode) noexcept : m_mode(mode) {}
    void Add(const Figure& figure) { m_figures.push_back(figure); }
    const std::vector<Figure>& Figures() const noexcept { return m_figures; }
    // The pixels within: those that lie in an odd number of figures, or with FillModeWinding in any. Throws
    // std::bad_alloc.
    kx::gdi::PixelRegion Inside() const;

private:
    GpFillMode m_mode;
    std::vector<Figure> m_figures;
    kx::LiveHandle m_live;
};

} // namespace Gdiplus
