#include "platform/window/Backing.h"

#include "platform/Errno.h"
#include "platform/screen/Screen.h"
#include "platform/window/Desktop.h"
#include "platform/window/WindowTable.h"

namespace kx::window {

namespace {

std::shared_ptr<screen::Backing> PixelsOf(HWND hWnd)
{
    const SIZE size = hWnd ? SIZE{} : Desktop::Instance().Size(); // which may wait for a display
    const sync::MutexLock lock(gdi::pixelLock);
    if (!hWnd) return Root(size);
    const auto window = WindowTable::Instance().Find(hWnd);
    if (!window) return nullptr;
    if (!window->backing) window->backing = screen::MakeBacking(SizeOf(window->Rect()));
    return window->backing;
}

// Shows on the desktop what a context of a window has drawn, if the window is visible.
void Present(const screen::Context& context)
{
    const auto window = WindowTable::Instance().Find(context.window);
    RECT drawn;
    context.ClipBox(drawn);
    {
        const sync::MutexLock lock(gdi::pixelLock);
        if (!window || !window->visible || !window->backing) return;
        if (!window->appeared)
            drawn = {0, 0, window->backing->surface.Width(), window->backing->surface.Height()};
        window->appeared = true;
    }
    Desktop::Instance().Present(*window, drawn);
}

} // namespace

HDC OpenContext(HWND hWnd, const std::optional<gdi::PixelRegion>& limit)
{
    if (hWnd == kDesktopHandle) hWnd = nullptr;
    auto pixels = PixelsOf(hWnd);
    if (!pixels) return nullptr;
    return static_cast<HDC>(gdi::Add(std::make_shared<screen::Context>(hWnd, std::move(pixels), limit)));
}

SIZE FitBacking(Window& window)
{
    const sync::MutexLock lock(gdi::pixelLock);
    return screen::Resize(window.backing, SizeOf(window.Rect()));
}

std::shared_ptr<screen::Backing> Root(SIZE size)
{
    return screen::Screen::Instance().Root(size, [](const RECT& rect, gdi::Surface& root) -> gdi::Surface& {
        gdi::pixelLock.AssertHeld();
        return Desktop::Instance().Look(rect, root);
    });
}

} // namespace kx::window

HDC GetDC(HWND hWnd)
try {
    return kx::window::OpenContext(hWnd, std::nullopt);
} catch (...) {
    return kx::NoMemory();
}

int ReleaseDC(HWND, HDC hDC)
try {
    using namespace kx::window;
    const auto found = kx::gdi::FindAs<kx::gdi::DeviceContext>(hDC);
    const auto context = std::dynamic_pointer_cast<const kx::screen::Context>(found);
    if (!context || !kx::gdi::Remove(hDC)) return 0;
    Present(*context);
    return 1;
} catch (...) {
    return kx::NoMemory();
}
