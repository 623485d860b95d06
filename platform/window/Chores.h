#pragma once

#include "include/KXExport.h"

#include "platform/window/Window.h"

// Work for a window's thread that follows from what a desktop has learnt, or another thread has done. It goes
// through the thread's queue, in its place among the messages, and DispatchMessageA does it in place of the
// window's procedure. Of a kind there is one at most for each window: the newest.

namespace kx::window {

inline constexpr UINT kChore = 0x0313; // below WM_USER, and no message that a window hears

enum class Chore : WPARAM
{
    Destroy, // it is gone from the desktop
    GainFocus,
    LoseFocus,
    Place,    // it lies where its rectangle, set already, says; the LPARAM tells what is new of it
    AskFocus, // it was shown to have the focus
    Hide,     // it was hidden, and so can't have it
};

// The bits of Place's LPARAM.
inline constexpr LPARAM kMoved = 1;
inline constexpr LPARAM kResized = 2;

KX_API void PostChore(HWND hWnd, Chore chore, LPARAM lParam = 0);
void DoChore(Window& window, Chore chore, LPARAM lParam);

} // namespace kx::window
