#pragma once

#include "platform/window/Window.h"

namespace kx::window {

// The window becomes visible, on top and to be painted whole, or hidden and without the focus, with no
// message before it. From another thread than its own it is without the focus once that one comes to it.
void Appear(Window& window, bool bVisible);

} // namespace kx::window
