#pragma once

#include "include/platform/Types.h"

#include <cstdint>

namespace kx::gdiplus {

// Pixels as vectors of their channels, blue, green, red, alpha. Both compilers turn this arithmetic into
// vector instructions of whatever processor they build for.
using Quad = float __attribute__((vector_size(16)));
using Bytes = std::uint8_t __attribute__((vector_size(16)));  // four pixels
using Words = std::uint16_t __attribute__((vector_size(16))); // two pixels
using Ints = std::int32_t __attribute__((vector_size(16)));

inline Quad Fill(float f) noexcept
{
    return Quad{f, f, f, f};
}

// Two of four pixels.
inline Words LowPixels(const Bytes& pixels) noexcept
{
    return reinterpret_cast<Words>(
        __builtin_shufflevector(pixels, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
}

inline Words HighPixels(const Bytes& pixels) noexcept
{
    return reinterpret_cast<Words>(__builtin_shufflevector(pixels, Bytes{}, 8, 24, 9, 25, 10, 26, 11, 27, 12,
                                                           28, 13, 29, 14, 30, 15, 31));
}

// Of channels from 0 to 255.
inline Bytes Joined(const Words& low, const Words& high) noexcept
{
    return __builtin_shufflevector(reinterpret_cast<Bytes>(low), reinterpret_cast<Bytes>(high), 0, 2, 4, 6, 8,
                                   10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

inline Quad ToQuad(DWORD pixel) noexcept
{
    const auto bytes = reinterpret_cast<Bytes>(Ints{static_cast<std::int32_t>(pixel)});
    const auto ints =
        reinterpret_cast<Ints>(__builtin_shufflevector(LowPixels(bytes), Words{}, 0, 8, 1, 9, 2, 10, 3, 11));
    return __builtin_convertvector(ints, Quad);
}

// Rounds to the nearest; channels from 0 to 255.
inline DWORD ToPixel(const Quad& quad) noexcept
{
    const Ints ints = __builtin_convertvector(quad + Fill(0.5F), Ints);
    // Every second byte, and of those again.
    const auto words = reinterpret_cast<Words>(ints);
    const auto bytes = reinterpret_cast<Words>(Joined(words, words));
    const auto pixel = reinterpret_cast<Ints>(Joined(bytes, bytes));
    return static_cast<DWORD>(pixel[0]);
}

} // namespace kx::gdiplus
