#include "platform/Cpu.h"
#include "platform/gdi/Copies.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace kx::gdi {

namespace {

// For short rows a call takes longer than the copy: they are moved in blocks, the last of which may lie over
// the one before it.
template <std::size_t nBlock>
[[gnu::always_inline]] inline void CopyInBlocks(DWORD* out, const DWORD* in, std::size_t nPixels) noexcept
{
    for (std::size_t n = 0; n + nBlock < nPixels; n += nBlock)
        std::memcpy(out + n, in + n, nBlock * sizeof(DWORD));
    std::memcpy(out + nPixels - nBlock, in + nPixels - nBlock, nBlock * sizeof(DWORD));
}

// Long rows the C library copies by one string instruction. On some processors that takes ten times as long
// where the target lies a few pixels further into its page than the source, so there they are copied in
// pieces short enough for its vector loops.
void CopyLongRow(DWORD* out, const DWORD* in, std::size_t nPixels) noexcept
{
    constexpr std::size_t nPiece = 512;
    const auto nAhead = (reinterpret_cast<std::uintptr_t>(out) - reinterpret_cast<std::uintptr_t>(in)) % 4096;
    if (nAhead > 0 && nAhead < 64) {
        for (; nPixels > nPiece; nPixels -= nPiece, out += nPiece, in += nPiece)
            std::memmove(out, in, nPiece * sizeof(DWORD));
    }
    std::memmove(out, in, nPixels * sizeof(DWORD));
}

[[gnu::always_inline]] inline void CopyRow(DWORD* out, const DWORD* in, std::size_t nPixels) noexcept
{
    if (nPixels > 32)
        CopyLongRow(out, in, nPixels);
    else if (nPixels >= 8)
        CopyInBlocks<8>(out, in, nPixels);
    else if (nPixels >= 2)
        CopyInBlocks<2>(out, in, nPixels);
    else
        *out = *in;
}

// Rows within one surface are taken from the end that the copy moves to, so that none is overwritten unread.
[[gnu::always_inline]] inline void CopyRowsInline(Surface& to, const Surface& from, const Fit& fit) noexcept
{
    const RECT& area = fit.area;
    if (IsEmpty(area)) return;
    const bool bUpwards = &to == &from && fit.dy > 0;
    const bool bOntoItself = &to == &from && fit.dy == 0; // within a row
    const int nFirst = bUpwards ? area.bottom - 1 : area.top;
    const std::ptrdiff_t nStep = bUpwards ? -1 : 1;
    auto nPixels = static_cast<std::size_t>(area.right - area.left);
    DWORD* out = to.Row(nFirst) + area.left;
    const DWORD* in = from.Row(nFirst - fit.dy) + area.left - fit.dx;
    int nRows = area.bottom - area.top;
    if (&to != &from && static_cast<std::ptrdiff_t>(nPixels) == to.Stride() &&
        to.Stride() == from.Stride()) // the rows lie without a gap
        nPixels *= static_cast<std::size_t>(std::exchange(nRows, 1));
    for (; nRows > 0; --nRows) {
        if (bOntoItself)
            std::memmove(out, in, nPixels * sizeof(DWORD));
        else
            CopyRow(out, in, nPixels);
        out += nStep * to.Stride();
        in += nStep * from.Stride();
    }
}

void CopyRowsPlain(Surface& to, const Surface& from, const Fit& fit) noexcept
{
    CopyRowsInline(to, from, fit);
}

KX_AVX2 void CopyRowsAvx2(Surface& to, const Surface& from, const Fit& fit) noexcept
{
    CopyRowsInline(to, from, fit);
}

void CopyRows(Surface& to, const Surface& from, const Fit& fit) noexcept
{
    HasAvx2() ? CopyRowsAvx2(to, from, fit) : CopyRowsPlain(to, from, fit);
}

// The parts in an order in which none overwrites what a later one reads.
std::vector<RECT> Ordered(std::span<const RECT> clip, const Fit& fit)
{
    std::vector<RECT> parts(clip.begin(), clip.end());
    std::sort(parts.begin(), parts.end(), [&](const RECT& a, const RECT& b) {
        if (a.top != b.top) return (fit.dy > 0) == (a.top > b.top);
        return fit.dx > 0 ? a.left > b.left : a.left < b.left;
    });
    return parts;
}

} // namespace

void CopyBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc)
{
    const Fit fit = FitBlock(to, block, from, xSrc, ySrc);
    const auto copy = [&](std::span<const RECT> parts) {
        for (const RECT& part : parts)
            CopyRows(to.surface, from.surface, {Cut(fit.area, part), fit.dx, fit.dy});
    };
    if (&to.surface == &from.surface && to.clip.size() > 1)
        copy(Ordered(to.clip, fit));
    else
        copy(to.clip);
}

Surface Snapshot(const Surface& surface, const RECT& area)
{
    auto copy = Surface::Make(area.right - area.left, area.bottom - area.top);
    if (!copy) throw std::bad_alloc();
    CopyRows(*copy, surface, {{0, 0, copy->Width(), copy->Height()}, -area.left, -area.top});
    return std::move(*copy);
}

} // namespace kx::gdi
