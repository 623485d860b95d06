#include "platform/gdi/Screen.h"

#include "include/platform/Window.h"
#include "platform/Immortal.h"

#include <algorithm>
#include <new>

namespace kx::gdi {

namespace {

Surface MakeDesktop()
{
    auto surface = Surface::Make(DESKTOP_WIDTH, DESKTOP_HEIGHT);
    if (!surface) throw std::bad_alloc();
    for (int y = 0; y < DESKTOP_HEIGHT; ++y)
        std::fill_n(surface->Row(y), DESKTOP_WIDTH, ToPixel(DESKTOP_COLOR));
    return std::move(*surface);
}

} // namespace

Screen& Screen::Instance()
{
    static Immortal<Screen> screen(MakeDesktop());
    return screen.Get();
}

std::optional<RECT> AreaOf(HWND hWnd)
{
    RECT area;
    if (!GetWindowRect(hWnd ? hWnd : GetDesktopWindow(), &area)) return std::nullopt;
    return area;
}

} // namespace kx::gdi
