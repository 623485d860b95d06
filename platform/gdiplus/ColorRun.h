#pragma once

#include "include/platform/GdiPlusTypes.h"

#include <array>
#include <cstddef>
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

// Pixels of a colour that changes by the same step from each to the next. Each channel goes to the nearest
// whole number, halves up; they must not leave 0 to 255. With the mask's bits alone.
void DrawRun(const Channels& first, const Channels& step, DWORD mask, std::span<DWORD> out) noexcept;

} // namespace kx::gdiplus
