#pragma once

// Painting of windows. A window that is shown, grows or is invalidated has an update region; while it has one
// its thread gets WM_PAINT. Operations give 0 or null for no such window of this process.

#include "Window.h"

// A paint on its way.
struct PAINTSTRUCT
{
    // The surface.
    HDC hdc = nullptr;
    int fErase = 0; // non-zero: the background is still to be erased
    RECT rcPaint;   // the bounds of what is to be painted
};

// Adds a rectangle (null: all) of a visible window to its update region; with `bErase` it is erased first.
// Nothing happens for a hidden window. Any thread.
KX_API int InvalidateRect(HWND hWnd, const RECT* pRect, int bErase);
// Sends WM_PAINT at once if there is something to paint. By the window's thread.
KX_API int UpdateWindow(HWND hWnd);

// Empties the update region and gives a surface that drawing reaches it on alone, after WM_ERASEBKGND (with
// the surface as WPARAM) if it is to be erased. By the window's thread; ends with EndPaint, which shows what
// was drawn. Null, with the region empty all the same, where there are no pixels to draw on.
KX_API HDC BeginPaint(HWND hWnd, PAINTSTRUCT* pPaint);
KX_API int EndPaint(HWND hWnd, const PAINTSTRUCT* pPaint);

// How AnimateWindow shows or hides.
inline constexpr DWORD AW_HIDE = 0x10000;
inline constexpr DWORD AW_ACTIVATE = 0x20000;
inline constexpr DWORD AW_BLEND = 0x80000;

// Lets a window of the calling thread appear, or with AW_HIDE vanish. With AW_BLEND its opacity rises or
// falls evenly within `dwTime` milliseconds of the clock, without it that is done at once. One that appears
// is shown and painted first; one that is visible already is painted anew. Returns at the end; what other
// threads send is served meanwhile, what is posted isn't. It takes the focus with AW_ACTIVATE alone. 0 for a
// window to hide that is hidden, and at once for one that meanwhile ends or is animated anew.
KX_API int AnimateWindow(HWND hWnd, DWORD dwTime, DWORD dwFlags);
