#include "include/platform/WindowPaint.h"
#include "platform/Errno.h"
#include "platform/gdi/PixelRegion.h"
#include "platform/screen/Screen.h"
#include "platform/window/Desktop.h"
#include "platform/window/ThreadQueue.h"

#include <new>

int SetWindowRgn(HWND hWnd, HRGN hRgn, int bRedraw)
try {
    const auto window = kx::window::FindOwn(hWnd);
    const auto region = kx::gdi::FindAs<kx::gdi::Region>(hRgn);
    if (!window) return 0;
    if (hRgn && !region) return kx::Fail(ERROR_INVALID_HANDLE);
    {
        const kx::sync::MutexLock lock(kx::gdi::pixelLock);
        window->shape.reset();
        if (region) window->shape = region->pixels;
        kx::window::Desktop::Instance().Shape(hWnd, region ? &*window->shape : nullptr);
    }
    if (hRgn) DeleteObject(hRgn);
    if (bRedraw) InvalidateRect(hWnd, nullptr, 1);
    return 1;
} catch (const std::bad_alloc&) {
    return kx::Fail(ERROR_NOT_ENOUGH_MEMORY);
}
