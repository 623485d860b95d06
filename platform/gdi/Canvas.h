#pragma once

#include "platform/gdi/PixelRegion.h"
#include "platform/gdi/Surface.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace kx::gdi {

// The pixels that a device context draws on, for the length of one operation. Everything is in the surface's
// coordinates.
struct Canvas
{
    Surface& surface;
    RECT bounds;                // what may be read; within the surface
    std::span<const RECT> clip; // what may be written: disjoint, in rows from the top; within the reach
    RECT reach;                 // the least rectangle around the clip
    std::optional<sync::MutexLock> lock; // of shared pixels
};

// Calls `use(part)` for each rectangle of an area cut to the boxes of a region, which are disjoint and lie in
// rows from the top, each row from the left and of one height. Rows and boxes that the area doesn't touch are
// passed over by bisection, so that the cost grows with what is touched.
template <class Box, class Use>
void ForEachPart(std::span<const Box> boxes, const RECT& area, Use&& use)
{
    auto row = std::partition_point(boxes.begin(), boxes.end(),
                                    [&](const Box& box) { return ToRect(box).bottom <= area.top; });
    while (row != boxes.end() && ToRect(*row).top < area.bottom) {
        const LONG nTop = ToRect(*row).top;
        const auto end =
            std::partition_point(row, boxes.end(), [&](const Box& box) { return ToRect(box).top == nTop; });
        auto box = std::partition_point(row, end, [&](const Box& b) { return ToRect(b).right <= area.left; });
        for (; box != end && ToRect(*box).left < area.right; ++box)
            if (const RECT part = Cut(ToRect(*box), area); !IsEmpty(part)) use(part);
        row = end;
    }
}

// Fills a rectangle, which may reach out of the canvas's surface, with one pixel.
void FillArea(const Canvas& canvas, const RECT& area, DWORD pixel) noexcept;

// Block copies between two canvases, which may be of one surface and overlap. What lies outside either is
// left out. Those that may need a copy of the source for that throw std::bad_alloc and paint nothing then.

// One to one.
void CopyBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc);
// One to one, without the source's pixels of the colour `key`.
void CopyKeyedBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc, DWORD key);
// Each pixel from the one that its centre falls into, on an edge from the left or upper one; without those of
// the colour `key`, if there is one.
void ScaleBlock(const Canvas& to, const Block& block, const Canvas& from, const Block& source,
                std::optional<DWORD> key);

// A rectangle of a surface as one of its own. Throws std::bad_alloc.
Surface Snapshot(const Surface& surface, const RECT& area);

} // namespace kx::gdi
