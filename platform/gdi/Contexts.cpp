#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Screen.h"

#include <new>

using namespace kx::gdi;

HDC GetDC(HWND hWnd)
try {
    const auto area = AreaOf(hWnd);
    return area ? static_cast<HDC>(Add(std::make_shared<DeviceContext>(*area))) : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

int ReleaseDC(HWND, HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    return context && !context->IsMemory() && Remove(hDC) ? 1 : 0;
}

HDC CreateCompatibleDC(HDC hDC)
try {
    if (hDC && !FindAs<DeviceContext>(hDC)) return nullptr;
    return static_cast<HDC>(Add(std::make_shared<DeviceContext>()));
} catch (const std::bad_alloc&) {
    return nullptr;
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
