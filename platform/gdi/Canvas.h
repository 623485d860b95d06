#pragma once

#include "platform/gdi/PixelRegion.h"
#include "platform/gdi/Surface.h"

#include <mutex>
#include <span>

namespace kx::gdi {

// Where a device context draws, for the length of one operation. Everything is in the surface's
// coordinates.
struct Canvas
{
    Surface& surface;
    RECT bounds;                // what may be read; within the surface
    std::span<const RECT> clip; // what may be written: disjoint, in rows from the top; within the bounds
    // Held while the surface is the desktop's, which windows of several threads share.
    std::unique_lock<std::recursive_mutex> lock;
};

} // namespace kx::gdi
