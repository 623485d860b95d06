#pragma once

#include "include/platform/Gdi.h"

#include <array>
#include <span>

namespace kx::gdi {

// Finds a palette's entries for pixels: the one that the pixel's high byte names if it has that colour, else
// the first of that colour, else the nearest.
class PaletteIndex
{
public:
    explicit PaletteIndex(std::span<const RGBQUAD> palette) noexcept;

    BYTE Find(DWORD pixel) noexcept;

private:
    BYTE Search(DWORD color) const noexcept;

    static constexpr std::size_t MAX_COLORS = 256;
    std::size_t m_nColors;
    std::array<DWORD, MAX_COLORS> m_colors{};
    // What was searched for before.
    struct Found
    {
        DWORD color = 0xFFFFFFFF;
        BYTE index = 0;
    };
    std::array<Found, 1024> m_found{};
};

} // namespace kx::gdi
