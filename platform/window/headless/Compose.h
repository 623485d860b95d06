#pragma once

#include "platform/gdi/Surface.h"

#include "include/platform/Window.h"

#include <optional>
#include <span>

namespace kx::window {

// The pixels of a desktop with the windows on it, from the lowest, each by its opacity; of them the rectangle
// is brought up to date. Those of the root where nothing lies on it, or for a lack of memory. Under the lock
// of the desktop's pixels.
gdi::Surface& Compose(std::span<const HWND> windows, const RECT& rect, gdi::Surface& root,
                      std::optional<gdi::Surface>& seen);

} // namespace kx::window
