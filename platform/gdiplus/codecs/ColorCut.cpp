#include "platform/gdiplus/codecs/ColorCut.h"

#include <algorithm>

namespace kx::gdiplus {

void ColorCut::Count(DWORD color) noexcept
{
    Cell& cell = m_cells[CellOf(color)];
    cell.sums[0] += color >> 16 & 0xFF;
    cell.sums[1] += color >> 8 & 0xFF;
    cell.sums[2] += color & 0xFF;
    ++cell.count;
}

ColorCut::Block::Block(std::span<Cell*> of) noexcept : cells(of)
{
    double count = 0;
    std::array<double, 3> sums{}, squares{};
    for (const Cell* cell : cells) {
        count += cell->count;
        for (std::size_t n = 0; n < sums.size(); ++n) {
            const auto sum = static_cast<double>(cell->sums[n]);
            sums[n] += sum;
            squares[n] += sum * sum / cell->count;
        }
    }
    for (std::size_t n = 0; n < sums.size(); ++n) {
        means[n] = sums[n] / count;
        const double off = squares[n] - sums[n] * means[n];
        if (off > spread) {
            spread = off;
            channel = n;
        }
    }
}

DWORD ColorCut::Block::Mean() const noexcept
{
    DWORD color = 0;
    for (const double mean : means)
        color = color << 8 | static_cast<DWORD>(mean + 0.5);
    return color;
}

std::size_t ColorCut::Block::Part() noexcept
{
    const auto low = std::partition(cells.begin(), cells.end(), [this](const Cell* cell) {
        return static_cast<double>(cell->sums[channel]) <= means[channel] * cell->count;
    });
    return static_cast<std::size_t>(low - cells.begin());
}

std::vector<DWORD> ColorCut::Cut(std::size_t nMax)
{
    std::vector<Cell*> used;
    for (Cell& cell : m_cells)
        if (cell.count > 0) used.push_back(&cell);
    std::vector<Block> blocks;
    if (!used.empty()) blocks.emplace_back(used);
    while (!blocks.empty() && blocks.size() < nMax) {
        auto widest = std::max_element(blocks.begin(), blocks.end(),
                                       [](const Block& a, const Block& b) { return a.spread < b.spread; });
        if (widest->spread == 0) break;
        const std::span<Cell*> cells = widest->cells;
        const std::size_t nLow = widest->Part();
        if (nLow == 0 || nLow == cells.size()) {
            widest->spread = 0; // that of rounding alone
            continue;
        }
        *widest = Block(cells.first(nLow));
        blocks.emplace_back(cells.subspan(nLow));
    }
    std::vector<DWORD> colors;
    for (const Block& block : blocks) {
        for (Cell* cell : block.cells)
            cell->number = static_cast<std::uint8_t>(colors.size());
        colors.push_back(block.Mean());
    }
    return colors;
}

} // namespace kx::gdiplus
