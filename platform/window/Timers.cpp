#include "platform/window/Timers.h"

#include "platform/NoMemory.h"
#include "platform/window/Queue.h"

#include <algorithm>
#include <chrono>

namespace kx::window {

void Timers::Set(const Window& window, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn)
{
    const std::chrono::milliseconds period(std::max(nPeriod, kLeastPeriod));
    const Timer timer{&window, nId, period, time::Now() + period, pfn};
    const auto same = [&](const Timer& t) { return t.window == &window && t.id == nId; };
    const auto it = std::ranges::find_if(m_timers, same);
    if (it == m_timers.end())
        m_timers.push_back(timer);
    else
        *it = timer;
}

bool Timers::Kill(const Window& window, UINT_PTR nId) noexcept
{
    return std::erase_if(m_timers, [&](const Timer& t) { return t.window == &window && t.id == nId; }) != 0;
}

void Timers::KillAll(const Window& window) noexcept
{
    std::erase_if(m_timers, [&](const Timer& t) { return t.window == &window; });
}

} // namespace kx::window

UINT_PTR SetTimer(HWND hWnd, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn)
try {
    const auto window = kx::window::FindOwn(hWnd);
    if (!window) return 0;
    if (nId == 0) nId = 1;
    window->Owner().SetTimer(*window, nId, nPeriod, pfn);
    return nId;
} catch (...) {
    return kx::NoMemory();
}

int KillTimer(HWND hWnd, UINT_PTR nId)
{
    const auto window = kx::window::FindOwn(hWnd);
    return window && window->Owner().KillTimer(*window, nId) ? 1 : 0;
}
