#pragma once

#include "platform/window/Desktop.h"

#include <vector>

namespace kx::window {

// How the windows of a desktop lie on each other.
class WindowStack
{
public:
    // On top of those that aren't topmost.
    void Add(HWND hWnd);
    void Remove(HWND hWnd) noexcept;
    void Move(HWND hWnd, Order order);
    // From the lowest.
    std::vector<HWND> Handles() const;

private:
    struct Entry
    {
        HWND handle;
        bool topmost;
    };
    std::vector<Entry> m_entries; // from the lowest; the topmost come last
};

} // namespace kx::window
