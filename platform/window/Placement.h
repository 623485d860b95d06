#pragma once

#include "platform/window/Window.h"

namespace kx::window {

// The window lies elsewhere, or has another size, by now: its pixels follow and it hears of it. By its
// thread.
void TellPlace(Window& window, bool bMoved, bool bResized);

} // namespace kx::window
