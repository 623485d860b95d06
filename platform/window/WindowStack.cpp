#include "platform/window/WindowStack.h"

#include <algorithm>

namespace kx::window {

void WindowStack::Add(HWND hWnd)
{
    m_entries.insert(std::ranges::find(m_entries, true, &Entry::topmost), {hWnd, false});
}

void WindowStack::Remove(HWND hWnd) noexcept
{
    std::erase_if(m_entries, [&](const Entry& entry) { return entry.handle == hWnd; });
}

void WindowStack::Move(HWND hWnd, Order order)
{
    const auto it = std::ranges::find(m_entries, hWnd, &Entry::handle);
    if (it == m_entries.end()) return;
    Entry moved = *it;
    m_entries.erase(it);
    if (order != Order::Top) moved.topmost = order == Order::Topmost;
    auto place = m_entries.end();
    if (!moved.topmost) place = std::ranges::find(m_entries, true, &Entry::topmost);
    if (order == Order::Bottom) place = m_entries.begin();
    m_entries.insert(place, moved);
}

std::vector<HWND> WindowStack::Handles() const
{
    std::vector<HWND> handles;
    for (const Entry& entry : m_entries)
        handles.push_back(entry.handle);
    return handles;
}

} // namespace kx::window
