#include "platform/gdi/DeviceContext.h"

#include "platform/Errno.h"
#include "platform/gdi/PixelRegion.h"

#include <algorithm>
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

DeviceContext::DeviceContext() : Object(KIND), m_own(MakeOwnBitmap())
{
    SetView(m_own->surface, std::nullopt);
    HoldStock();
    if (!Add(m_own, true)) throw std::bad_alloc();
    m_own->selected = 1;
    Hold(m_own);
}

DeviceContext::DeviceContext(Surface& pixels, sync::Mutex& lock, const std::optional<PixelRegion>& limit)
    : Object(KIND), m_limit(limit), m_shared(&lock)
{
    SetView(pixels, std::nullopt); // whose size is for good
    HoldStock();
}

DeviceContext::~DeviceContext()
{
    for (const auto& object : m_held)
        if (object) --object->selected;
    if (m_own) Remove(m_own->Handle());
}

// All that allocates comes before the first change. Nothing does where there are no more boxes than before,
// so that the context's first bitmap can be selected again when memory is short, and the other one be
// deleted.
void DeviceContext::SetView(Surface& surface, const std::optional<PixelRegion>& region)
{
    const RECT bounds = WholeOf(surface);
    PixelRegion visible(bounds);
    if (m_limit) visible.IntersectWith(*m_limit);
    if (region) visible.IntersectWith(*region);
    const auto boxes = visible.Boxes();
    m_view.clip.resize(boxes.size());
    std::transform(boxes.begin(), boxes.end(), m_view.clip.begin(),
                   [](const auto& box) { return ToRect(box); });
    m_view.surface = &surface;
    m_view.bounds = bounds;
    m_view.reach = visible.Extents();
    m_view.visible = std::move(visible);
}

std::shared_ptr<Object> DeviceContext::Hold(std::shared_ptr<Object> object) noexcept
{
    auto& held = m_held[static_cast<std::size_t>(object->kind)];
    if (held) --held->selected;
    return std::exchange(held, std::move(object));
}

void DeviceContext::HoldStock()
{
    for (const int nStock : {BLACK_PEN, WHITE_BRUSH, SYSTEM_FONT}) {
        auto object = FindHandle<Object>(GetStockObject(nStock));
        if (!object) throw std::bad_alloc();
        Select(std::move(object));
    }
}

HGDIOBJ DeviceContext::Select(std::shared_ptr<Object> object)
{
    if (object->kind > Kind::Font) return nullptr;
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
    int nNone = 0;
    if (!bitmap.selected.compare_exchange_strong(nNone, 1)) return nullptr;
    try {
        SetView(bitmap.surface, m_region);
    } catch (...) {
        bitmap.selected = 0;
        throw;
    }
    return Hold(std::move(object))->Handle();
}

void DeviceContext::SetClip(std::optional<PixelRegion> region)
{
    SetView(*m_view.surface, region);
    m_region = std::move(region);
}

int DeviceContext::ClipBox(RECT& rect) const noexcept
{
    rect = m_view.reach;
    return m_view.visible.Complexity();
}

Canvas DeviceContext::Paint() noexcept
{
    return {*m_view.surface, m_view.bounds, m_view.clip, m_view.reach,
            m_shared ? std::optional<sync::MutexLock>(std::in_place, *m_shared)
                     : std::optional<sync::MutexLock>()};
}

Canvas DeviceContext::Read(const RECT& rect, std::optional<sync::MutexLock>& lock)
{
    Surface* seen = m_view.surface;
    if (m_shared) {
        if (!lock) lock.emplace(*m_shared);
        seen = &Look(rect);
    }
    return {*seen, m_view.bounds, m_view.clip, m_view.reach, {}};
}

HGDIOBJ Add(const std::shared_ptr<Object>& object, bool stock) noexcept
{
    object->m_stock = stock;
    return object->m_handle = AddHandle(object, !stock);
}

bool Remove(HGDIOBJ handle) noexcept
{
    return RemoveHandle<Object>(handle) != nullptr;
}

} // namespace kx::gdi

using namespace kx::gdi;

HDC CreateCompatibleDC(HDC hDC)
try {
    if (hDC && !FindAs<DeviceContext>(hDC)) return nullptr;
    return static_cast<HDC>(Add(std::make_shared<DeviceContext>()));
} catch (...) {
    return kx::NoMemory();
}

int DeleteDC(HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context && context->IsMemory() && Remove(hDC) ? 1 : 0;
}

int GetClipBox(HDC hDC, RECT* pRect)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context && pRect ? context->ClipBox(*pRect) : RGN_ERROR;
}

HGDIOBJ SelectObject(HDC hDC, HGDIOBJ hObject)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    auto object = kx::FindHandle<Object>(hObject);
    if (!context || !object) return nullptr;
    if (object->kind != Kind::Region) return context->Select(std::move(object));
    const int nComplexity = SelectClipRgn(hDC, static_cast<HRGN>(hObject));
    return reinterpret_cast<HGDIOBJ>(std::intptr_t{nComplexity});
} catch (...) {
    return kx::NoMemory();
}

int SelectClipRgn(HDC hDC, HRGN hRgn)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    const auto region = FindAs<Region>(hRgn);
    if (!context || (hRgn && !region)) return RGN_ERROR;
    context->SetClip(region ? std::optional(region->pixels) : std::nullopt);
    RECT ignored;
    return context->ClipBox(ignored);
} catch (...) {
    return kx::NoMemory(); // RGN_ERROR
}

int DeleteObject(HGDIOBJ hObject)
{
    const auto object = kx::FindHandle<Object>(hObject);
    if (!object || object->kind >= Kind::Context || object->selected > 0 || object->IsStock()) return 0;
    return Remove(hObject) ? 1 : 0;
}

int GetObjectA(HGDIOBJ hObject, int nSize, void* pBuffer)
{
    const auto object = kx::FindHandle<Object>(hObject);
    return object ? object->Describe(nSize, pBuffer) : 0;
}

COLORREF SetTextColor(HDC hDC, COLORREF clr)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? std::exchange(context->textColor, clr & COLOR_BITS) : CLR_INVALID;
}

COLORREF GetTextColor(HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? context->textColor : CLR_INVALID;
}

COLORREF SetBkColor(HDC hDC, COLORREF clr)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? std::exchange(context->backColor, clr & COLOR_BITS) : CLR_INVALID;
}

COLORREF GetBkColor(HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? context->backColor : CLR_INVALID;
}

int SetBkMode(HDC hDC, int nMode)
{
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context || (nMode != TRANSPARENT && nMode != OPAQUE)) return 0;
    return std::exchange(context->backMode, nMode);
}

int GetBkMode(HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context ? context->backMode : 0;
}
