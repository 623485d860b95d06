#include "include/platform/WindowPaint.h"
#include "platform/Errno.h"
#include "platform/window/Backing.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowTable.h"

int InvalidateRect(HWND hWnd, const RECT* pRect, int bErase)
try {
    const auto window = kx::window::FindAny(hWnd);
    if (!window) return 0;
    const RECT client = kx::window::WithinItself(window->Rect());
    const RECT rect = pRect ? kx::gdi::Cut(*pRect, client) : client;
    if (window->visible) window->Owner().Invalidate(*window, rect, bErase != 0);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

int UpdateWindow(HWND hWnd)
try {
    const auto window = kx::window::FindOwn(hWnd);
    if (!window) return 0;
    if (window->Owner().HasUpdate(*window)) window->Call(WM_PAINT, 0, 0);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

HDC BeginPaint(HWND hWnd, PAINTSTRUCT* pPaint)
try {
    const auto window = kx::window::FindOwn(hWnd);
    if (!window || !pPaint) return nullptr;
    const kx::window::Update update = window->Owner().TakeUpdate(*window);
    *pPaint = {kx::window::OpenContext(hWnd, update.region), update.erase, update.region.Extents()};
    if (pPaint->hdc && update.erase)
        pPaint->fErase = !SendMessageA(hWnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(pPaint->hdc), 0);
    return pPaint->hdc;
} catch (...) {
    return kx::NoMemory();
}

int EndPaint(HWND hWnd, const PAINTSTRUCT* pPaint)
{
    return pPaint ? ReleaseDC(hWnd, pPaint->hdc) : 0;
}
