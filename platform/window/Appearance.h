#pragma once

#include "platform/window/Window.h"

namespace kx::window {

// The window becomes visible, on top and to be painted whole, or hidden and without the focus, with no
// message before it. Any thread; the focus is lost only by its own.
void Appear(Window& window, bool bVisible);

} // namespace kx::window
