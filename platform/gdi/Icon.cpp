#include "platform/gdi/Icon.h"

#include "platform/gdi/Block.h"
#include "platform/gdi/DeviceContext.h"

using namespace kx::gdi;

namespace {

// One colour laid over another with an opacity, each channel rounded; what is below keeps its high byte.
DWORD Over(DWORD above, DWORD below) noexcept
{
    const DWORD nOpacity = above >> 24;
    DWORD pixel = below & ~COLOR_BITS;
    for (const int shift : {0, 8, 16}) {
        const DWORD sum = (above >> shift & 0xFF) * nOpacity + (below >> shift & 0xFF) * (255 - nOpacity);
        pixel |= (sum + 127) / 255 << shift;
    }
    return pixel;
}

void LayRow(const DWORD* from, DWORD* to, int nCount) noexcept
{
    for (int i = 0; i < nCount; ++i)
        to[i] = Over(from[i], to[i]);
}

} // namespace

int DestroyIcon(HICON hIcon)
{
    return FindAs<Icon>(hIcon) && Remove(hIcon) ? 1 : 0;
}

int DrawIcon(HDC hDC, int x, int y, HICON hIcon)
{
    const auto context = FindAs<DeviceContext>(hDC);
    const auto icon = FindAs<Icon>(hIcon);
    if (!context || !icon) return 0;
    const Surface& image = icon->surface;
    const Canvas canvas = context->Paint();
    const RECT place = Place({x, y, image.Width(), image.Height()});
    ForEachPart(canvas.clip, place, [&](const RECT& part) {
        for (int row = part.top; row < part.bottom; ++row)
            LayRow(image.Row(row - place.top) + (part.left - place.left), canvas.surface.Row(row) + part.left,
                   part.right - part.left);
    });
    return 1;
}

int GetIconSize(HICON hIcon, SIZE* pSize)
{
    const auto icon = FindAs<Icon>(hIcon);
    if (!icon || !pSize) return 0;
    pSize->cx = icon->surface.Width();
    pSize->cy = icon->surface.Height();
    return 1;
}
