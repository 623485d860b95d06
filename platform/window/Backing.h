#pragma once

#include "include/platform/Gdi.h"
#include "platform/gdi/PixelRegion.h"
#include "platform/screen/Screen.h"

#include <optional>

// The pixels that a window of this process keeps, from which the desktop shows it.

namespace kx::window {

class Window;

// A context that draws on a window's pixels, of which it reaches `limit` alone where there is one, or with
// null or the desktop's window on the desktop. Null for no such window and where the pixels can't be had;
// throws std::bad_alloc.
HDC OpenContext(HWND hWnd, const std::optional<gdi::PixelRegion>& limit);

// Gives the window's pixels its size, if they have another; what both sizes share stays. Gives the old size,
// 0 by 0 without pixels.
SIZE FitBacking(Window& window);

// The desktop's pixels below all windows, made of that size at the first use; null for a lack of memory.
std::shared_ptr<screen::Backing> Root(SIZE size) KX_REQUIRES(gdi::pixelLock);

} // namespace kx::window
