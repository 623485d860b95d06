#pragma once

#include "include/platform/Sync.h"
#include "include/platform/Window.h"

#include <functional>
#include <semaphore>
#include <thread>

namespace test {

using Handler = std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>;

// Asks a window's thread to run the function that the LPARAM points to.
inline constexpr UINT kRun = WM_USER + 1000;

inline LRESULT WindowProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (nMsg == WM_NCCREATE)
        SetWindowLongPtrA(
            hWnd, GWLP_USERDATA,
            reinterpret_cast<std::intptr_t>(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpCreateParams));
    if (nMsg == kRun) return (*reinterpret_cast<std::function<LRESULT()>*>(lParam))();
    const auto* handler = reinterpret_cast<const Handler*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    return handler ? (*handler)(hWnd, nMsg, wParam, lParam) : DefWindowProcA(hWnd, nMsg, wParam, lParam);
}

// A window of the calling thread. The handler must outlive it; null is the default handling.
inline HWND Make(const Handler* handler = nullptr, DWORD dwStyle = 0, const char* pszName = nullptr)
{
    static const WNDCLASSA cls{WindowProc, "KXTest"};
    [[maybe_unused]] static const WORD atom = RegisterClassA(&cls);
    return CreateWindowExA(0, "KXTest", pszName, dwStyle, 1, 2, 30, 40, const_cast<Handler*>(handler));
}

// Runs on a thread of its own, which has no queue yet and loses it afterwards.
inline void InThread(const std::function<void()>& body)
{
    std::thread(body).join();
}

// A thread with a window and a message loop, until the end of the scope.
class WindowThread
{
public:
    explicit WindowThread(Handler handler = {}) : m_handler(std::move(handler))
    {
        m_thread = std::thread([this] { Run(); });
        m_ready.acquire();
    }
    WindowThread(const WindowThread&) = delete;
    WindowThread& operator=(const WindowThread&) = delete;
    ~WindowThread() { Join(); }

    HWND Window() const { return m_window; }
    DWORD Id() const { return m_id; }
    // Runs there and waits.
    LRESULT Do(std::function<LRESULT()> body) const
    {
        return SendMessageA(m_window, kRun, 0, reinterpret_cast<LPARAM>(&body));
    }
    void Join()
    {
        if (!m_thread.joinable()) return;
        PostThreadMessageA(m_id, WM_QUIT, 0, 0);
        m_thread.join();
    }

private:
    void Run()
    {
        m_window = Make(m_handler ? &m_handler : nullptr);
        m_id = GetCurrentThreadId();
        m_ready.release();
        MSG msg;
        while (GetMessageA(&msg, nullptr, 0, 0) != 0)
            DispatchMessageA(&msg);
    }

    const Handler m_handler;
    std::binary_semaphore m_ready{0};
    HWND m_window = nullptr;
    DWORD m_id = 0;
    std::thread m_thread;
};

} // namespace test
