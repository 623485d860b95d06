#pragma once

#include "platform/gdi/Canvas.h"

#include <optional>

namespace kx::gdi {

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
