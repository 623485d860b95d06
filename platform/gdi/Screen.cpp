#include "platform/gdi/Screen.h"

#include "platform/Immortal.h"
#include "platform/window/Desktop.h"

#include <algorithm>

namespace kx::gdi {

Screen& Screen::Instance()
{
    static Immortal<Screen> screen;
    return screen.Get();
}

const std::shared_ptr<Backing>& Screen::Root()
{
    if (m_root) return m_root;
    const SIZE size = window::Desktop::Instance().Size();
    auto surface = Surface::Make(size.cx, size.cy);
    if (!surface) return m_root;
    for (int y = 0; y < size.cy; ++y)
        std::fill_n(surface->Row(y), size.cx, ToPixel(DESKTOP_COLOR));
    m_root = std::make_shared<Backing>(std::move(*surface));
    return m_root;
}

} // namespace kx::gdi
