#include "platform/gdiplus/Blend.h"

#include "platform/gdiplus/Quad.h"

#include <algorithm>
#include <cstring>

namespace kx::gdiplus {

namespace {

constexpr DWORD Channel(DWORD pixel, int nShift) noexcept
{
    return pixel >> nShift & 0xFF;
}

// By255 for two pixels.
[[gnu::always_inline]] inline Words By255(const Words& n) noexcept
{
    const Words more = n + 128;
    return (more + (more >> 8)) >> 8;
}

// The alpha of each of two pixels in all its channels.
[[gnu::always_inline]] inline Words AlphaOf(const Words& pixels) noexcept
{
    return __builtin_shufflevector(pixels, pixels, 3, 3, 3, 3, 7, 7, 7, 7);
}

constexpr Words alphaOnly{0, 0, 0, 255, 0, 0, 0, 255};

// What the three kinds of colours do to two pixels below them.

struct Multiplied
{
    // Clamped, for a colour above its alpha is possible in what a client made.
    static Words Over(const Words& from, const Words& to) noexcept
    {
        const Words sum = from + By255(to * (255 - AlphaOf(from)));
        return sum > 255 ? Words{} + 255 : sum;
    }
};

struct Straight
{
    static Words Over(const Words& from, const Words& to) noexcept
    {
        const Words alpha = AlphaOf(from);
        return By255(from * alpha + to * (255 - alpha));
    }
};

struct StraightOverMultiplied
{
    static Words Over(const Words& from, const Words& to) noexcept
    {
        // The alpha is a channel of full strength.
        const Words alpha = AlphaOf(from);
        return By255((from | alphaOnly) * alpha + to * (255 - alpha));
    }
};

template <class Kind>
void BlendRun(const DWORD* from, DWORD* to, int n, DWORD mask) noexcept
{
    const auto blend = [mask](const DWORD* above, DWORD* below) {
        Bytes in;
        Bytes out;
        std::memcpy(&in, above, sizeof in);
        std::memcpy(&out, below, sizeof out);
        out = Joined(Kind::Over(LowPixels(in), LowPixels(out)), Kind::Over(HighPixels(in), HighPixels(out)));
        const auto masked = reinterpret_cast<Ints>(out) & static_cast<int>(mask);
        std::memcpy(below, &masked, sizeof masked);
    };
    int x = 0;
    for (; x + 4 <= n; x += 4)
        blend(from + x, to + x);
    if (x == n) return;
    const auto nRest = static_cast<std::size_t>(n - x) * sizeof(DWORD);
    DWORD above[4]{};
    DWORD below[4]{};
    std::memcpy(above, from + x, nRest);
    std::memcpy(below, to + x, nRest);
    blend(above, below);
    std::memcpy(to + x, below, nRest);
}

void CopyRun(const DWORD* from, DWORD* to, int n, DWORD mask, DWORD set) noexcept
{
    for (int x = 0; x < n; ++x)
        to[x] = (from[x] & mask) | set;
}

DWORD StraightPixel(DWORD pixel) noexcept
{
    const DWORD alpha = pixel >> 24;
    if (alpha == 255) return pixel;
    if (alpha == 0) return 0;
    DWORD straight = pixel & ALPHA_BITS;
    for (const int nShift : {0, 8, 16})
        straight |= std::min<DWORD>((Channel(pixel, nShift) * 255 + alpha / 2) / alpha, 255) << nShift;
    return straight;
}

// Both of straight alpha: the colours are weighed by what is seen of each.
DWORD StraightOver(DWORD from, DWORD to) noexcept
{
    const DWORD above = (from >> 24) * 255;
    const DWORD below = (to >> 24) * (255 - (from >> 24));
    const DWORD all = above + below;
    if (all == 0) return to;
    DWORD pixel = gdiplus::By255(all) << 24;
    for (const int nShift : {0, 8, 16}) {
        const DWORD sum = Channel(from, nShift) * above + Channel(to, nShift) * below;
        pixel |= (sum + all / 2) / all << nShift;
    }
    return pixel;
}

void BlendStraightRun(const DWORD* from, Alpha fromAlpha, DWORD* to, int n) noexcept
{
    for (int x = 0; x < n; ++x) {
        const DWORD above = fromAlpha == Alpha::Straight ? from[x] : StraightPixel(from[x]);
        if (above >> 24 == 255)
            to[x] = above;
        else if (above >> 24 != 0)
            to[x] = StraightOver(above, to[x]);
    }
}

} // namespace

void ToStraight(const DWORD* from, DWORD* to, int n) noexcept
{
    std::transform(from, from + n, to, StraightPixel);
}

void Blend(const DWORD* from, Alpha fromAlpha, DWORD* to, Alpha toAlpha, int n) noexcept
{
    const DWORD mask = toAlpha == Alpha::Opaque ? gdi::COLOR_BITS : ~DWORD{0};
    if (fromAlpha == Alpha::Opaque) return CopyRun(from, to, n, gdi::COLOR_BITS, ALPHA_BITS & mask);
    if (toAlpha == Alpha::Straight) return BlendStraightRun(from, fromAlpha, to, n);
    if (fromAlpha == Alpha::Premultiplied) return BlendRun<Multiplied>(from, to, n, mask);
    if (toAlpha == Alpha::Opaque) return BlendRun<Straight>(from, to, n, mask);
    BlendRun<StraightOverMultiplied>(from, to, n, mask);
}

} // namespace kx::gdiplus
