#include "platform/window/WindowState.h"

#include "platform/Errno.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowTable.h"

namespace {

std::atomic<HWND> g_focus{nullptr};

bool IsOwn(HWND hWnd) noexcept
{
    const auto window = kx::window::WindowTable::Instance().Find(hWnd);
    return window && kx::window::IsThisThread(window->Owner());
}

// The desktop is asked only if it doesn't know yet.
HWND Change(HWND hWnd, bool bKnown)
{
    const HWND hOld = g_focus.exchange(hWnd);
    if (hOld == hWnd) return hOld;
    const bool bOldIsOwn = IsOwn(hOld);
    const auto wNew = reinterpret_cast<WPARAM>(hWnd);
    if (bOldIsOwn)
        SendMessageA(hOld, WM_KILLFOCUS, wNew, 0);
    else if (hOld)
        PostMessage(hOld, WM_KILLFOCUS, 0, 0);
    if (g_focus != hWnd) return hOld; // its handler gave it to another
    if (!bKnown) kx::window::Desktop::Instance().Focus(hWnd);
    if (hWnd) SendMessageA(hWnd, WM_SETFOCUS, bOldIsOwn ? reinterpret_cast<WPARAM>(hOld) : 0, 0);
    return hOld;
}

} // namespace

namespace kx::window {

void TakeFocus(HWND hWnd)
{
    Change(hWnd, true);
}

void DropFocus(HWND hWnd)
{
    HWND hHas = hWnd;
    if (g_focus.compare_exchange_strong(hHas, nullptr)) SendMessageA(hWnd, WM_KILLFOCUS, 0, 0);
}

void ForgetFocus(HWND hWnd) noexcept
{
    g_focus.compare_exchange_strong(hWnd, nullptr);
}

} // namespace kx::window

HWND SetFocus(HWND hWnd)
try {
    const auto window = hWnd ? kx::window::FindOwn(hWnd) : nullptr;
    if (hWnd && (!window || !window->enabled)) return nullptr;
    return Change(hWnd, false);
} catch (...) {
    return kx::NoMemory();
}

HWND GetFocus() noexcept
{
    const HWND hFocus = g_focus;
    return IsOwn(hFocus) ? hFocus : nullptr;
}
