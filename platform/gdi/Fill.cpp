#include "platform/gdi/Fill.h"

#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Region.h"

#include <algorithm>
#include <new>
#include <vector>

namespace kx::gdi {

namespace {

[[gnu::always_inline]] inline void FillPart(const Canvas& canvas, const RECT& part, DWORD pixel)
{
    if (IsEmpty(part)) return;
    Surface& surface = canvas.surface;
    const int nWidth = part.right - part.left;
    DWORD* row = surface.Row(part.top) + part.left;
    for (int nRows = part.bottom - part.top; nRows > 0; --nRows, row += surface.Stride()) {
        if (nWidth == 1) // the side of a box
            *row = pixel;
        else
            std::fill_n(row, nWidth, pixel);
    }
}

} // namespace

void FillRects(const Canvas& canvas, std::span<const RECT> rects, DWORD pixel)
{
    if (rects.size() <= 1 || canvas.clip.size() <= 1) {
        for (const RECT& clip : canvas.clip)
            for (const RECT& rect : rects)
                FillPart(canvas, Cut(rect, clip), pixel);
        return;
    }
    // Many by many: pixman cuts them in one pass.
    PixelRegion region = PixelRegion::FromRects(rects);
    region.IntersectWith(PixelRegion::FromRects(canvas.clip));
    for (const auto& box : region.Boxes())
        FillPart(canvas, ToRect(box), pixel);
}

} // namespace kx::gdi

using namespace kx::gdi;

int FillRect(HDC hDC, const RECT* pRect, HBRUSH hBrush)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    const auto brush = FindAs<Brush>(hBrush);
    if (!context || !brush || !pRect) return 0;
    const Canvas canvas = context->Paint();
    if (brush->Draws()) FillRects(canvas, {pRect, 1}, ToPixel(brush->color));
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}

int FillRgn(HDC hDC, HRGN hRgn, HBRUSH hBrush)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    const auto region = FindAs<Region>(hRgn);
    const auto brush = FindAs<Brush>(hBrush);
    if (!context || !region || !brush) return 0;
    if (!brush->Draws()) return 1;
    const Canvas canvas = context->Paint();
    const auto boxes = region->pixels.Boxes();
    std::vector<RECT> rects(boxes.size());
    std::transform(boxes.begin(), boxes.end(), rects.begin(), [](const auto& box) { return ToRect(box); });
    FillRects(canvas, rects, ToPixel(brush->color));
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}
