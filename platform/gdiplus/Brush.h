#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/Handles.h"
#include "platform/gdi/PixelRegion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace kx::gdiplus {

// A colour's channels blue, green, red, alpha, in fractions too.
using Channels = std::array<double, 4>;

constexpr Channels ToChannels(Gdiplus::ARGB color) noexcept
{
    return {static_cast<double>(color & 255), static_cast<double>(color >> 8 & 255),
            static_cast<double>(color >> 16 & 255), static_cast<double>(color >> 24)};
}

// a * x + b * y
constexpr Channels Mixed(const Channels& a, double x, const Channels& b, double y) noexcept
{
    Channels mixed{};
    for (std::size_t n = 0; n < mixed.size(); ++n)
        mixed[n] = a[n] * x + b[n] * y;
    return mixed;
}

} // namespace kx::gdiplus

namespace Gdiplus {

// Gives each pixel of a graphics a colour of straight alpha.
class GpBrush
{
public:
    GpBrush() = default;
    GpBrush(const GpBrush&) = delete;
    GpBrush& operator=(const GpBrush&) = delete;
    virtual ~GpBrush() = default;

    // Whether all of its colours are.
    virtual bool IsOpaque() const noexcept = 0;
    // Whether all rows have the same colours.
    virtual bool HasOneRow() const noexcept { return false; }
    // The pixels that it has colours for; null: all.
    virtual const kx::gdi::PixelRegion* Area() const noexcept { return nullptr; }
    // The colours of a row's pixels from x on, within the area, with the mask's bits alone.
    virtual void Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept = 0;

private:
    kx::LiveHandle m_live;
};

// Across or down. A pixel has the colour of its top left corner's place on the line.
class GpLineGradient : public GpBrush
{
public:
    // The points differ, in one coordinate.
    GpLineGradient(const GpPoint& first, const GpPoint& second, ARGB firstColor, ARGB secondColor) noexcept;

    bool IsOpaque() const noexcept override { return m_bOpaque; }
    bool HasOneRow() const noexcept override { return m_bAcross; }
    void Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept override;

private:
    // How far a coordinate lies along the line, and where within the line's colours that is.
    std::int64_t Way(std::int64_t coordinate) const noexcept;
    std::int64_t Place(std::int64_t nWay) const noexcept;
    kx::gdiplus::Channels ColorAt(std::int64_t nPlace) const noexcept;

    bool m_bAcross;
    bool m_bForward; // the second point lies to the right or below
    std::int64_t m_nFirst;
    std::int64_t m_nLength;
    kx::gdiplus::Channels m_first;
    kx::gdiplus::Channels m_slope; // from each pixel to the next along the line
    bool m_bOpaque;
};

// One rectangle at most.
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
    std::optional<Figure> figure;

private:
    kx::LiveHandle m_live;
};

// A pixel has the colour of its centre. The rectangle is cut into triangles from a point to its sides, in
// which the colour changes evenly.
class GpPathGradient : public GpBrush
{
public:
    // Throws std::bad_alloc.
    explicit GpPathGradient(const GpPath::Figure& sides);

    void MoveCenter(const GpPoint& point) noexcept;
    void SetCenter(ARGB color) noexcept { m_center = kx::gdiplus::ToChannels(color); }
    void SetSurround(ARGB color) noexcept { m_surround = kx::gdiplus::ToChannels(color); }

    bool IsOpaque() const noexcept override { return m_center[3] == 255 && m_surround[3] == 255; }
    const kx::gdi::PixelRegion* Area() const noexcept override { return &m_area; }
    void Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept override;

private:
    kx::gdi::PixelRegion m_area;
    GpPath::Figure m_sides;
    double m_x; // of the centre: at first the middle
    double m_y;
    kx::gdiplus::Channels m_center;
    kx::gdiplus::Channels m_surround;
};

} // namespace Gdiplus
