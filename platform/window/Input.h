#pragma once

#include "include/platform/Input.h"
#include "include/platform/Window.h"

#include <bitset>

namespace kx::window {

// One thread's knowledge of the mouse and the keys, by the input that it has taken. By that thread alone.
struct Input
{
    HWND capture = nullptr; // gets the mouse wherever it is over the thread's windows
    HWND under = nullptr;   // the window that heard of the mouse last
    HCURSOR cursor = nullptr;
    HWND modal = nullptr; // the message box that has disabled the others
    MSG press;            // the newest press of a button, for double clicks
    std::bitset<256> down;
    std::bitset<256> toggled;
};

// A place as messages have it.
constexpr LPARAM PlaceOf(POINT at) noexcept
{
    return static_cast<LPARAM>(static_cast<WORD>(at.x) | DWORD{static_cast<WORD>(at.y)} << 16);
}

constexpr bool IsPress(UINT nMsg) noexcept
{
    return nMsg == WM_LBUTTONDOWN || nMsg == WM_RBUTTONDOWN || nMsg == WM_MBUTTONDOWN;
}

// Posts what a person does to a window: the mouse, keys, and the wish to close it. A disabled window doesn't
// hear it. With `bLatest` it replaces the newest message that the thread has yet to take, if that is the
// same. Non-zero if there was room.
KX_API int PostInput(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam, bool bLatest = false);

// Whether input that the thread has just taken is to be heard; it may become another message, or another
// window's. Without `bTaken` it is only looked at, and stays as it is.
bool HearInput(MSG& msg, bool bTaken);

} // namespace kx::window
