#include "platform/gdi/DeviceContext.h"
#include "platform/window/Backing.h"

#include <new>

using namespace kx::gdi;

HDC GetDC(HWND hWnd)
try {
    return kx::window::OpenContext(hWnd, std::nullopt);
} catch (const std::bad_alloc&) {
    return nullptr;
}

int ReleaseDC(HWND, HDC hDC)
{
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context || context->IsMemory() || !Remove(hDC)) return 0;
    kx::window::Present(context->Window(), *context);
    return 1;
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
