#include "platform/window/HeadlessDesktop.h"

#include "include/platform/MessageBox.h"
#include "platform/Immortal.h"
#include "platform/gdi/Rect.h"
#include "platform/window/Window.h"
#include "platform/window/WindowTable.h"

#include <algorithm>
#include <memory>
#include <pixman.h>
#include <span>
#include <vector>

namespace kx::window {

namespace {

using WindowPtr = std::shared_ptr<Window>;

struct Unref
{
    void operator()(pixman_image_t* image) const noexcept { pixman_image_unref(image); }
};
using Image = std::unique_ptr<pixman_image_t, Unref>;

Image ImageOf(gdi::Surface& surface)
{
    return Image(pixman_image_create_bits(PIXMAN_x8r8g8b8, surface.Width(), surface.Height(), surface.Row(0),
                                          static_cast<int>(surface.Stride() * 4)));
}

Image MaskOf(BYTE opacity)
{
    const pixman_color_t color{0, 0, 0, static_cast<std::uint16_t>(opacity * 257)};
    return Image(pixman_image_create_solid_fill(&color));
}

// The windows of which something is seen within the area.
std::vector<WindowPtr> Visible(std::span<const HWND> handles, const RECT& area) KX_REQUIRES(screen::pixelLock)
{
    std::vector<WindowPtr> windows;
    for (const HWND hWnd : handles) {
        auto window = WindowTable::Instance().Find(hWnd);
        const bool bSeen = window && window->visible && window->appeared && window->backing;
        if (bSeen && window->opacity > 0 && !gdi::IsEmpty(gdi::Cut(area, window->Rect())))
            windows.push_back(std::move(window));
    }
    return windows;
}

// Lets drawing on an image reach only what of a window there is to see.
void ClipToShape(const Window& window, const RECT& rect, pixman_image_t* image) KX_REQUIRES(screen::pixelLock)
{
    pixman_image_set_clip_region32(image, nullptr);
    if (!window.shape) return;
    const auto boxes = window.shape->Boxes();
    pixman_region32_t clip;
    pixman_region32_init_rects(&clip, boxes.data(), static_cast<int>(boxes.size()));
    pixman_region32_translate(&clip, rect.left, rect.top);
    pixman_image_set_clip_region32(image, &clip);
    pixman_region32_fini(&clip);
}

void Composite(Window& window, const RECT& area, pixman_image_t* seen) KX_REQUIRES(screen::pixelLock)
{
    const RECT rect = window.Rect();
    const RECT part = gdi::Cut(area, rect);
    const BYTE opacity = window.opacity;
    const Image mask = opacity < 255 ? MaskOf(opacity) : nullptr;
    const Image pixels = ImageOf(window.backing->surface);
    if (!pixels || (opacity < 255 && !mask)) return;
    ClipToShape(window, rect, seen);
    pixman_image_composite32(PIXMAN_OP_OVER, pixels.get(), mask.get(), seen, part.left - rect.left,
                             part.top - rect.top, 0, 0, part.left, part.top, part.right - part.left,
                             part.bottom - part.top);
}

void CopyRows(gdi::Surface& from, gdi::Surface& to, const RECT& area)
{
    for (int y = area.top; y < area.bottom; ++y)
        std::copy_n(from.Row(y) + area.left, area.right - area.left, to.Row(y) + area.left);
}

// The pixels of a desktop with the windows on it, from the lowest, each by its opacity; of them the rectangle
// is brought up to date. Those of the root where nothing lies on it, or for a lack of memory. Under the lock
// of the desktop's pixels.
gdi::Surface& Compose(std::span<const HWND> handles, const RECT& rect, gdi::Surface& root,
                      std::optional<gdi::Surface>& seen) KX_REQUIRES(screen::pixelLock)
{
    const RECT area = gdi::Cut(rect, {0, 0, root.Width(), root.Height()});
    const std::vector<WindowPtr> windows = Visible(handles, area);
    if (windows.empty()) return root;
    if (!seen || seen->Width() != root.Width() || seen->Height() != root.Height())
        seen = gdi::Surface::Make(root.Width(), root.Height());
    const Image image = seen ? ImageOf(*seen) : nullptr;
    if (!image) return root;
    CopyRows(root, *seen, area);
    for (const WindowPtr& window : windows)
        Composite(*window, area, image.get());
    return *seen;
}

} // namespace

HeadlessDesktop& HeadlessDesktop::Instance() noexcept
{
    return The<HeadlessDesktop>();
}

SIZE HeadlessDesktop::Size() const noexcept
{
    const sync::MutexLock lock(m_lock);
    return m_size;
}

void HeadlessDesktop::SetSize(SIZE size)
{
    const sync::MutexLock lock(m_lock);
    m_size = size;
}

bool HeadlessDesktop::Create(HWND hWnd, const CREATESTRUCTA&)
{
    const sync::MutexLock lock(m_lock);
    m_stack.Add(hWnd);
    return true;
}

void HeadlessDesktop::Stack(HWND hWnd, Order order)
{
    const sync::MutexLock lock(m_lock);
    m_stack.Move(hWnd, order);
}

void HeadlessDesktop::Destroy(HWND hWnd) noexcept
{
    const sync::MutexLock lock(m_lock);
    m_stack.Remove(hWnd);
}

gdi::Surface& HeadlessDesktop::Look(const RECT& rect, gdi::Surface& root)
{
    std::vector<HWND> order;
    {
        const sync::MutexLock lock(m_lock);
        order = m_stack.Handles();
    }
    return Compose(order, rect, root, m_seen);
}

std::vector<HWND> HeadlessDesktop::ForeignWindows() const
{
    std::vector<HWND> handles;
    const sync::MutexLock lock(m_lock);
    for (const auto& [handle, foreign] : m_foreign)
        handles.push_back(handle);
    return handles;
}

std::optional<WindowFacts> HeadlessDesktop::FindForeign(HWND hWnd) const noexcept
{
    const sync::MutexLock lock(m_lock);
    const auto it = m_foreign.find(hWnd);
    return it == m_foreign.end() ? std::nullopt : std::optional(it->second.facts);
}

bool HeadlessDesktop::PostForeign(HWND hWnd, const KXHost::SentMessage& message)
{
    const sync::MutexLock lock(m_lock);
    const auto it = m_foreign.find(hWnd);
    if (it == m_foreign.end()) return false;
    it->second.received.Add(message);
    return true;
}

LRESULT HeadlessDesktop::SendForeign(HWND hWnd, const KXHost::SentMessage& message)
{
    PostForeign(hWnd, message);
    return 0;
}

int HeadlessDesktop::RecordMessageBox(const KXHost::MessageBoxRecord& box)
{
    const sync::MutexLock lock(m_lock);
    m_boxes.Add(box);
    return IDOK;
}

HWND HeadlessDesktop::AddForeign(const WindowFacts& facts)
{
    const sync::MutexLock lock(m_lock);
    const HWND handle = reinterpret_cast<HWND>(NewAge());
    m_foreign.emplace(handle, Foreign{facts, {}});
    return handle;
}

void HeadlessDesktop::RemoveForeign(HWND hWnd)
{
    const sync::MutexLock lock(m_lock);
    m_foreign.erase(hWnd);
}

std::vector<KXHost::SentMessage> HeadlessDesktop::TakeMessages(HWND hWnd)
{
    const sync::MutexLock lock(m_lock);
    const auto it = m_foreign.find(hWnd);
    return it == m_foreign.end() ? std::vector<KXHost::SentMessage>() : it->second.received.Take();
}

std::vector<KXHost::MessageBoxRecord> HeadlessDesktop::TakeMessageBoxes()
{
    const sync::MutexLock lock(m_lock);
    return m_boxes.Take();
}

} // namespace kx::window
