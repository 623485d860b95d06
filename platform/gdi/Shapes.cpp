#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Fill.h"
#include "platform/gdi/RoundShape.h"

#include <new>
#include <span>
#include <vector>

using namespace kx::gdi;

namespace {

// What paints a shape: null for what doesn't.
struct Tools
{
    const Pen* pen;
    const Brush* brush;
    int Width() const { return pen ? pen->width : 0; }

    // The shape cut into what the pen paints and what the brush does.
    void Paint(const Canvas& canvas, std::span<const RECT> outline, std::span<const RECT> inside) const
    {
        if (brush) FillRects(canvas, inside, ToPixel(brush->color));
        if (pen) FillRects(canvas, outline, ToPixel(pen->color));
    }
};

void DrawSquare(const Canvas& canvas, const RECT& rect, const Tools& tools)
{
    const int nWidth = tools.Width();
    const RECT inner{ToSide(std::int64_t{rect.left} + nWidth), ToSide(std::int64_t{rect.top} + nWidth),
                     ToSide(std::int64_t{rect.right} - nWidth), ToSide(std::int64_t{rect.bottom} - nWidth)};
    if (IsEmpty(inner)) return tools.Paint(canvas, {&rect, 1}, {});
    const RECT outline[] = {{rect.left, rect.top, rect.right, inner.top},
                            {rect.left, inner.top, inner.left, inner.bottom},
                            {inner.right, inner.top, rect.right, inner.bottom},
                            {rect.left, inner.bottom, rect.right, rect.bottom}};
    tools.Paint(canvas, outline, {&inner, 1});
}

void DrawRound(const Canvas& canvas, const RECT& rect, const RoundShape& shape, const Tools& tools)
{
    const int nWidth = tools.Width();
    const RECT rows = Cut(rect, canvas.bounds);
    std::vector<RECT> outlines, insides;
    for (int y = rows.top; y < rows.bottom; ++y) {
        const RECT row = shape.Row(y);
        const RECT inside = nWidth > 0 ? shape.RowInside(y, nWidth) : row;
        if (IsEmpty(inside)) {
            outlines.push_back(row);
            continue;
        }
        outlines.push_back({row.left, y, inside.left, row.bottom});
        outlines.push_back({inside.right, y, row.right, row.bottom});
        insides.push_back(inside);
    }
    tools.Paint(canvas, outlines, insides);
}

void Draw(DeviceContext& context, RECT rect, int cxEllipse, int cyEllipse)
{
    const Pen& pen = context.CurrentPen();
    const Brush& brush = context.CurrentBrush();
    const Tools tools{pen.Draws() ? &pen : nullptr, brush.Draws() ? &brush : nullptr};
    const Canvas canvas = context.Paint();
    // As the platform has it, a shape without an outline is a pixel shorter each way.
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
try {
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return 0;
    Draw(*context, Ordered({nLeft, nTop, nRight, nBottom}), cxEllipse, cyEllipse);
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}
