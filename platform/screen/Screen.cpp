#include "platform/screen/Screen.h"

#include "platform/Immortal.h"

#include <algorithm>

namespace kx::screen {

constinit sync::Mutex pixelLock;

Screen& Screen::Instance()
{
    return The<Screen>();
}

const std::shared_ptr<Backing>& Screen::Root(SIZE size, Backing::Look look)
{
    if (m_root) return m_root;
    auto surface = gdi::Surface::Make(size.cx, size.cy);
    if (!surface) return m_root;
    for (int y = 0; y < size.cy; ++y)
        std::fill_n(surface->Row(y), size.cx, gdi::ToPixel(DESKTOP_COLOR));
    m_root = std::make_shared<Backing>(std::move(*surface), look);
    return m_root;
}

std::shared_ptr<Backing> MakeBacking(SIZE size)
{
    auto surface = gdi::Surface::Make(size.cx, size.cy);
    return surface ? std::make_shared<Backing>(std::move(*surface)) : nullptr;
}

SIZE Resize(std::shared_ptr<Backing>& backing, SIZE size)
{
    if (!backing) return {};
    const gdi::Surface& old = backing->surface;
    const SIZE before{old.Width(), old.Height()};
    if (before == size) return before;
    auto fitted = MakeBacking(size);
    const int nWidth = std::min(before.cx, size.cx);
    for (int y = 0; fitted && y < std::min(before.cy, size.cy); ++y)
        std::copy_n(old.Row(y), nWidth, fitted->surface.Row(y));
    backing = std::move(fitted);
    return before;
}

} // namespace kx::screen
