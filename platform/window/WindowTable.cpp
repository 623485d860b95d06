#include "platform/window/WindowTable.h"

#include "platform/Immortal.h"

#include <algorithm>

namespace kx::window {

HWND NewHandle() noexcept
{
    static std::atomic<std::uintptr_t> last{0x10000};
    return reinterpret_cast<HWND>(last.fetch_add(1, std::memory_order_relaxed) + 1);
}

WindowTable& WindowTable::Instance()
{
    static Immortal<WindowTable> table;
    return table.Get();
}

void WindowTable::Add(const std::shared_ptr<Window>& window)
{
    const sync::MutexLock lock(m_lock);
    m_windows.emplace(window->Handle(), window);
}

void WindowTable::Remove(HWND hWnd) noexcept
{
    decltype(m_windows)::node_type gone; // ends when the lock is free again
    const sync::MutexLock lock(m_lock);
    gone = m_windows.extract(hWnd);
}

std::shared_ptr<Window> WindowTable::Find(HWND hWnd) const noexcept
{
    const sync::MutexLock lock(m_lock);
    const auto it = m_windows.find(hWnd);
    return it == m_windows.end() ? nullptr : it->second;
}

std::shared_ptr<Window> WindowTable::FindOwnedBy(const Queue& owner) const noexcept
{
    const sync::MutexLock lock(m_lock);
    const auto owned = [&](const auto& entry) { return &entry.second->Owner() == &owner; };
    const auto it = std::ranges::find_if(m_windows, owned);
    return it == m_windows.end() ? nullptr : it->second;
}

std::vector<HWND> WindowTable::Handles() const
{
    std::vector<HWND> handles;
    const sync::MutexLock lock(m_lock);
    handles.reserve(m_windows.size());
    for (const auto& [handle, window] : m_windows)
        handles.push_back(handle);
    return handles;
}

std::vector<HWND> WindowTable::HandlesOf(const Queue& owner) const
{
    std::vector<HWND> handles;
    const sync::MutexLock lock(m_lock);
    for (const auto& [handle, window] : m_windows)
        if (&window->Owner() == &owner) handles.push_back(handle);
    return handles;
}

} // namespace kx::window
