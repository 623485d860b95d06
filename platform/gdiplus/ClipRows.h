#pragma once

#include "platform/gdi/Rect.h"

#include <algorithm>
#include <span>

namespace kx::gdiplus {

// Goes through the rows of an area that a clip leaves something of, from the top: `draw` gets the row and the
// clip's rectangles in it, of which some may miss the area. The clip's rectangles are disjoint, in rows from
// the top, those of one row of one height.
template <class Draw>
void ForRows(std::span<const RECT> clip, const RECT& area, Draw&& draw)
{
    while (!clip.empty()) {
        const RECT& first = clip.front();
        const auto end =
            std::find_if(clip.begin(), clip.end(), [&](const RECT& rect) { return rect.top != first.top; });
        const auto row = clip.first(static_cast<std::size_t>(end - clip.begin()));
        clip = clip.subspan(row.size());
        if (first.left >= area.right || row.back().right <= area.left) continue;
        const int nEnd = std::min(first.bottom, area.bottom);
        for (int y = std::max(first.top, area.top); y < nEnd; ++y)
            draw(y, row);
    }
}

// The least rectangle around a clip.
inline RECT BoundsOf(std::span<const RECT> clip) noexcept
{
    if (clip.empty()) return {};
    RECT bounds = clip.front();
    for (const RECT& rect : clip)
        bounds = {std::min(bounds.left, rect.left), bounds.top, std::max(bounds.right, rect.right),
                  rect.bottom};
    return bounds;
}

} // namespace kx::gdiplus
