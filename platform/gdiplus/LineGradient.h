#pragma once

#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/ColorRun.h"

namespace Gdiplus {

// A pixel has the colour of its top left corner's place on the line.
class GpLineGradient : public GpBrush
{
public:
    // The points differ.
    GpLineGradient(const GpPoint& first, const GpPoint& second, ARGB firstColor, ARGB secondColor,
                   GpWrapMode mode) noexcept;

    bool IsOpaque() const noexcept override { return m_opaque; }
    bool HasOneRow() const noexcept override { return m_dy == 0; }
    void Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept override;

private:
    struct Place;
    Place PlaceOf(double along) const noexcept;

    // Of the first point, and from it to the second.
    double m_x;
    double m_y;
    double m_dx;
    double m_dy;
    // Places on the line count from 0 to this, its length squared, so that pixels have whole ones.
    double m_length;
    kx::gdiplus::Channels m_first;
    kx::gdiplus::Channels m_slope; // for 1 further
    bool m_flips;
    bool m_opaque;
};

} // namespace Gdiplus
