// Where windows lie, and what their parts measure.

#include "platform/Errno.h"
#include "platform/window/Desktop.h"
#include "platform/window/WindowTable.h"

HWND GetDesktopWindow() noexcept
{
    return kx::window::kDesktopHandle;
}

int GetWindowRect(HWND hWnd, RECT* pRect) noexcept
{
    if (!pRect) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (hWnd == kx::window::kDesktopHandle) {
        const SIZE size = kx::window::Desktop::Instance().Size();
        *pRect = {0, 0, size.cx, size.cy};
        return 1;
    }
    const auto window = kx::window::WindowTable::Instance().Find(hWnd);
    if (!window) return kx::Fail(ERROR_INVALID_WINDOW_HANDLE);
    *pRect = window->Rect();
    return 1;
}

int GetClientRect(HWND hWnd, RECT* pRect) noexcept
{
    if (!GetWindowRect(hWnd, pRect)) return 0;
    *pRect = {0, 0, pRect->right - pRect->left, pRect->bottom - pRect->top};
    return 1;
}

int GetSystemMetrics(int nIndex) noexcept
{
    switch (nIndex) {
    case SM_CXSCREEN:
        return kx::window::Desktop::Instance().Size().cx;
    case SM_CYSCREEN:
        return kx::window::Desktop::Instance().Size().cy;
    case SM_CYCAPTION:
        return 19;
    case SM_CYFRAME:
        return 4;
    default:
        return 0;
    }
}
