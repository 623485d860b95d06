#include "platform/gdiplus/RotateFlip.h"

#include <algorithm>
#include <cstring>

namespace kx::gdiplus {

namespace {

constexpr int kTile = 16; // pixels of a cache line

// A turn by a quarter is a mirroring at the diagonal and one along an axis. It goes by tiles, so that the
// lines that a column touches serve their whole width.
void Transpose(const PixelView& from, gdi::Surface& to, bool bMirrorX, bool bMirrorY) noexcept
{
    for (int top = 0; top < from.height; top += kTile)
        for (int left = 0; left < from.width; left += kTile)
            for (int x = left; x < std::min(left + kTile, from.width); ++x) {
                DWORD* const row = to.Row(bMirrorY ? from.width - 1 - x : x);
                for (int y = top; y < std::min(top + kTile, from.height); ++y)
                    row[bMirrorX ? from.height - 1 - y : y] = from.Row(y)[x];
            }
}

void Mirror(const PixelView& from, gdi::Surface& to, bool bMirrorX, bool bMirrorY) noexcept
{
    for (int y = 0; y < from.height; ++y) {
        const DWORD* const row = from.Row(y);
        DWORD* const out = to.Row(bMirrorY ? from.height - 1 - y : y);
        if (bMirrorX)
            std::reverse_copy(row, row + from.width, out);
        else
            std::copy_n(row, from.width, out);
    }
}

} // namespace

std::optional<gdi::Surface> RotateFlip(const PixelView& from, Gdiplus::RotateFlipType type)
{
    const int nQuarters = type & 3;
    const bool bFlipX = (type & 4) != 0;
    const bool bTurned = nQuarters % 2 != 0;
    auto to = bTurned ? gdi::Surface::MakeUnset(from.height, from.width)
                      : gdi::Surface::MakeUnset(from.width, from.height);
    if (!to) return std::nullopt;
    const bool bHalf = nQuarters >= 2; // turned by a half besides
    if (bTurned)
        Transpose(from, *to, bHalf == bFlipX, bHalf);
    else
        Mirror(from, *to, bHalf != bFlipX, bHalf);
    return to;
}

} // namespace kx::gdiplus
