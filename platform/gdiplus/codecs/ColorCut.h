#pragma once

#include "include/platform/Types.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kx::gdiplus {

// Finds the colours that stand best for a picture's many: the block of them whose colours differ most, over
// all their pixels, is cut at its mean along the channel in which they do, again and again. Colours that have
// the upper six bits of each channel in common stay together. All are 0x00RRGGBB.
class ColorCut
{
public:
    // Throws std::bad_alloc.
    ColorCut() : m_cells(kCells) {}

    void Count(DWORD color) noexcept;
    // At most so many, up to 256, of what was counted. Throws std::bad_alloc.
    std::vector<DWORD> Cut(std::size_t nMax);
    // The number of the one that stands for a colour that was counted.
    std::uint8_t NumberOf(DWORD color) const noexcept { return m_cells[CellOf(color)].number; }

private:
    static constexpr std::size_t kCells = std::size_t{1} << 18;

    struct Cell
    {
        std::array<std::uint64_t, 3> sums; // of its pixels' channels, red first
        std::uint32_t count;
        std::uint8_t number;
    };
    struct Block
    {
        explicit Block(std::span<Cell*> of) noexcept;
        DWORD Mean() const noexcept;
        // The cells at or below the mean in its channel come first; gives how many.
        std::size_t Part() noexcept;

        std::span<Cell*> cells;
        std::array<double, 3> means{};
        std::size_t channel = 0; // in which they differ most
        double spread = 0;       // there: the sum of all pixels' squares of what they are off the mean
    };

    static constexpr std::size_t CellOf(DWORD color) noexcept
    {
        return (color >> 6 & 0x3F000) | (color >> 4 & 0xFC0) | (color >> 2 & 0x3F);
    }

    std::vector<Cell> m_cells;
};

} // namespace kx::gdiplus
