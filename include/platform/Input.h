#pragma once

// The mouse and the keyboard: messages that a desktop, or a host that posts them itself, gives to windows.

#include "../KXExport.h"
#include "Types.h"

// WPARAM: the MK_... held; LPARAM: x and y within the window in its low and high 16 bits.
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203; // in place of the second press, for a class of CS_DBLCLKS
inline constexpr UINT WM_RBUTTONDOWN = 0x0204;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
inline constexpr UINT WM_MBUTTONDOWN = 0x0207;
inline constexpr UINT WM_MBUTTONUP = 0x0208;
inline constexpr UINT WM_MBUTTONDBLCLK = 0x0209;
// To the window below the mouse. WPARAM: the MK_... held in its low 16 bits, and in its high ones how far the
// wheel was turned, WHEEL_DELTA for each notch and below 0 towards the user; LPARAM: x and y on the desktop.
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;
inline constexpr int WHEEL_DELTA = 120;
inline constexpr UINT MK_LBUTTON = 0x01;
inline constexpr UINT MK_RBUTTON = 0x02;
inline constexpr UINT MK_SHIFT = 0x04;
inline constexpr UINT MK_CONTROL = 0x08;
inline constexpr UINT MK_MBUTTON = 0x10;

// The window has the mouse to itself no more; LPARAM: the window that has, or 0.
inline constexpr UINT WM_CAPTURECHANGED = 0x0215;
// The mouse has left the window, which had asked with TrackMouseEvent to hear of it.
inline constexpr UINT WM_MOUSELEAVE = 0x02A3;
// Before each message of the mouse, unless it is captured. WPARAM: the window; LPARAM: HTCLIENT in its low 16
// bits, the message's number in its high ones. A handler sets the cursor and gives 1.
inline constexpr UINT WM_SETCURSOR = 0x0020;
inline constexpr int HTCLIENT = 1;

// WPARAM: a VK_... number, for letters and digits their capital in ASCII; LPARAM: 1, with bit 30 for a key
// that was down already (it is held, and repeats), and bits 30 and 31 for one that goes up. A key without a
// number gives its characters alone. With Alt held, and for Alt itself, the WM_SYS... come instead, with bit
// 29 as well.
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_SYSKEYDOWN = 0x0104;
inline constexpr UINT WM_SYSKEYUP = 0x0105;
inline constexpr UINT WM_SYSCHAR = 0x0106;
// WPARAM: one byte of a character in the process's code page, so that one of two bytes makes two messages.
// A dead key gives none; the next one gives the character of both.
inline constexpr UINT WM_CHAR = 0x0102;

// Keys, by the platform's numbers; letters and digits are their own characters.
inline constexpr UINT VK_BACK = 0x08;
inline constexpr UINT VK_TAB = 0x09;
inline constexpr UINT VK_RETURN = 0x0D;
inline constexpr UINT VK_SHIFT = 0x10;
inline constexpr UINT VK_CONTROL = 0x11;
inline constexpr UINT VK_MENU = 0x12;
inline constexpr UINT VK_PAUSE = 0x13;
inline constexpr UINT VK_CAPITAL = 0x14;
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
inline constexpr UINT VK_SNAPSHOT = 0x2C;
inline constexpr UINT VK_INSERT = 0x2D;
inline constexpr UINT VK_DELETE = 0x2E;
inline constexpr UINT VK_LWIN = 0x5B;
inline constexpr UINT VK_RWIN = 0x5C;
inline constexpr UINT VK_APPS = 0x5D;
// The number block, whose keys have the numbers of moves while Num Lock is off.
inline constexpr UINT VK_NUMPAD0 = 0x60; // up to VK_NUMPAD0 + 9
inline constexpr UINT VK_MULTIPLY = 0x6A;
inline constexpr UINT VK_ADD = 0x6B;
inline constexpr UINT VK_SEPARATOR = 0x6C;
inline constexpr UINT VK_SUBTRACT = 0x6D;
inline constexpr UINT VK_DECIMAL = 0x6E;
inline constexpr UINT VK_DIVIDE = 0x6F;
inline constexpr UINT VK_F1 = 0x70; // up to VK_F1 + 23
inline constexpr UINT VK_NUMLOCK = 0x90;
inline constexpr UINT VK_SCROLL = 0x91;
// By what they mean on a US keyboard, or else by where they lie.
inline constexpr UINT VK_OEM_1 = 0xBA; // ;
inline constexpr UINT VK_OEM_PLUS = 0xBB;
inline constexpr UINT VK_OEM_COMMA = 0xBC;
inline constexpr UINT VK_OEM_MINUS = 0xBD;
inline constexpr UINT VK_OEM_PERIOD = 0xBE;
inline constexpr UINT VK_OEM_2 = 0xBF;   // /
inline constexpr UINT VK_OEM_3 = 0xC0;   // `
inline constexpr UINT VK_OEM_4 = 0xDB;   // [
inline constexpr UINT VK_OEM_5 = 0xDC;   // the backslash
inline constexpr UINT VK_OEM_6 = 0xDD;   // ]
inline constexpr UINT VK_OEM_7 = 0xDE;   // '
inline constexpr UINT VK_OEM_102 = 0xE2; // beside the left Shift

// Whether a key was down (bit 15) when the thread took its newest message, and an odd number of times pressed
// (bit 0).
KX_API short GetKeyState(int nKey) noexcept;

// Gives a window of the calling thread all of the mouse that the thread's windows hear, until ReleaseCapture.
// It hears WM_CAPTURECHANGED when that ends, also when another window takes it, and when it is hidden,
// disabled or loses the focus to another program. Beyond the thread's windows the mouse is heard as long as a
// button is held. Gives the old one, null for none and on failure.
KX_API HWND SetCapture(HWND hWnd);
KX_API int ReleaseCapture();
KX_API HWND GetCapture() noexcept;

// Requests to TrackMouseEvent: WM_MOUSELEAVE, or no longer.
inline constexpr DWORD TME_LEAVE = 0x00000002;
inline constexpr DWORD TME_CANCEL = 0x80000000;
struct TRACKMOUSEEVENT
{
    // The record's size, and what is asked for.
    DWORD cbSize = sizeof(TRACKMOUSEEVENT);
    DWORD dwFlags = 0; // TME_LEAVE, with TME_CANCEL to hear of it no more
    // The window.
    HWND hwndTrack = nullptr;
    DWORD dwHoverTime = 0; // not used
};
// Has a window of the calling thread get WM_MOUSELEAVE, once. Non-zero on success; 0 without TME_LEAVE.
KX_API int TrackMouseEvent(TRACKMOUSEEVENT* pEvent);

// The system's cursors, for LoadCursorA.
inline const char* const IDC_ARROW = reinterpret_cast<const char*>(32512);
inline const char* const IDC_IBEAM = reinterpret_cast<const char*>(32513);
inline const char* const IDC_WAIT = reinterpret_cast<const char*>(32514);
inline const char* const IDC_CROSS = reinterpret_cast<const char*>(32515);
inline const char* const IDC_SIZENWSE = reinterpret_cast<const char*>(32642);
inline const char* const IDC_SIZENESW = reinterpret_cast<const char*>(32643);
inline const char* const IDC_SIZEWE = reinterpret_cast<const char*>(32644);
inline const char* const IDC_SIZENS = reinterpret_cast<const char*>(32645);
inline const char* const IDC_SIZEALL = reinterpret_cast<const char*>(32646);
inline const char* const IDC_NO = reinterpret_cast<const char*>(32648);
inline const char* const IDC_HAND = reinterpret_cast<const char*>(32649);
inline const char* const IDC_APPSTARTING = reinterpret_cast<const char*>(32650);
// One of the system's cursors, which nobody frees; the instance is null. Null for any other.
KX_API HCURSOR LoadCursorA(HINSTANCE hInstance, const char* pszName) noexcept;
// Sets what the mouse looks like over the window of the calling thread that heard of it last, until the next
// WM_SETCURSOR; null hides it. Gives the old one.
KX_API HCURSOR SetCursor(HCURSOR hCursor);

// Tells where text is being written in the calling thread's window that has the focus, in its coordinates: an
// input method shows its candidates below. Nothing is drawn. 0 when none of the thread's has the focus.
KX_API int SetCaretPos(int x, int y);

// The x of a place in an LPARAM, which may be negative.
constexpr int GET_X_LPARAM(std::intptr_t lParam)
{
    return static_cast<std::int16_t>(lParam & 0xFFFF);
}
// The y of a place in an LPARAM, which may be negative.
constexpr int GET_Y_LPARAM(std::intptr_t lParam)
{
    return static_cast<std::int16_t>(lParam >> 16 & 0xFFFF);
}
