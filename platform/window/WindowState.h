#pragma once

#include "include/KXExport.h"
#include "include/platform/Window.h"
#include "platform/window/Window.h"

// Changes of a window's life, visibility, place and focus. On the window's thread unless it says otherwise.

namespace kx::window {

// Shows or hides the window without announcing it: a shown one goes on top and is to be painted whole, a
// hidden one loses the focus (if another thread hides it, once its own thread gets to that). Any thread.
void Appear(Window& window, bool bVisible);

// The window's rectangle has changed: its pixels follow and it hears of it.
void TellPlace(Window& window, bool bMoved, bool bResized);

// The window manager shows the window by an icon from now on, or with null by none. Gives the old one. Any
// thread.
HICON SetIcon(Window& window, HICON hIcon);

// The desktop has given a window the keyboard: as SetFocus, but the desktop isn't asked for it.
void TakeFocus(HWND hWnd);
// The window can't have the keyboard any more: if it has it, it hears WM_KILLFOCUS.
void DropFocus(HWND hWnd);
// The same without a message, for a window that has ended.
void ForgetFocus(HWND hWnd) noexcept;

// The window, if it has the mouse to itself, hears that it has it no more.
void DropCapture(HWND hWnd);

// Does what CreateWindowExA does, but that the hook, unless it is null, is the window's procedure. That may
// pass on to the class's own with CallClass.
HWND Create(CREATESTRUCTA create, HWND hParent, WNDPROC hook);
// By the window's thread; 0 for no such window.
LRESULT CallClass(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// Ends the windows of a thread that comes to its end. Their procedures hear nothing of it: what those use may
// be gone by then.
void EndWindowsOf(Queue& owner) noexcept;

// ---- Chores
//
// Work for a window's thread that follows from what a desktop has learnt, or another thread has done. It goes
// through the thread's queue, in its place among the messages, and DispatchMessageA does it in place of the
// window's procedure. Of a kind there is one at most for each window: the newest.

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

} // namespace kx::window
