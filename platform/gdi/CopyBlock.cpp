#include "platform/Cpu.h"
#include "platform/gdi/Copies.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace kx::gdi {

namespace {

// Rows of one width, and how far it is from one to the next.
struct Rows
{
    DWORD* out;
    const DWORD* in;
    std::ptrdiff_t outStep;
    std::ptrdiff_t inStep;
    std::size_t pixels;
    int count;

    template <class Copy>
    [[gnu::always_inline]] void Each(const Copy& copy) const noexcept
    {
        DWORD* to = out;
        const DWORD* from = in;
        for (int n = count; n > 0; --n, to += outStep, from += inStep)
            copy(to, from);
    }
};

// For short rows a call takes longer than the copy: they are moved in blocks, the last of which may lie over
// the one before it.
template <std::size_t nBlock>
[[gnu::always_inline]] inline void CopyInBlocks(const Rows& rows, std::size_t nBlocks) noexcept
{
    const std::size_t nLast = rows.pixels - nBlock;
    rows.Each([=](DWORD* to, const DWORD* from) {
        for (std::size_t n = 0; n + 1 < nBlocks; ++n)
            std::memcpy(to + n * nBlock, from + n * nBlock, nBlock * sizeof(DWORD));
        std::memcpy(to + nLast, from + nLast, nBlock * sizeof(DWORD));
    });
}

// Of at least kLongRow pixels; the last block may lie over the one before it. The C library takes a string
// instruction for these, which is slower beyond the first cache, and on some processors ten times as slow
// where the target lies a few pixels further into its page than the source.
constexpr std::size_t kLongRow = 32;
[[gnu::always_inline]] inline void CopyLongRow(DWORD* out, const DWORD* in, std::size_t nPixels) noexcept
{
    using Block [[gnu::vector_size(32), gnu::aligned(4), gnu::may_alias]] = DWORD;
    constexpr std::size_t nBlock = sizeof(Block) / sizeof(DWORD);
    static_assert(4 * nBlock == kLongRow);
    const auto copy = [&](std::size_t n) {
        const Block* const from = reinterpret_cast<const Block*>(in + n);
        Block* const to = reinterpret_cast<Block*>(out + n);
        const Block first = from[0], second = from[1], third = from[2], fourth = from[3];
        to[0] = first;
        to[1] = second;
        to[2] = third;
        to[3] = fourth;
    };
    const std::size_t nLast = nPixels - kLongRow;
    for (std::size_t n = 0; n < nLast; n += kLongRow)
        copy(n);
    copy(nLast);
}

[[gnu::always_inline]] inline void CopyEach(const Rows& rows) noexcept
{
    switch (rows.pixels / 8) {
    case 0:
        if (rows.pixels == 1)
            rows.Each([](DWORD* to, const DWORD* from) { *to = *from; });
        else
            CopyInBlocks<2>(rows, (rows.pixels + 1) / 2);
        break;
    case 1:
        CopyInBlocks<8>(rows, 2);
        break;
    case 2:
        CopyInBlocks<8>(rows, 3);
        break;
    case 3:
        CopyInBlocks<8>(rows, 4);
        break;
    default:
        rows.Each([&](DWORD* to, const DWORD* from) { CopyLongRow(to, from, rows.pixels); });
    }
}

// Rows within one surface are taken from the end that the copy moves to, so that none is overwritten unread.
[[gnu::always_inline]] inline void CopyRowsInline(Surface& to, const Surface& from, const Fit& fit) noexcept
{
    const RECT& area = fit.area;
    if (IsEmpty(area)) return;
    const bool bUpwards = &to == &from && fit.dy > 0;
    const int nFirst = bUpwards ? area.bottom - 1 : area.top;
    const std::ptrdiff_t nStep = bUpwards ? -1 : 1;
    Rows rows{
        to.Row(nFirst) + area.left, from.Row(nFirst - fit.dy) + area.left - fit.dx,   nStep * to.Stride(),
        nStep * from.Stride(),      static_cast<std::size_t>(area.right - area.left), area.bottom - area.top};
    if (&to == &from && fit.dy == 0) { // each within itself
        rows.Each([&](DWORD* out, const DWORD* in) { std::memmove(out, in, rows.pixels * sizeof(DWORD)); });
        return;
    }
    const auto nWidth = static_cast<std::ptrdiff_t>(rows.pixels);
    if (&to != &from && nWidth == to.Stride() && nWidth == from.Stride()) // without a gap between them
        rows.pixels *= static_cast<std::size_t>(std::exchange(rows.count, 1));
    CopyEach(rows);
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
        for (const RECT& part : parts) {
            CopyRows(to.surface, from.surface, {Cut(fit.area, part), fit.dx, fit.dy});
        }
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
