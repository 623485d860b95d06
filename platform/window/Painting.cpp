#include "include/platform/WindowPaint.h"
#include "platform/Errno.h"
#include "platform/screen/Screen.h"
#include "platform/window/Desktop.h"
#include "platform/window/Queue.h"
#include "platform/window/WindowTable.h"

namespace kx::window {

namespace {

std::shared_ptr<screen::Backing> PixelsOf(HWND hWnd)
{
    const SIZE size = hWnd ? SIZE{} : Desktop::Instance().Size(); // which may wait for a display
    const sync::MutexLock lock(screen::pixelLock);
    if (!hWnd) return Desktop::Root(size);
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
        const sync::MutexLock lock(screen::pixelLock);
        if (!window || !window->visible || !window->backing) return;
        if (!window->appeared)
            drawn = {0, 0, window->backing->surface.Width(), window->backing->surface.Height()};
        window->appeared = true;
    }
    Desktop::Instance().Present(*window, drawn);
}

// A context that draws on a window's pixels, of which it reaches `limit` alone where there is one, or with
// null or the desktop's window on the desktop. Null for no such window and where the pixels can't be had;
// throws std::bad_alloc.
HDC OpenContext(HWND hWnd, const std::optional<gdi::PixelRegion>& limit)
{
    if (hWnd == kDesktopHandle) hWnd = nullptr;
    auto pixels = PixelsOf(hWnd);
    if (!pixels) return nullptr;
    return static_cast<HDC>(gdi::Add(std::make_shared<screen::Context>(hWnd, std::move(pixels), limit)));
}

} // namespace

} // namespace kx::window

int InvalidateRect(HWND hWnd, const RECT* pRect, int bErase)
try {
    const auto window = kx::window::FindAny(hWnd);
    if (!window) return 0;
    const RECT client = kx::window::WithinItself(window->Rect());
    const RECT rect = pRect ? kx::gdi::Cut(*pRect, client) : client;
    if (window->visible) window->Owner().Invalidate(*window, rect, bErase != 0);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

int UpdateWindow(HWND hWnd)
try {
    const auto window = kx::window::FindOwn(hWnd);
    if (!window) return 0;
    if (window->Owner().HasUpdate(*window)) window->Call(WM_PAINT, 0, 0);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

HDC BeginPaint(HWND hWnd, PAINTSTRUCT* pPaint)
try {
    const auto window = kx::window::FindOwn(hWnd);
    if (!window || !pPaint) return nullptr;
    const kx::window::Update update = window->Owner().TakeUpdate(*window);
    *pPaint = {kx::window::OpenContext(hWnd, update.region), update.erase, update.region.Extents()};
    if (pPaint->hdc && update.erase)
        pPaint->fErase = !SendMessageA(hWnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(pPaint->hdc), 0);
    return pPaint->hdc;
} catch (...) {
    return kx::NoMemory();
}

int EndPaint(HWND hWnd, const PAINTSTRUCT* pPaint)
{
    return pPaint ? ReleaseDC(hWnd, pPaint->hdc) : 0;
}

HDC GetDC(HWND hWnd)
try {
    return kx::window::OpenContext(hWnd, std::nullopt);
} catch (...) {
    return kx::NoMemory();
}

int ReleaseDC(HWND, HDC hDC)
try {
    const auto found = kx::gdi::FindAs<kx::gdi::DeviceContext>(hDC);
    const auto context = std::dynamic_pointer_cast<const kx::screen::Context>(found);
    if (!context || !kx::gdi::Remove(hDC)) return 0;
    kx::window::Present(*context);
    return 1;
} catch (...) {
    return kx::NoMemory();
}
