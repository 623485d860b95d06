#include "include/platform/WindowPaint.h"
#include "platform/time/Clock.h"
#include "platform/window/Desktop.h"
#include "platform/window/ThreadQueue.h"

#include <algorithm>
#include <chrono>

namespace {

using kx::window::Desktop;
using kx::window::Window;
using std::chrono::milliseconds;

// Sixty times a second is as smooth as anyone sees.
constexpr milliseconds kStep{16};

void SetOpacity(Window& window, BYTE opacity)
{
    window.opacity = opacity;
    if (!window.ended) Desktop::Instance().SetOpacity(window.Handle(), opacity);
}

// Whatever ends the animation, the window is opaque the next time that it is seen.
class OpaqueAtExit
{
public:
    explicit OpaqueAtExit(Window& window) noexcept : m_window(window) {}
    OpaqueAtExit(const OpaqueAtExit&) = delete;
    OpaqueAtExit& operator=(const OpaqueAtExit&) = delete;
    ~OpaqueAtExit() { SetOpacity(m_window, 255); }

private:
    Window& m_window;
};

// Lets time pass, in which others may send to this thread.
void WaitStep(Window& window, milliseconds length)
{
    const auto nLength = static_cast<DWORD>(length.count());
    if (!kx::clock::SkipSleep(nLength)) window.Owner().ServeUntil(kx::clock::DeadlineAfter(nLength));
}

// The opacity goes evenly from one end to the other; false if the window ends meanwhile.
bool Fade(Window& window, milliseconds total, bool bIn)
{
    const auto begin = kx::clock::Now();
    for (;;) {
        const auto passed = std::chrono::duration_cast<milliseconds>(kx::clock::Now() - begin);
        if (passed >= total) return true;
        const auto share = static_cast<BYTE>(passed * 255 / total);
        SetOpacity(window, bIn ? share : static_cast<BYTE>(255 - share));
        WaitStep(window, std::min(kStep, total - passed));
        if (window.ended) return false;
    }
}

bool Appear(Window& window, milliseconds total)
{
    const OpaqueAtExit opaque(window);
    SetOpacity(window, 0);
    const HWND hWnd = window.Handle();
    if (window.visible)
        InvalidateRect(hWnd, nullptr, 1);
    else
        ShowWindow(hWnd, SW_SHOWNA);
    if (!window.ended) UpdateWindow(hWnd);
    return !window.ended && Fade(window, total, true);
}

bool Vanish(Window& window, milliseconds total)
{
    const OpaqueAtExit opaque(window);
    if (!Fade(window, total, false)) return false;
    ShowWindow(window.Handle(), SW_HIDE);
    return !window.ended;
}

} // namespace

int AnimateWindow(HWND hWnd, DWORD dwTime, DWORD dwFlags)
{
    const auto window = kx::window::FindOwn(hWnd);
    if (!window) return 0;
    const milliseconds total(dwFlags & AW_BLEND ? dwTime : 0);
    if (dwFlags & AW_HIDE) return window->visible && Vanish(*window, total);
    if (!Appear(*window, total)) return 0;
    if (dwFlags & AW_ACTIVATE) SetFocus(hWnd);
    return 1;
}
