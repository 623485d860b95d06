#include "platform/window/Updates.h"

#include <algorithm>

namespace kx::window {

namespace {

auto Of(const Window& window)
{
    return [&window](const auto& entry) { return entry.first == &window; };
}

} // namespace

void Updates::Add(const Window& window, const RECT& rect, bool bErase)
{
    const gdi::PixelRegion region(rect);
    if (region.Complexity() == NULLREGION) return;
    auto it = std::ranges::find_if(m_entries, Of(window));
    if (it == m_entries.end()) it = m_entries.insert(it, {&window, {}});
    it->second.region.UniteWith(region);
    it->second.erase |= bErase;
}

Update Updates::Take(const Window& window)
{
    const auto it = std::ranges::find_if(m_entries, Of(window));
    if (it == m_entries.end()) return {};
    Update update = std::move(it->second);
    m_entries.erase(it);
    return update;
}

bool Updates::Has(const Window& window) const noexcept
{
    return std::ranges::find_if(m_entries, Of(window)) != m_entries.end();
}

} // namespace kx::window
