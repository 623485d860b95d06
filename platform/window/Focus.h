#pragma once

#include "platform/window/Window.h"

// Which window has the keyboard.

namespace kx::window {

// The desktop has given a window the keyboard: all that SetFocus does but ask the desktop for it, who may
// have given it to another by now. By its thread.
void TakeFocus(HWND hWnd);
// The window no longer can have it: if it has, it hears WM_KILLFOCUS. By its thread.
void DropFocus(HWND hWnd);
// The same without a message, for one that has ended.
void ForgetFocus(HWND hWnd) noexcept;

} // namespace kx::window
