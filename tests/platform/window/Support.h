#pragma once

#include "include/platform/Sync.h"
#include "include/platform/Window.h"
#include "tests/support/Standard.h"

namespace test {

using Handler = std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>;

// Every window here answers it with 1.
inline constexpr UINT kPing = WM_USER + 1001;
// For a test's own handler.
inline constexpr UINT kAsk = WM_USER + 1002;

// Does something of its own at one message, and the default at all others.
inline Handler On(UINT nWanted, std::function<LRESULT(HWND, WPARAM)> act)
{
    return [=](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        return nMsg == nWanted ? act(hWnd, wParam) : DefWindowProcA(hWnd, nMsg, wParam, lParam);
    };
}

inline LRESULT WindowProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (nMsg == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
        SetWindowLongPtrA(hWnd, GWLP_USERDATA, reinterpret_cast<std::intptr_t>(create->lpCreateParams));
    }
    if (nMsg == kPing) return 1;
    const auto* handler = reinterpret_cast<const Handler*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    return handler ? (*handler)(hWnd, nMsg, wParam, lParam) : DefWindowProcA(hWnd, nMsg, wParam, lParam);
}

// A window of the calling thread. The handler must outlive it; null is the default handling.
inline HWND Make(const Handler* handler = nullptr, DWORD dwStyle = 0, const char* pszName = nullptr,
                 const WNDCLASSA& cls = {WindowProc, "KXTest"})
{
    RegisterClassA(&cls); // unless it was
    return CreateWindowExA(0, cls.lpszClassName, pszName, dwStyle, 1, 2, 30, 40, nullptr, nullptr, nullptr,
                           const_cast<Handler*>(handler));
}

inline int Move(HWND hWnd, int x, int y, int cx, int cy)
{
    return SetWindowPos(hWnd, HWND_TOP, x, y, cx, cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

// A window's place; empty for no window.
inline RECT PlaceOf(HWND hWnd)
{
    RECT rect{};
    GetWindowRect(hWnd, &rect);
    return rect;
}

// Calls a function for each window, and gives the walk's result.
inline int Walk(const std::function<int(HWND)>& visit, HDESK hDesk = nullptr)
{
    const auto call = [](HWND hWnd, long lParam) {
        return (*reinterpret_cast<const std::function<int(HWND)>*>(lParam))(hWnd);
    };
    return EnumDesktopWindows(hDesk, call, reinterpret_cast<long>(&visit));
}

// Runs on a thread of its own, which has no queue yet and loses it afterwards.
inline void InThread(const std::function<void()>& body)
{
    std::thread(body).join();
}

// A thread with a window and a message loop, until Join, the window's end or the end of the scope.
class WindowThread : Fixed
{
public:
    explicit WindowThread(Handler handler = On(0, {}))
        : m_handler([own = std::move(handler)](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
              if (nMsg == WM_NCDESTROY) PostQuitMessage(0);
              return own(hWnd, nMsg, wParam, lParam);
          }),
          m_thread([this] {
              m_id = GetCurrentThreadId();
              m_window = Make(&m_handler);
              m_ready.release();
              while (Serve()) {
              }
          })
    {
        m_ready.acquire();
    }
    ~WindowThread() { Join(); }

    HWND Window() const { return m_window; }
    DWORD Id() const { return m_id; }
    // How often its procedure threw; after Join.
    int Thrown() const { return m_thrown; }
    void Join()
    {
        if (!m_thread.joinable()) return;
        PostMessage(m_window, WM_QUIT, 0, 0);
        m_thread.join();
    }

private:
    bool Serve()
    {
        try {
            MSG msg;
            if (GetMessageA(&msg, nullptr, 0, 0) == 0) return false;
            DispatchMessageA(&msg);
        } catch (const std::runtime_error&) {
            ++m_thrown;
        }
        return true;
    }

    const Handler m_handler;
    std::binary_semaphore m_ready{0};
    HWND m_window = nullptr;
    DWORD m_id = 0;
    int m_thrown = 0;
    std::thread m_thread;
};

// A thread that sends one message to another thread's window, and has a window itself.
class Sender
{
public:
    Sender(HWND hTarget, UINT nMsg)
        : m_thread([=, this] {
              m_window = Make();
              m_ready.release();
              m_result = SendMessageA(hTarget, nMsg, 0, 0);
          })
    {
        m_ready.acquire();
    }
    // Returns when the thread waits in SendMessageA, the only place where it serves what is sent to it.
    void AwaitWaiting() const { SendMessageA(m_window, kPing, 0, 0); }
    LRESULT Join()
    {
        m_thread.join();
        return m_result;
    }

private:
    HWND m_window = nullptr;
    LRESULT m_result = -1;
    std::binary_semaphore m_ready{0};
    std::thread m_thread;
};

} // namespace test
