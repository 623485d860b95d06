#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Region.h"

#include <new>

using namespace kx::gdi;

HGDIOBJ SelectObject(HDC hDC, HGDIOBJ hObject)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    auto object = Find(hObject);
    if (!context || !object) return nullptr;
    if (object->kind != Kind::Region) return context->Select(std::move(object));
    const int nComplexity = SelectClipRgn(hDC, static_cast<HRGN>(hObject));
    return reinterpret_cast<HGDIOBJ>(std::intptr_t{nComplexity});
} catch (const std::bad_alloc&) {
    return nullptr;
}

int SelectClipRgn(HDC hDC, HRGN hRgn)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    const auto region = FindAs<Region>(hRgn);
    if (!context || (hRgn && !region)) return RGN_ERROR;
    context->SetClip(region ? std::optional(region->pixels) : std::nullopt);
    RECT ignored;
    return context->ClipBox(ignored);
} catch (const std::bad_alloc&) {
    return RGN_ERROR;
}

int DeleteObject(HGDIOBJ hObject)
{
    const auto object = Find(hObject);
    if (!object || object->kind >= Kind::Context || object->selected > 0 || object->IsStock()) return 0;
    return Remove(hObject) ? 1 : 0;
}

int GetObjectA(HGDIOBJ hObject, int nSize, void* pBuffer)
{
    const auto object = Find(hObject);
    return object ? object->Describe(nSize, pBuffer) : 0;
}
