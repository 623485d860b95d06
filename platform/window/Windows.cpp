// Queries and settings of a window; measures of the desktop.

#include "include/platform/Input.h"
#include "include/platform/WindowPaint.h"
#include "platform/Errno.h"
#include "platform/gdi/Bitmap.h"
#include "platform/text/CharWalk.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowState.h"
#include "platform/window/WindowTable.h"

namespace {

using kx::window::Desktop;
using kx::window::FindAny;
using kx::window::WindowFacts;
using kx::window::WindowTable;

// The facts about a window of any process, and about the desktop's, which is of none.
std::optional<WindowFacts> Look(HWND hWnd) noexcept
{
    if (hWnd == kx::window::kDesktopHandle) return WindowFacts{0, 0, true};
    const auto window = WindowTable::Instance().Find(hWnd);
    if (!window) return Desktop::Instance().FindForeign(hWnd);
    return WindowFacts{window->Owner().ThreadId(), window->ProcessId(), window->visible};
}

// Focus is set at once on the owning thread, otherwise when that thread next processes its queue.
void AskFocus(const kx::window::Window& window)
{
    if (kx::window::IsThisThread(window.Owner()))
        SetFocus(window.Handle());
    else
        kx::window::PostChore(window.Handle(), kx::window::Chore::AskFocus);
}

// Fills with the brush of the window's class, if it has one.
int Erase(HWND hWnd, HDC hDC)
{
    const auto window = FindAny(hWnd);
    RECT client;
    if (!window || !window->Background() || !GetClientRect(hWnd, &client)) return 0;
    return FillRect(hDC, &client, window->Background());
}

} // namespace

HICON kx::window::SetIcon(Window& window, HICON hIcon)
{
    const auto icon = gdi::FindAs<gdi::Icon>(hIcon);
    Desktop::Instance().SetIcon(window.Handle(), icon ? &icon->surface : nullptr);
    return window.icon.exchange(hIcon);
}

int IsWindow(HWND hWnd) noexcept
{
    return Look(hWnd).has_value();
}

int IsWindowVisible(HWND hWnd) noexcept
{
    const auto found = Look(hWnd);
    return found && found->visible;
}

DWORD GetWindowThreadProcessId(HWND hWnd, DWORD* pdwProcessId) noexcept
{
    const auto found = Look(hWnd);
    if (pdwProcessId) *pdwProcessId = found ? found->processId : 0;
    const DWORD dwThreadId = found ? found->threadId : 0;
    if (dwThreadId == 0) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return dwThreadId;
}

HWND GetDesktopWindow() noexcept
{
    return kx::window::kDesktopHandle;
}

int GetWindowRect(HWND hWnd, RECT* pRect) noexcept
{
    if (!pRect) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (hWnd == kx::window::kDesktopHandle) {
        const SIZE size = Desktop::Instance().Monitor();
        *pRect = {0, 0, size.cx, size.cy};
        return 1;
    }
    const auto window = FindAny(hWnd);
    if (!window) return 0;
    *pRect = window->Rect();
    return 1;
}

int GetClientRect(HWND hWnd, RECT* pRect) noexcept
{
    if (!GetWindowRect(hWnd, pRect)) return 0;
    *pRect = kx::window::WithinItself(*pRect);
    return 1;
}

int GetSystemMetrics(int nIndex) noexcept
{
    switch (nIndex) {
    case SM_CXSCREEN:
        return Desktop::Instance().Monitor().cx;
    case SM_CYSCREEN:
        return Desktop::Instance().Monitor().cy;
    case SM_CYCAPTION:
        return 19;
    case SM_CYFRAME:
        return 4;
    default:
        return 0;
    }
}

int ShowWindow(HWND hWnd, int nCmd)
try {
    const auto window = FindAny(hWnd);
    if (!window) return 0;
    const bool bShow = nCmd != SW_HIDE;
    const bool bWas = window->visible;
    if (bShow == bWas) return bWas;
    SendMessageA(hWnd, WM_SHOWWINDOW, bShow, 0);
    if (!IsWindow(hWnd)) return bWas;
    kx::window::Appear(*window, bShow);
    if (bShow && nCmd != SW_SHOWNOACTIVATE && nCmd != SW_SHOWNA) AskFocus(*window);
    return bWas;
} catch (...) {
    return kx::NoMemory();
}

std::intptr_t SetWindowLongPtrA(HWND hWnd, int nIndex, std::intptr_t nValue)
{
    const auto window = FindAny(hWnd);
    if (!window) return 0;
    return nIndex == GWLP_USERDATA ? window->userData.exchange(nValue) : kx::Fail(ERROR_INVALID_PARAMETER);
}

std::intptr_t GetWindowLongPtrA(HWND hWnd, int nIndex)
{
    const auto window = FindAny(hWnd);
    if (!window) return 0;
    return nIndex == GWLP_USERDATA ? window->userData.load() : kx::Fail(ERROR_INVALID_PARAMETER);
}

int SetWindowTextA(HWND hWnd, const char* pszText)
try {
    const auto window = FindAny(hWnd);
    if (!window) return 0;
    window->SetText(pszText);
    Desktop::Instance().SetText(hWnd, pszText ? pszText : "");
    return 1;
} catch (...) {
    return kx::NoMemory();
}

int GetWindowTextA(HWND hWnd, char* pszBuffer, int nSize)
try {
    if (!pszBuffer || nSize <= 0) return kx::Fail(ERROR_INVALID_PARAMETER);
    *pszBuffer = '\0';
    const auto window = FindAny(hWnd);
    if (!window) return 0;
    return static_cast<int>(kx::text::CopyCut(window->Text(), pszBuffer, static_cast<std::size_t>(nSize)));
} catch (...) {
    return kx::NoMemory();
}

LRESULT DefWindowProcA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
try {
    switch (nMsg) {
    case WM_CLOSE:
        DestroyWindow(hWnd);
        return 0;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        BeginPaint(hWnd, &paint);
        EndPaint(hWnd, &paint);
        return 0;
    }
    case WM_SETCURSOR: {
        const auto window = FindAny(hWnd);
        if (!window || !window->ClassCursor()) return 0;
        SetCursor(window->ClassCursor());
        return 1;
    }
    case WM_SETICON: {
        const auto window = FindAny(hWnd);
        const auto hIcon = reinterpret_cast<HICON>(lParam);
        return window ? reinterpret_cast<LRESULT>(kx::window::SetIcon(*window, hIcon)) : 0;
    }
    case WM_ERASEBKGND:
        return Erase(hWnd, reinterpret_cast<HDC>(wParam));
    default:
        return nMsg == WM_NCCREATE;
    }
} catch (...) {
    return kx::NoMemory();
}
