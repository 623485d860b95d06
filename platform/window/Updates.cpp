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

void Updates::Subtract(const Window& window, const RECT& rect)
{
    const auto it = std::ranges::find_if(m_entries, Of(window));
    if (it == m_entries.end()) return;
    it->second.region.Subtract(gdi::PixelRegion(rect));
    if (it->second.region.Complexity() == NULLREGION) m_entries.erase(it);
}

Update Updates::Take(const Window& window)
{
    const auto it = std::ranges::find_if(m_entries, Of(window));
    if (it == m_entries.end()) return {};
    Update update = std::move(it->second);
    m_entries.erase(it);
    return update;
}

const Update* Updates::Find(const Window& window) const noexcept
{
    const auto it = std::ranges::find_if(m_entries, Of(window));
    return it == m_entries.end() ? nullptr : &it->second;
}

} // namespace kx::window
