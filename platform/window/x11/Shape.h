#pragma once

#include "platform/gdi/PixelRegion.h"
#include "platform/window/x11/Connection.h"

namespace kx::window::x11 {

// Cuts a window to a region of its own coordinates, or with null to its rectangle again. Nothing happens on a
// server that knows rectangles alone.
void SetShape(const Connection& connection, xcb_window_t window, const gdi::PixelRegion* region);

} // namespace kx::window::x11
