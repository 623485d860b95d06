#include "platform/gdi/DeviceContext.h"

#include <new>
#include <utility>

namespace kx::gdi {

namespace {

std::shared_ptr<Bitmap> MakeOwnBitmap()
{
    auto pixels = Surface::Make(1, 1);
    if (!pixels) throw std::bad_alloc();
    return std::make_shared<Bitmap>(std::move(*pixels), WORD{32});
}

} // namespace

DeviceContext::DeviceContext()
    : Object(KIND), m_own(MakeOwnBitmap()), m_view(MakeView(m_own->surface, std::nullopt))
{
    HoldStock();
    if (!Add(m_own, true)) throw std::bad_alloc();
    m_own->selected = 1;
    Hold(m_own);
}

DeviceContext::DeviceContext(HWND hWnd, std::shared_ptr<SharedSurface> pixels,
                             const std::optional<PixelRegion>& limit)
    : Object(KIND),
      m_window(hWnd),
      m_limit(limit),
      m_shared(std::move(pixels)),
      m_view(MakeView(m_shared->surface, std::nullopt))
{
    HoldStock();
}

DeviceContext::~DeviceContext()
{
    for (const auto& object : m_held)
        if (object) --object->selected;
    if (m_own) Remove(m_own->Handle());
}

DeviceContext::View DeviceContext::MakeView(Surface& surface, const std::optional<PixelRegion>& region) const
{
    const RECT bounds = WholeOf(surface);
    View view{&surface, bounds, PixelRegion(bounds), {}, {}};
    if (m_limit) view.visible.IntersectWith(*m_limit);
    if (region) view.visible.IntersectWith(*region);
    view.reach = view.visible.Extents();
    const auto boxes = view.visible.Boxes();
    view.clip.reserve(boxes.size());
    for (const auto& box : boxes)
        view.clip.push_back(ToRect(box));
    return view;
}

std::shared_ptr<Object> DeviceContext::Hold(std::shared_ptr<Object> object) noexcept
{
    auto& held = m_held[static_cast<std::size_t>(object->kind)];
    if (held) --held->selected;
    return std::exchange(held, std::move(object));
}

void DeviceContext::HoldStock()
{
    for (const int nStock : {BLACK_PEN, WHITE_BRUSH, SYSTEM_FONT})
        if (auto object = FindHandle<Object>(GetStockObject(nStock))) Select(std::move(object));
}

HGDIOBJ DeviceContext::Select(std::shared_ptr<Object> object)
{
    if (static_cast<std::size_t>(object->kind) >= m_held.size()) return nullptr;
    if (object.get() == Held(object->kind).get()) return object->Handle();
    if (object->kind == Kind::Bitmap) return SelectBitmap(std::move(object));
    ++object->selected;
    const auto displaced = Hold(std::move(object));
    return displaced ? displaced->Handle() : nullptr;
}

HGDIOBJ DeviceContext::SelectBitmap(std::shared_ptr<Object> object)
{
    if (!IsMemory()) return nullptr;
    auto& bitmap = static_cast<Bitmap&>(*object);
    View view = MakeView(bitmap.surface, m_region);
    int nNone = 0;
    if (!bitmap.selected.compare_exchange_strong(nNone, 1)) return nullptr;
    m_view = std::move(view);
    return Hold(std::move(object))->Handle();
}

void DeviceContext::SetClip(std::optional<PixelRegion> region)
{
    m_view = MakeView(*m_view.surface, region);
    m_region = std::move(region);
}

int DeviceContext::ClipBox(RECT& rect) const noexcept
{
    rect = m_view.reach;
    return m_view.visible.Complexity();
}

Canvas DeviceContext::Paint() noexcept
{
    Canvas canvas{*m_view.surface, m_view.bounds, m_view.clip, m_view.reach, {}};
    if (m_shared) canvas.lock = std::unique_lock(pixelLock);
    return canvas;
}

Canvas DeviceContext::Read(const RECT& rect, Canvas* other)
{
    std::unique_lock<sync::Mutex> lock;
    if (m_shared && !(other && other->lock)) lock = std::unique_lock(pixelLock);
    const bool bLooks = m_shared && m_shared->look;
    Surface& seen =
        bLooks ? m_shared->look(rect, m_shared->surface, lock ? lock : other->lock) : *m_view.surface;
    return {seen, m_view.bounds, m_view.clip, m_view.reach, std::move(lock)};
}

} // namespace kx::gdi
