#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Fill.h"
#include "platform/gdi/RoundShape.h"

#include <new>
#include <vector>

using namespace kx::gdi;

namespace {

// A shape cut into what the pen paints and what the brush does, on the canvas's surface.
struct Pieces
{
    std::vector<RECT> outline;
    std::vector<RECT> inside;
};

Pieces CutSquare(const RECT& rect, int nWidth)
{
    const RECT inner{ToSide(std::int64_t{rect.left} + nWidth), ToSide(std::int64_t{rect.top} + nWidth),
                     ToSide(std::int64_t{rect.right} - nWidth), ToSide(std::int64_t{rect.bottom} - nWidth)};
    if (IsEmpty(inner)) return {{rect}, {}};
    return {{{rect.left, rect.top, rect.right, inner.top},
             {rect.left, inner.top, inner.left, inner.bottom},
             {inner.right, inner.top, rect.right, inner.bottom},
             {rect.left, inner.bottom, rect.right, rect.bottom}},
            {inner}};
}

Pieces CutRound(const RoundShape& shape, int nWidth, int nTop, int nBottom)
{
    Pieces pieces;
    for (int y = nTop; y < nBottom; ++y) {
        const RECT row = shape.Row(y);
        const RECT inside = nWidth > 0 ? shape.RowInside(y, nWidth) : row;
        if (IsEmpty(inside)) {
            pieces.outline.push_back(row);
            continue;
        }
        pieces.outline.push_back({row.left, y, inside.left, row.bottom});
        pieces.outline.push_back({inside.right, y, row.right, row.bottom});
        pieces.inside.push_back(inside);
    }
    return pieces;
}

void Draw(DeviceContext& context, const RECT& shape, int cxEllipse, int cyEllipse)
{
    const Pen& pen = context.CurrentPen();
    const Brush& brush = context.CurrentBrush();
    const Canvas canvas = context.Paint();
    RECT rect = canvas.ToSurface(shape);
    // As the platform has it, a shape without an outline is a pixel shorter each way.
    if (!pen.Draws())
        rect = {rect.left, rect.top, ToSide(std::int64_t{rect.right} - 1),
                ToSide(std::int64_t{rect.bottom} - 1)};
    if (IsEmpty(rect)) return;
    const int nWidth = pen.Draws() ? pen.width : 0;
    const RoundShape round(rect, cxEllipse, cyEllipse);
    const RECT rows = Cut(rect, canvas.bounds);
    const Pieces pieces =
        round.IsSquare() ? CutSquare(rect, nWidth) : CutRound(round, nWidth, rows.top, rows.bottom);
    if (brush.Draws()) FillRects(canvas, pieces.inside, ToPixel(brush.color));
    if (pen.Draws()) FillRects(canvas, pieces.outline, ToPixel(pen.color));
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
    Draw(*context, {nLeft, nTop, nRight, nBottom}, cxEllipse, cyEllipse);
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}
