#include "platform/window/Backing.h"

#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Screen.h"
#include "platform/window/Desktop.h"
#include "platform/window/WindowTable.h"

#include <algorithm>

namespace kx::window {

namespace {

// Pixels of the window's size, black; null for a window of no size and for a lack of memory.
std::shared_ptr<gdi::Backing> MakeBacking(const Window& window)
{
    const RECT rect = window.Rect();
    auto surface = gdi::Surface::Make(rect.right - rect.left, rect.bottom - rect.top);
    return surface ? std::make_shared<gdi::Backing>(std::move(*surface)) : nullptr;
}

void CopyShared(const gdi::Surface& from, gdi::Surface& to)
{
    const int nWidth = std::min(from.Width(), to.Width());
    const int nHeight = std::min(from.Height(), to.Height());
    for (int y = 0; y < nHeight; ++y)
        std::copy_n(from.Row(y), nWidth, to.Row(y));
}

std::shared_ptr<gdi::Backing> PixelsOf(HWND hWnd)
{
    const std::lock_guard lock(gdi::Screen::Instance().lock);
    if (!hWnd) return gdi::Screen::Instance().Root();
    const auto window = WindowTable::Instance().Find(hWnd);
    if (!window) return nullptr;
    if (!window->backing) window->backing = MakeBacking(*window);
    return window->backing;
}

} // namespace

HDC OpenContext(HWND hWnd, const std::optional<gdi::PixelRegion>& limit)
{
    if (hWnd == kDesktopHandle) hWnd = nullptr;
    auto pixels = PixelsOf(hWnd);
    if (!pixels) return nullptr;
    return static_cast<HDC>(gdi::Add(std::make_shared<gdi::DeviceContext>(hWnd, std::move(pixels), limit)));
}

void Present(HWND hWnd, const gdi::DeviceContext& context)
{
    const std::lock_guard lock(gdi::Screen::Instance().lock);
    const auto window = WindowTable::Instance().Find(hWnd);
    RECT drawn;
    if (!window || !window->visible || !window->backing) return;
    context.ClipBox(drawn);
    if (!window->appeared)
        drawn = {0, 0, window->backing->surface.Width(), window->backing->surface.Height()};
    window->appeared = true;
    Desktop::Instance().Present(hWnd, window->backing->surface, drawn);
}

SIZE FitBacking(Window& window)
{
    const std::lock_guard lock(gdi::Screen::Instance().lock);
    if (!window.backing) return {};
    const RECT rect = window.Rect();
    const gdi::Surface& old = window.backing->surface;
    const SIZE before{old.Width(), old.Height()};
    if (before == SIZE{rect.right - rect.left, rect.bottom - rect.top}) return before;
    auto fitted = MakeBacking(window);
    if (fitted) CopyShared(old, fitted->surface);
    window.backing = std::move(fitted);
    return before;
}

} // namespace kx::window
