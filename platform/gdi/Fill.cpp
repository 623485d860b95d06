#include "platform/Errno.h"
#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/PixelRegion.h"
#include "platform/gdi/Rect.h"

#include <algorithm>

namespace kx::gdi {

void FillArea(const Canvas& canvas, const RECT& area, DWORD pixel) noexcept
{
    Surface& surface = canvas.surface;
    ForEachPart(canvas.clip, area, [&](const RECT& part) {
        DWORD* row = surface.Row(part.top) + part.left;
        for (int y = part.top; y < part.bottom; ++y, row += surface.Stride())
            std::fill_n(row, part.right - part.left, pixel);
    });
}

} // namespace kx::gdi

using namespace kx::gdi;

namespace {

// The pixel at a place of the context, null where it isn't drawn on.
DWORD* PixelAt(const Canvas& canvas, int x, int y) noexcept
{
    DWORD* pixel = nullptr;
    ForEachPart(canvas.clip, Place({x, y, 1, 1}),
                [&](const RECT& part) { pixel = canvas.surface.Row(part.top) + part.left; });
    return pixel;
}

} // namespace

COLORREF GetPixel(HDC hDC, int x, int y)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return CLR_INVALID;
    std::optional<kx::sync::MutexLock> lock;
    const Canvas canvas = context->Read(Place({x, y, 1, 1}), lock);
    const DWORD* pixel = PixelAt(canvas, x, y);
    return pixel ? ToColor(*pixel) : CLR_INVALID;
} catch (...) {
    static_cast<void>(kx::NoMemory());
    return CLR_INVALID;
}

COLORREF SetPixel(HDC hDC, int x, int y, COLORREF clr)
{
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return CLR_INVALID;
    const Canvas canvas = context->Paint();
    DWORD* pixel = PixelAt(canvas, x, y);
    if (!pixel) return CLR_INVALID;
    *pixel = ToPixel(clr);
    return ToColor(*pixel);
}

int FillRect(HDC hDC, const RECT* pRect, HBRUSH hBrush)
{
    const auto context = FindAs<DeviceContext>(hDC);
    const auto brush = FindAs<Brush>(hBrush);
    if (!context || !brush || !pRect) return 0;
    if (brush->Draws()) FillArea(context->Paint(), *pRect, ToPixel(brush->color));
    return 1;
}

int FillRgn(HDC hDC, HRGN hRgn, HBRUSH hBrush)
{
    const auto context = FindAs<DeviceContext>(hDC);
    const auto region = FindAs<Region>(hRgn);
    const auto brush = FindAs<Brush>(hBrush);
    if (!context || !region || !brush) return 0;
    if (!brush->Draws()) return 1;
    const Canvas canvas = context->Paint();
    ForEachPart(region->pixels.Boxes(), canvas.reach,
                [&](const RECT& part) { FillArea(canvas, part, ToPixel(brush->color)); });
    return 1;
}
