#pragma once

#include "platform/gdiplus/Picture.h"

namespace kx::gdiplus {

// n / 255 rounded to the nearest, for n from 0 to 255 * 255: the rule by which every share of a channel is
// rounded. A share of 0 is nothing, one of 255 the whole.
constexpr DWORD By255(DWORD n) noexcept
{
    return (n + 128 + ((n + 128) >> 8)) >> 8;
}

// A multiplied pixel from one of straight alpha.
constexpr DWORD ToMultiplied(DWORD pixel) noexcept
{
    const DWORD alpha = pixel >> 24;
    return (pixel & ALPHA_BITS) | By255((pixel >> 16 & 0xFF) * alpha) << 16 |
           By255((pixel >> 8 & 0xFF) * alpha) << 8 | By255((pixel & 0xFF) * alpha);
}

// Lays a run of pixels over another by its alpha. The high byte of an opaque target becomes 0, as fills leave
// it on a surface. The two don't overlap.
void Blend(const DWORD* from, Alpha fromAlpha, DWORD* to, Alpha toAlpha, int n) noexcept;

} // namespace kx::gdiplus
