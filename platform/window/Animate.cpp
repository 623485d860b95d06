#include "include/platform/WindowPaint.h"
#include "platform/Errno.h"
#include "platform/time/Clock.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"

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

// One animation of a window: until it ends, or a message that it serves begins another. Whatever ends it, the
// window is opaque the next time that it is seen.
class Animation
{
public:
    explicit Animation(Window& window) noexcept : m_window(window), m_number(++window.animation) {}
    Animation(const Animation&) = delete;
    Animation& operator=(const Animation&) = delete;
    ~Animation()
    {
        if (m_window.animation == m_number) SetOpacity(m_window, 255);
    }
    bool GoesOn() const noexcept { return !m_window.ended && m_window.animation == m_number; }
    // The opacity goes evenly from one end to the other; false if the animation is over before.
    bool Fade(milliseconds total, bool bIn) const;

private:
    Window& m_window;
    const unsigned m_number;
};

// Lets time pass, in which others may send to this thread.
void WaitStep(Window& window, milliseconds length)
{
    const auto nLength = static_cast<DWORD>(length.count());
    const bool bSkipped = kx::time::SkipSleep(nLength);
    window.Owner().ServeUntil(bSkipped ? kx::time::Now() : kx::time::DeadlineAfter(nLength));
}

bool Animation::Fade(milliseconds total, bool bIn) const
{
    const auto begin = kx::time::Now();
    while (GoesOn()) {
        const auto passed = std::chrono::duration_cast<milliseconds>(kx::time::Now() - begin);
        if (passed >= total) return true;
        const auto share = static_cast<BYTE>(passed * 255 / total);
        SetOpacity(m_window, bIn ? share : static_cast<BYTE>(255 - share));
        WaitStep(m_window, std::min(kStep, total - passed));
    }
    return false;
}

bool Appear(Window& window, milliseconds total)
{
    const Animation animation(window);
    SetOpacity(window, 0);
    const HWND hWnd = window.Handle();
    if (window.visible)
        InvalidateRect(hWnd, nullptr, 1);
    else
        ShowWindow(hWnd, SW_SHOWNA);
    if (!window.ended) UpdateWindow(hWnd);
    return animation.Fade(total, true);
}

bool Vanish(Window& window, milliseconds total)
{
    const Animation animation(window);
    if (!animation.Fade(total, false)) return false;
    ShowWindow(window.Handle(), SW_HIDE);
    return !window.ended;
}

} // namespace

int AnimateWindow(HWND hWnd, DWORD dwTime, DWORD dwFlags)
try {
    const auto window = kx::window::FindOwn(hWnd);
    if (!window) return 0;
    const milliseconds total(dwFlags & AW_BLEND ? dwTime : 0);
    if (dwFlags & AW_HIDE) return window->visible && Vanish(*window, total);
    if (!Appear(*window, total)) return 0;
    if (dwFlags & AW_ACTIVATE) SetFocus(hWnd);
    return 1;
} catch (...) {
    return kx::NoMemory();
}
