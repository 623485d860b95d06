#pragma once

#include "platform/window/Desktop.h"

#include <algorithm>
#include <vector>

namespace kx::window {

// How the windows of a desktop lie on each other.
class WindowStack
{
public:
    // On top of those that aren't topmost.
    void Add(HWND hWnd)
    {
        m_entries.insert(std::ranges::find(m_entries, true, &StackedWindow::topmost), {hWnd, false});
    }
    void Remove(HWND hWnd) noexcept
    {
        std::erase_if(m_entries, [&](const StackedWindow& entry) { return entry.handle == hWnd; });
    }
    void Move(HWND hWnd, Order order)
    {
        const auto it = std::ranges::find(m_entries, hWnd, &StackedWindow::handle);
        if (it == m_entries.end()) return;
        StackedWindow moved = *it;
        m_entries.erase(it);
        if (order != Order::Top) moved.topmost = order == Order::Topmost;
        auto place = m_entries.end();
        if (!moved.topmost) place = std::ranges::find(m_entries, true, &StackedWindow::topmost);
        if (order == Order::Bottom) place = m_entries.begin();
        m_entries.insert(place, moved);
    }
    // From the lowest.
    std::vector<HWND> Handles() const
    {
        std::vector<HWND> handles;
        for (const StackedWindow& entry : m_entries)
            handles.push_back(entry.handle);
        return handles;
    }

private:
    struct StackedWindow
    {
        HWND handle;
        bool topmost;
    };
    std::vector<StackedWindow> m_entries; // from the lowest; the topmost come last
};

} // namespace kx::window
