#include "platform/window/WindowState.h"

#include "platform/Errno.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowTable.h"

namespace kx::window {

namespace {

void End(Window& window) noexcept
{
    WindowTable::Instance().Remove(window.Handle());
    Desktop::Instance().Destroy(window.Handle());
    window.Owner().Forget(window);
    if (window.Owner().input.capture == window.Handle()) window.Owner().input.capture = nullptr;
    ForgetFocus(window.Handle());
    window.LeaveClass();
}

// Ends a window at the end of a scope, also when its procedure throws.
class EndAtExit
{
public:
    explicit EndAtExit(Window& window) noexcept : m_window(window) {}
    EndAtExit(const EndAtExit&) = delete;
    EndAtExit& operator=(const EndAtExit&) = delete;
    ~EndAtExit()
    {
        if (!m_bKeep && !m_window.ended) End(m_window);
    }
    void Keep() noexcept { m_bKeep = true; }

private:
    Window& m_window;
    bool m_bKeep = false;
};

// Whether both messages of the creation went well. The procedure may also end the window in them.
bool Announce(Window& window, const CREATESTRUCTA& create)
{
    const auto lParam = reinterpret_cast<LPARAM>(&create);
    const bool bAccepted = window.Call(WM_NCCREATE, 0, lParam) != 0;
    if (window.ended) return false;
    if (!bAccepted) {
        window.ending = true;
        window.Call(WM_NCDESTROY, 0, 0);
        return false;
    }
    if (window.Call(WM_CREATE, 0, lParam) == -1) DestroyWindow(window.Handle());
    return !window.ended;
}

} // namespace

void EndWindowsOf(Queue& owner) noexcept
{
    while (const auto window = WindowTable::Instance().FindOwnedBy(owner))
        End(*window);
}

HWND Create(CREATESTRUCTA create, HWND hParent, WNDPROC hook)
{
    const auto refuse = [](DWORD dwError) {
        SetLastError(dwError);
        return HWND{};
    };
    if (hParent && hParent != kDesktopHandle) return refuse(ERROR_INVALID_PARAMETER);
    auto cls = ClassTable::Instance().Find(create.lpszClass);
    if (!cls) return refuse(ERROR_CLASS_DOES_NOT_EXIST);
    auto queue = ThisThread();
    if (!queue) return refuse(ERROR_INVALID_THREAD_ID);

    const CString className = cls->name;
    create.lpszClass = className;
    const HICON hIcon = cls->icon;
    const auto made = std::make_shared<Window>(std::move(cls), hook, std::move(queue), create);
    const HWND hWnd = WindowTable::Instance().Add(made);
    if (!hWnd) return nullptr;
    EndAtExit end(*made);
    if (!Desktop::Instance().Create(hWnd, create)) return refuse(ERROR_NOT_ENOUGH_MEMORY);
    if (hIcon) SetIcon(*made, hIcon);
    if (!Announce(*made, create)) return nullptr;
    if (create.style & WS_VISIBLE) ShowWindow(hWnd, SW_SHOW);
    if (made->ended) return nullptr;
    end.Keep();
    return hWnd;
}

LRESULT CallClass(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    const auto window = FindOwn(hWnd);
    return window ? window->ClassProcedure()(hWnd, nMsg, wParam, lParam) : 0;
}

} // namespace kx::window

namespace window = kx::window;

HWND CreateWindowExA(DWORD, const char* pszClassName, const char* pszName, DWORD dwStyle, int x, int y,
                     int nWidth, int nHeight, HWND hParent, void*, HINSTANCE, void* pParam)
try {
    return window::Create({pParam, pszName, pszClassName, x, y, nWidth, nHeight, dwStyle}, hParent, nullptr);
} catch (...) {
    return kx::NoMemory();
}

int DestroyWindow(HWND hWnd)
try {
    const auto target = window::WindowTable::Instance().Find(hWnd);
    if (!target) return kx::Fail(ERROR_INVALID_WINDOW_HANDLE);
    if (!window::IsThisThread(target->Owner()) || target->ending) return kx::Fail(ERROR_ACCESS_DENIED);

    target->ending = true;
    const window::EndAtExit end(*target);
    if (target->visible) window::Appear(*target, false);
    window::DropCapture(hWnd);
    target->Call(WM_DESTROY, 0, 0);
    target->Call(WM_NCDESTROY, 0, 0);
    return 1;
} catch (...) {
    return kx::NoMemory();
}
