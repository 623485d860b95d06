#pragma once

#include "include/platform/Window.h"

namespace kx::window {

class Queue;

// Does what CreateWindowExA does, but that the hook, unless it is null, is the window's procedure. That may
// pass on to the class's own with CallClass.
HWND Create(CREATESTRUCTA create, HWND hParent, WNDPROC hook);
// By the window's thread; 0 for no such window.
LRESULT CallClass(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// Ends the windows of a thread that comes to its end. Their procedures hear nothing of it: what those use may
// be gone by then.
void EndWindowsOf(Queue& owner) noexcept;

} // namespace kx::window
