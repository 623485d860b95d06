#pragma once

#include "include/platform/Window.h"

namespace kx::window {

class Queue;

// The arguments of CreateWindowExA that count.
struct CreateArguments
{
    const char* className;
    const char* name;
    DWORD style;
    int x, y, cx, cy;
    HWND parent;
    void* param;
};
// Does what CreateWindowExA does, but that the hook, unless it is null, is the window's procedure. That may
// pass on to the class's own with CallClass.
HWND Create(const CreateArguments& create, WNDPROC hook);
// By the window's thread; 0 for no such window.
LRESULT CallClass(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// Ends the windows of a thread that comes to its end. Their procedures hear nothing of it: what those use may
// be gone by then.
void EndWindowsOf(Queue& owner) noexcept;

} // namespace kx::window
