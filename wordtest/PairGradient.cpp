#include "wordtest/PairGradient.h"

#include "platform/GdiPlus.h"

#include <algorithm>
#include <numeric>

namespace {

CRgn& Make(CRgn& rgn, const CRect& rc)
{
    rgn.CreateRectRgn(rc.left, rc.top, rc.right, rc.bottom);
    return rgn;
}

// An empty rectangle counts for nothing.
CRect Bounds(const CRect& a, const CRect& b)
{
    if (a.IsRectEmpty()) return b.IsRectEmpty() ? CRect() : b;
    if (b.IsRectEmpty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

} // namespace

void kx::wordtest::PaintPairGradient(CDC& dc, const CRect& rcAnswerCell, const CRect& rcRightCell)
{
    CRgn rgnAnswer, rgnPair;
    Make(rgnAnswer, rcAnswerCell);
    Make(rgnPair, rcRightCell).CombineRgn(&rgnPair, &rgnAnswer, RGN_OR);

    const CRect bounds = Bounds(rcAnswerCell, rcRightCell);
    Gdiplus::GraphicsPath path;
    path.AddRectangle(bounds.left, bounds.top, bounds.Width(), bounds.Height());
    Gdiplus::PathGradientBrush brush(&path);
    brush.SetCenterPoint({std::midpoint(bounds.left, bounds.right), rcRightCell.top});
    brush.SetCenterColor(Gdiplus::Color(0, 0, 255));
    const Gdiplus::Color white(255, 255, 255);
    int nColors = 1;
    brush.SetSurroundColors(&white, &nColors);
    const Gdiplus::Region region(rgnPair);
    Gdiplus::Graphics(dc).FillRegion(&brush, &region);
}
