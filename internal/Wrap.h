#pragma once

#include <cstdint>

// Sums and products that wrap around in 32 bits: a rectangle or state far out of range names some place off
// the surface, where nothing is drawn, and nothing overflows on the way there. Any thread.
namespace kx {

constexpr int Plus(int a, int b)
{
    return static_cast<int>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

constexpr int Minus(int a, int b)
{
    return static_cast<int>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

constexpr int Times(int a, int b)
{
    return static_cast<int>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

} // namespace kx
