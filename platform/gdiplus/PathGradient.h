#pragma once

#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/ColorRun.h"
#include "platform/gdiplus/Path.h"

#include <array>
#include <vector>

namespace Gdiplus {

// A pixel has the colour of its centre. Each figure of the path is cut into triangles from the path's centre
// to its sides, in which the colour changes evenly; where figures overlap the later one counts.
class GpPathGradient : public GpBrush
{
public:
    // A path of at least one figure. Throws std::bad_alloc.
    explicit GpPathGradient(const GpPath& path);

    // The path's points.
    std::size_t Points() const noexcept { return 4 * m_figures.size(); }
    void SetCenter(ARGB color) noexcept;
    void MoveCenter(Point point) noexcept;
    // Those of the first points; the last one counts for all that follow. At least one.
    void SetSurround(std::span<const ARGB> colors) noexcept;

    bool IsOpaque() const noexcept override;
    const kx::gdi::PixelRegion* Area() const noexcept override { return &m_area; }
    void Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept override;

private:
    struct Figure
    {
        GpPath::Figure sides;
        std::array<kx::gdiplus::Channels, 4> corners; // clockwise from the top left
    };
    class FigureRow;

    kx::gdi::PixelRegion m_area;
    std::vector<Figure> m_figures;
    double m_x; // the centre
    double m_y;
    kx::gdiplus::Channels m_center;
};

} // namespace Gdiplus
