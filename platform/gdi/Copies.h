#pragma once

#include "platform/gdi/Canvas.h"

#include <cstdint>
#include <optional>

namespace kx::gdi {

// The part of a one-to-one copy that lies on both surfaces: `area` of the destination's, of which each pixel
// comes from the source's that lies `dx` to the left and `dy` above it.
struct Fit
{
    RECT area;
    int dx = 0;
    int dy = 0;
};

inline Fit FitBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc) noexcept
{
    const std::int64_t dx = std::int64_t{block.x} - xSrc;
    const std::int64_t dy = std::int64_t{block.y} - ySrc;
    const RECT area = Cut(Cut(Place(block), to.reach), Moved(from.bounds, dx, dy));
    if (IsEmpty(area)) return {};
    return {area, static_cast<int>(dx), static_cast<int>(dy)};
}

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
