#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

// The runs of set bits in a row of a mask, whose words hold 64 bits, the lowest first.
namespace kx::gdi {

inline constexpr int MASK_BITS = 64;

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

inline std::size_t CountRuns(std::span<const std::uint64_t> row)
{
    std::uint64_t before = 0;
    int nBegins = 0;
    for (const std::uint64_t word : row) {
        nBegins += std::popcount(word & ~(word << 1 | before));
        before = word >> (MASK_BITS - 1);
    }
    return static_cast<std::size_t>(nBegins);
}

} // namespace kx::gdi
