#include "platform/window/Appearance.h"

#include "include/platform/WindowPaint.h"
#include "platform/screen/Screen.h"
#include "platform/window/Chores.h"
#include "platform/window/Desktop.h"
#include "platform/window/Focus.h"
#include "platform/window/ThreadQueue.h"

namespace kx::window {

void Appear(Window& window, bool bVisible)
{
    const HWND hWnd = window.Handle();
    {
        const sync::MutexLock lock(gdi::pixelLock);
        window.visible = bVisible;
        window.appeared = false;
    }
    Desktop::Instance().Show(hWnd, bVisible);
    if (bVisible) {
        Desktop::Instance().Stack(hWnd, Order::Top);
        InvalidateRect(hWnd, nullptr, 1);
        return;
    }
    ValidateRect(hWnd, nullptr);
    if (IsThisThread(window.Owner()))
        DropFocus(hWnd);
    else
        PostChore(hWnd, Chore::Hide);
}

} // namespace kx::window
