// The place of a window, and whether it is seen.

#include "platform/window/WindowState.h"

#include "include/platform/WindowPaint.h"
#include "platform/Errno.h"
#include "platform/gdi/PixelRegion.h"
#include "platform/screen/Screen.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"

#include <memory>

namespace kx::window {

namespace {

// Gives the window's pixels its size, if they have another; what both sizes share stays. Gives the old size,
// 0 by 0 without pixels.
SIZE FitBacking(Window& window)
{
    const sync::MutexLock lock(screen::pixelLock);
    return screen::Resize(window.backing, SizeOf(window.Rect()));
}

// Painted parts stay; the parts that a larger size brought are to be painted, for a class that wants it so
// all.
void InvalidateNew(const Window& window, SIZE before, SIZE now)
{
    const bool bAll = ((window.ClassStyle() & CS_HREDRAW) && before.cx != now.cx) ||
                      ((window.ClassStyle() & CS_VREDRAW) && before.cy != now.cy);
    const RECT right{before.cx, 0, now.cx, now.cy};
    const RECT below{0, before.cy, now.cx, now.cy};
    if (bAll) InvalidateRect(window.Handle(), nullptr, 1);
    if (!bAll && now.cx > before.cx) InvalidateRect(window.Handle(), &right, 1);
    if (!bAll && now.cy > before.cy) InvalidateRect(window.Handle(), &below, 1);
}

void Reorder(HWND hWnd, HWND hAfter)
{
    Order order = Order::Top;
    if (hAfter == HWND_BOTTOM) order = Order::Bottom;
    if (hAfter == HWND_TOPMOST) order = Order::Topmost;
    if (hAfter == HWND_NOTOPMOST) order = Order::NotTopmost;
    Desktop::Instance().Stack(hWnd, order);
}

RECT Wanted(const RECT& old, int x, int y, int nWidth, int nHeight, UINT nFlags) noexcept
{
    const SIZE size = SizeOf(old);
    const bool bKeepSize = (nFlags & SWP_NOSIZE) != 0;
    const bool bKeepPlace = (nFlags & SWP_NOMOVE) != 0;
    return RectOf(bKeepPlace ? old.left : x, bKeepPlace ? old.top : y, bKeepSize ? size.cx : nWidth,
                  bKeepSize ? size.cy : nHeight);
}

} // namespace

void Appear(Window& window, bool bVisible)
{
    const HWND hWnd = window.Handle();
    {
        const sync::MutexLock lock(screen::pixelLock);
        window.visible = bVisible;
        window.appeared = false;
    }
    Desktop::Instance().Show(hWnd, bVisible);
    if (bVisible) {
        Desktop::Instance().Stack(hWnd, Order::Top);
        InvalidateRect(hWnd, nullptr, 1);
        return;
    }
    window.Owner().TakeUpdate(window);
    if (IsThisThread(window.Owner())) {
        DropCapture(hWnd);
        DropFocus(hWnd);
    } else
        PostChore(hWnd, Chore::Hide);
}

void TellPlace(Window& window, bool bMoved, bool bResized)
{
    const SIZE before = FitBacking(window);
    const RECT rect = window.Rect();
    if (bResized) InvalidateNew(window, before, SizeOf(rect));
    if (bMoved) window.Call(WM_MOVE, 0, PlaceOf({rect.left, rect.top}));
    if (bResized && !window.ended)
        window.Call(WM_SIZE, 0, PlaceOf({rect.right - rect.left, rect.bottom - rect.top}));
}

} // namespace kx::window

namespace window = kx::window;

int SetWindowPos(HWND hWnd, HWND hAfter, int x, int y, int nWidth, int nHeight, UINT nFlags)
try {
    const auto found = window::FindOwn(hWnd);
    if (!found) return 0;
    const RECT old = found->Rect();
    const RECT rect = window::Wanted(old, x, y, nWidth, nHeight, nFlags);
    if (!(nFlags & SWP_NOZORDER)) window::Reorder(hWnd, hAfter);
    if (rect != old) {
        window::Desktop::Instance().Place(*found, rect);
        const bool bMoved = rect.left != old.left || rect.top != old.top;
        window::TellPlace(*found, bMoved, window::SizeOf(rect) != window::SizeOf(old));
    }
    if (nFlags & SWP_SHOWWINDOW) ShowWindow(hWnd, SW_SHOWNA);
    if (nFlags & SWP_HIDEWINDOW) ShowWindow(hWnd, SW_HIDE);
    if (!(nFlags & (SWP_NOACTIVATE | SWP_HIDEWINDOW)) && IsWindowVisible(hWnd)) SetFocus(hWnd);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

int SetWindowRgn(HWND hWnd, HRGN hRgn, int bRedraw)
try {
    const auto window = window::FindOwn(hWnd);
    const auto region = kx::gdi::FindAs<kx::gdi::Region>(hRgn);
    if (!window) return 0;
    if (hRgn && !region) return kx::Fail(ERROR_INVALID_HANDLE);
    {
        const kx::sync::MutexLock lock(kx::screen::pixelLock);
        window->shape.reset();
        if (region) window->shape = region->pixels;
    }
    window::Desktop::Instance().Shape(hWnd, region ? &region->pixels : nullptr);
    if (hRgn) DeleteObject(hRgn);
    if (bRedraw) InvalidateRect(hWnd, nullptr, 1);
    return 1;
} catch (...) {
    return kx::NoMemory();
}
