#include "platform/gdi/Copies.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>
#include <vector>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kx::gdi {

namespace {

constexpr std::size_t kShort = 24 * sizeof(DWORD);

// So few pixels are copied sooner than a call of memcpy is made.
void CopyShort(DWORD* out, const DWORD* in, std::size_t nBytes) noexcept
{
    const DWORD* const end = in + nBytes / sizeof(DWORD);
    for (; end - in >= 8; out += 8, in += 8)
        std::memcpy(out, in, 8 * sizeof(DWORD));
    for (; in != end; ++out, ++in)
        std::memcpy(out, in, sizeof(DWORD));
}

constexpr std::size_t kLarge = 4 << 20;

// More than caches hold is written past them, so that what it overwrites isn't read into them first.
void CopyLarge(DWORD* out, const DWORD* in, std::size_t nBytes) noexcept
{
#if defined(__SSE2__)
    constexpr std::size_t kAtOnce = 4, kAhead = 512;
    const DWORD* const end = in + nBytes / sizeof(DWORD);
    const bool bAligned = reinterpret_cast<std::uintptr_t>(out) % sizeof(__m128i) == 0;
    for (; bAligned && end - in >= 16; out += 16, in += 16) {
        auto* const target = reinterpret_cast<__m128i*>(out);
        const auto* const source = reinterpret_cast<const __m128i*>(in);
        _mm_prefetch(reinterpret_cast<const char*>(in) + kAhead, _MM_HINT_NTA);
        __m128i units[kAtOnce];
        for (std::size_t n = 0; n < kAtOnce; ++n)
            units[n] = _mm_loadu_si128(source + n);
        for (std::size_t n = 0; n < kAtOnce; ++n)
            _mm_stream_si128(target + n, units[n]);
    }
    _mm_sfence();
    nBytes = static_cast<std::size_t>(end - in) * sizeof(DWORD);
#endif
    std::memcpy(out, in, nBytes);
}

// Rows within one surface are taken from the end that the copy moves to, so that none is overwritten unread.
void CopyRows(Surface& to, const Surface& from, const Fit& fit) noexcept
{
    const RECT& area = fit.area;
    const bool bSame = &to == &from;
    const bool bFromBottom = bSame && fit.dy > 0;
    const int nFirst = bFromBottom ? area.bottom - 1 : area.top;
    const std::ptrdiff_t nOutStep = bFromBottom ? -to.Stride() : to.Stride();
    const std::ptrdiff_t nInStep = bFromBottom ? -from.Stride() : from.Stride();
    DWORD* out = to.Row(nFirst) + area.left;
    const DWORD* in = from.Row(nFirst - fit.dy) + area.left - fit.dx;
    std::size_t nBytes = static_cast<std::size_t>(area.right - area.left) * sizeof(DWORD);
    int nRows = area.bottom - area.top;
    if (!bSame && area.right - area.left == nOutStep && nOutStep == nInStep) // no gap between the rows
        nBytes *= static_cast<std::size_t>(std::exchange(nRows, 1));
    for (; nRows > 0; --nRows, out += nOutStep, in += nInStep)
        if (bSame)
            std::memmove(out, in, nBytes);
        else if (nBytes <= kShort)
            CopyShort(out, in, nBytes);
        else if (nBytes >= kLarge)
            CopyLarge(out, in, nBytes);
        else
            std::memcpy(out, in, nBytes);
}

// Puts the parts of a copy within one surface in an order in which none overwrites what a later one reads.
void Order(std::vector<RECT>& parts, const Fit& fit)
{
    std::sort(parts.begin(), parts.end(), [&](const RECT& a, const RECT& b) {
        if (a.top != b.top) return (fit.dy > 0) == (a.top > b.top);
        return fit.dx > 0 ? a.left > b.left : a.left < b.left;
    });
}

} // namespace

void CopyBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc)
{
    const Fit fit = FitBlock(to, block, from, xSrc, ySrc);
    const auto copy = [&](const RECT& part) { CopyRows(to.surface, from.surface, {part, fit.dx, fit.dy}); };
    if (&to.surface != &from.surface || to.clip.size() == 1) return ForEachPart(to.clip, fit.area, copy);
    std::vector<RECT> parts;
    ForEachPart(to.clip, fit.area, [&](const RECT& part) { parts.push_back(part); });
    Order(parts, fit);
    std::for_each(parts.begin(), parts.end(), copy);
}

Surface Snapshot(const Surface& surface, const RECT& area)
{
    auto copy = Surface::Make(area.right - area.left, area.bottom - area.top);
    if (!copy) throw std::bad_alloc();
    CopyRows(*copy, surface, {{0, 0, copy->Width(), copy->Height()}, -area.left, -area.top});
    return std::move(*copy);
}

} // namespace kx::gdi
