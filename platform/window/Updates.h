#pragma once

#include "platform/gdi/PixelRegion.h"
#include "platform/window/Window.h"

#include <utility>
#include <vector>

namespace kx::window {

struct Update
{
    gdi::PixelRegion region;
    bool erase = false;
};

// The areas that the windows of one thread have to paint, in the order in which it came up. Guarded by the
// queue.
class Updates
{
public:
    void Add(const Window& window, const RECT& rect, bool bErase);
    // Gives it and forgets it; an empty one for none.
    Update Take(const Window& window);
    bool Has(const Window& window) const noexcept;
    // The first window that `passes` and has something to paint; null for none.
    template <class Passes>
    const Window* First(Passes passes) const
    {
        for (const auto& entry : m_entries)
            if (passes(*entry.first)) return entry.first;
        return nullptr;
    }

private:
    std::vector<std::pair<const Window*, Update>> m_entries;
};

} // namespace kx::window
