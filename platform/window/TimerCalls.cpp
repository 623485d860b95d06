#include "platform/Errno.h"
#include "platform/window/ThreadQueue.h"
#include "platform/window/WindowTable.h"

UINT_PTR SetTimer(HWND hWnd, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn)
{
    const auto window = kx::window::FindOwn(hWnd);
    if (!window) return 0;
    if (nId == 0) nId = 1;
    window->Owner().SetTimer(*window, nId, nPeriod, pfn);
    return nId;
}

int KillTimer(HWND hWnd, UINT_PTR nId)
{
    const auto window = kx::window::FindOwn(hWnd);
    return window && window->Owner().KillTimer(*window, nId) ? 1 : 0;
}
