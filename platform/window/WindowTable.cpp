#include "platform/window/WindowTable.h"

#include "platform/Immortal.h"

#include <algorithm>

namespace kx::window {

std::uintptr_t NewAge() noexcept
{
    static std::atomic<std::uintptr_t> last{kDesktopAge};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

WindowTable& WindowTable::Instance()
{
    return The<WindowTable>();
}

HWND WindowTable::Add(const std::shared_ptr<Window>& window)
{
    const sync::MutexLock lock(m_lock);
    m_windows.push_back(window);
    window->SetHandle(static_cast<HWND>(AddHandle(window)), NewAge());
    if (!window->Handle()) m_windows.pop_back();
    return window->Handle();
}

void WindowTable::Remove(HWND hWnd) noexcept
{
    const auto window = RemoveHandle<Window>(hWnd); // ends when the lock is free again
    const sync::MutexLock lock(m_lock);
    std::erase(m_windows, window);
}

std::shared_ptr<Window> WindowTable::FindOwnedBy(const Queue& owner) const noexcept
{
    const sync::MutexLock lock(m_lock);
    const auto it = std::ranges::find_if(m_windows, [&](const auto& w) { return &w->Owner() == &owner; });
    return it == m_windows.end() ? nullptr : *it;
}

std::vector<HWND> WindowTable::Handles(const Queue* owner) const
{
    std::vector<HWND> handles;
    const sync::MutexLock lock(m_lock);
    for (const auto& window : m_windows)
        if (!owner || &window->Owner() == owner) handles.push_back(window->Handle());
    return handles;
}

} // namespace kx::window
