#include "platform/gdi/Block.h"
#include "platform/gdi/DeviceContext.h"

#include <algorithm>
#include <new>

using namespace kx::gdi;

namespace {

// The pixel at a place of the context, null where it isn't drawn on.
DWORD* PixelAt(const Canvas& canvas, int x, int y) noexcept
{
    const auto holds = [&](const RECT& clip) {
        return x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom;
    };
    if (std::none_of(canvas.clip.begin(), canvas.clip.end(), holds)) return nullptr;
    return canvas.surface.Row(y) + x;
}

} // namespace

COLORREF GetPixel(HDC hDC, int x, int y)
{
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return CLR_INVALID;
    const Canvas canvas = context->Read(Place({x, y, 1, 1}));
    const DWORD* pixel = PixelAt(canvas, x, y);
    return pixel ? ToColor(*pixel) : CLR_INVALID;
}

COLORREF SetPixel(HDC hDC, int x, int y, COLORREF clr)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return CLR_INVALID;
    const Canvas canvas = context->Paint();
    DWORD* pixel = PixelAt(canvas, x, y);
    if (!pixel) return CLR_INVALID;
    *pixel = ToPixel(clr);
    return ToColor(*pixel);
} catch (const std::bad_alloc&) {
    return CLR_INVALID;
}
