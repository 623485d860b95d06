#pragma once

#include "platform/Gdi.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace kx::draw {

struct Span
{
    int from;
    int to;
};

// The rows or columns of a device that can be drawn on; none of a null one.
inline Span SeenOf(HDC hDC, int bHorz)
{
    RECT seen;
    GetClipBox(hDC, &seen);
    return bHorz ? Span{seen.left, seen.right} : Span{seen.top, seen.bottom};
}

// Calls `tile(position, length)` for each tile of `nTile` pixels that covers `nRoom` from `from` on, the last
// one cut, but for those that can't be seen. A tile without a length covers nothing. `seen()` gives the Span
// that can be seen; it is asked where there is more than one tile.
template <class Seen, class Tile>
void ForEachTile(std::int64_t from, std::int64_t nRoom, int nTile, Seen&& seen, Tile&& tile)
{
    if (nTile <= 0 || nRoom <= 0) return;
    std::int64_t done = 0;
    std::int64_t end = nRoom;
    if (nRoom > nTile) {
        const Span span = seen();
        done = std::max(std::int64_t{0}, span.from - from) / nTile * nTile;
        end = std::min(end, span.to - from);
    }
    using Limits = std::numeric_limits<int>;
    for (; done < end; done += nTile)
        tile(static_cast<int>(std::clamp<std::int64_t>(from + done, Limits::min(), Limits::max())),
             static_cast<int>(std::min<std::int64_t>(nRoom - done, nTile)));
}

// Calls `step(position)` for each tile of `nTile` pixels that begins in `room`, one after the other from its
// beginning, but for those that lie outside of `seen` altogether.
template <class Step>
void ForEachStep(Span room, int nTile, Span seen, Step&& step)
{
    if (nTile <= 0) return;
    const std::int64_t before = std::max(std::int64_t{0}, std::int64_t{seen.from} - room.from) / nTile;
    const std::int64_t end = std::min(room.to, seen.to);
    for (std::int64_t at = room.from + before * nTile; at < end; at += nTile)
        step(static_cast<int>(at));
}

} // namespace kx::draw
