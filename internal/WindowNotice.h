#pragma once

#include "include/platform/Sync.h"
#include "include/platform/Window.h"

#include <memory>

// How the library's managers tell the process's windows of a change.
namespace kx {

// Calls `pfn` for each top-level window of the desktop, with `pManager` as its parameter.
inline void WalkDesktop(WNDENUMPROC pfn, void* pManager)
{
    constexpr auto close = [](HDESK hDesk) { CloseDesktop(hDesk); };
    const HDESK hDesk = OpenDesktopA("Default", 0, FALSE, DESKTOP_ENUMERATE);
    const std::unique_ptr<HDESK__, decltype(close)> desktop(hDesk, close);
    EnumDesktopWindows(hDesk, pfn, reinterpret_cast<long>(pManager));
}

// Sends a message without parameters to a window that is visible and of this process, and waits for it.
inline void TellOwnWindow(HWND hWnd, UINT nMsg)
{
    DWORD dwProcessId = 0;
    GetWindowThreadProcessId(hWnd, &dwProcessId);
    if (dwProcessId == GetCurrentProcessId() && IsWindowVisible(hWnd)) SendMessageA(hWnd, nMsg, 0, 0);
}

} // namespace kx
