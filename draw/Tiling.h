#pragma once

#include <algorithm>
#include <cstdint>

namespace kx::draw {

// Calls `tile(offset, length)` for each tile of `nTile` pixels that covers `nRoom`, the last one cut. A tile
// without a length covers nothing.
template <class Tile>
void ForEachTile(std::int64_t nRoom, int nTile, Tile&& tile)
{
    if (nTile <= 0) return;
    for (std::int64_t done = 0; done < nRoom; done += nTile)
        tile(static_cast<int>(done), static_cast<int>(std::min<std::int64_t>(nRoom - done, nTile)));
}

} // namespace kx::draw
