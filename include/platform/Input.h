#pragma once

// The mouse and the keyboard: messages that a desktop, or a host that posts them itself, gives to windows.

#include "Types.h"

// WPARAM: the MK_... held; LPARAM: x and y within the window in its low and high 16 bits.
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_RBUTTONDOWN = 0x0204;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_MBUTTONDOWN = 0x0207;
inline constexpr UINT WM_MBUTTONUP = 0x0208;
// To the window below the mouse. WPARAM: the MK_... held in its low 16 bits, and in its high ones how far the
// wheel was turned, WHEEL_DELTA for each notch and below 0 towards the user; LPARAM: x and y on the desktop.
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;
inline constexpr int WHEEL_DELTA = 120;
inline constexpr UINT MK_LBUTTON = 0x01;
inline constexpr UINT MK_RBUTTON = 0x02;
inline constexpr UINT MK_SHIFT = 0x04;
inline constexpr UINT MK_CONTROL = 0x08;
inline constexpr UINT MK_MBUTTON = 0x10;

// WPARAM: a VK_... number, for letters and digits their capital in ASCII; LPARAM: 1. A key without a number
// gives its characters alone.
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
// WPARAM: one byte of a character in the process's code page, so that one of two bytes makes two messages.
// A dead key gives none; the next one gives the character of both.
inline constexpr UINT WM_CHAR = 0x0102;

inline constexpr UINT VK_BACK = 0x08;
inline constexpr UINT VK_TAB = 0x09;
inline constexpr UINT VK_RETURN = 0x0D;
inline constexpr UINT VK_SHIFT = 0x10;
inline constexpr UINT VK_CONTROL = 0x11;
inline constexpr UINT VK_MENU = 0x12;
inline constexpr UINT VK_ESCAPE = 0x1B;
inline constexpr UINT VK_SPACE = 0x20;
inline constexpr UINT VK_PRIOR = 0x21;
inline constexpr UINT VK_NEXT = 0x22;
inline constexpr UINT VK_END = 0x23;
inline constexpr UINT VK_HOME = 0x24;
inline constexpr UINT VK_LEFT = 0x25;
inline constexpr UINT VK_UP = 0x26;
inline constexpr UINT VK_RIGHT = 0x27;
inline constexpr UINT VK_DOWN = 0x28;
inline constexpr UINT VK_DELETE = 0x2E;
inline constexpr UINT VK_F1 = 0x70; // up to VK_F1 + 11

constexpr int GET_X_LPARAM(std::intptr_t lParam)
{
    return static_cast<std::int16_t>(lParam & 0xFFFF);
}
constexpr int GET_Y_LPARAM(std::intptr_t lParam)
{
    return static_cast<std::int16_t>(lParam >> 16 & 0xFFFF);
}
