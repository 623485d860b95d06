#include "platform/Errno.h"
#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/PixelRegion.h"

#include <utility>

namespace kx::gdi {

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
