#include "platform/Errno.h"
#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/PixelRegion.h"
#include "platform/gdi/Rect.h"
#include "platform/gdi/RoundShape.h"

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
    ForEachPart(canvas.clip, AreaOf({x, y, 1, 1}),
                [&](const RECT& part) { pixel = canvas.surface.Row(part.top) + part.left; });
    return pixel;
}

} // namespace

COLORREF GetPixel(HDC hDC, int x, int y)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return CLR_INVALID;
    std::optional<kx::sync::MutexLock> lock;
    const Canvas canvas = context->Read(AreaOf({x, y, 1, 1}), lock);
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

namespace {

// The pen and the brush that paint a shape; null for one that paints nothing.
struct Tools
{
    const Pen* pen;
    const Brush* brush;
    int Width() const { return pen ? pen->width : 0; }

    void Outline(const Canvas& canvas, const RECT& rect) const
    {
        if (pen) FillArea(canvas, rect, ToPixel(pen->color));
    }
    void Fill(const Canvas& canvas, const RECT& rect) const
    {
        if (brush) FillArea(canvas, rect, ToPixel(brush->color));
    }
};

void DrawSquare(const Canvas& canvas, const RECT& rect, const Tools& tools)
{
    const int nWidth = tools.Width();
    const RECT inner{ToSide(std::int64_t{rect.left} + nWidth), ToSide(std::int64_t{rect.top} + nWidth),
                     ToSide(std::int64_t{rect.right} - nWidth), ToSide(std::int64_t{rect.bottom} - nWidth)};
    if (IsEmpty(inner)) return tools.Outline(canvas, rect);
    tools.Fill(canvas, inner);
    tools.Outline(canvas, {rect.left, rect.top, rect.right, inner.top});
    tools.Outline(canvas, {rect.left, inner.top, inner.left, inner.bottom});
    tools.Outline(canvas, {inner.right, inner.top, rect.right, inner.bottom});
    tools.Outline(canvas, {rect.left, inner.bottom, rect.right, rect.bottom});
}

void DrawRound(const Canvas& canvas, const RECT& rect, const RoundShape& shape, const Tools& tools)
{
    const int nWidth = tools.Width();
    const RECT rows = Cut(rect, canvas.reach);
    for (int y = rows.top; y < rows.bottom; ++y) {
        const RECT row = shape.Row(y);
        const RECT inside = shape.RowInside(y, nWidth);
        if (IsEmpty(inside)) {
            tools.Outline(canvas, row);
            continue;
        }
        tools.Outline(canvas, {row.left, y, inside.left, row.bottom});
        tools.Outline(canvas, {inside.right, y, row.right, row.bottom});
        tools.Fill(canvas, inside);
    }
}

void Draw(DeviceContext& context, RECT rect, int cxEllipse, int cyEllipse)
{
    const Pen& pen = context.CurrentPen();
    const Brush& brush = context.CurrentBrush();
    const Tools tools{pen.Draws() ? &pen : nullptr, brush.Draws() ? &brush : nullptr};
    const Canvas canvas = context.Paint();
    // On the platform a shape without an outline is a pixel shorter each way.
    if (!tools.pen)
        rect = {rect.left, rect.top, ToSide(std::int64_t{rect.right} - 1),
                ToSide(std::int64_t{rect.bottom} - 1)};
    if (IsEmpty(rect)) return;
    const RoundShape round(rect, cxEllipse, cyEllipse);
    if (round.IsSquare())
        DrawSquare(canvas, rect, tools);
    else
        DrawRound(canvas, rect, round, tools);
}

} // namespace

int Rectangle(HDC hDC, int nLeft, int nTop, int nRight, int nBottom)
{
    return RoundRect(hDC, nLeft, nTop, nRight, nBottom, 0, 0);
}

int RoundRect(HDC hDC, int nLeft, int nTop, int nRight, int nBottom, int cxEllipse, int cyEllipse)
{
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return 0;
    Draw(*context, Ordered({nLeft, nTop, nRight, nBottom}), cxEllipse, cyEllipse);
    return 1;
}
