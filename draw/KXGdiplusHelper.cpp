#include "KXGdiplusHelper.h"

#include "internal/Wrap.h"
#include "platform/GdiObject.h"
#include "platform/GdiPlus.h"

using kx::Minus;
using kx::Plus;

namespace {

Gdiplus::Color Opaque(COLORREF clr)
{
    Gdiplus::Color color;
    color.SetFromCOLORREF(clr);
    return color;
}

// Begins a pixel early, so that the first row painted is already on the way to the second colour.
Gdiplus::LinearGradientBrush DownBrush(const CRect& rc, COLORREF clrTop, COLORREF clrBottom)
{
    return {Gdiplus::Point{rc.left, Minus(rc.top, 1)}, Gdiplus::Point{rc.left, Minus(rc.bottom, 1)},
            Opaque(clrTop), Opaque(clrBottom)};
}

void FillAcross(Gdiplus::Graphics& graphics, const CRect& rc, int nFrom, int nTo, COLORREF clrFrom,
                COLORREF clrTo)
{
    const Gdiplus::LinearGradientBrush brush(Gdiplus::Point{nFrom, rc.top}, Gdiplus::Point{nTo, rc.top},
                                             Opaque(clrFrom), Opaque(clrTo));
    graphics.FillRectangle(&brush, rc.left, rc.top, rc.Width(), rc.Height());
}

// The outline in a colour of its own, with the surface's pen and brush put back.
void OutlineRoundRect(HDC hDC, const CRect& rc, CSize ellipse, COLORREF clr)
{
    const CPen pen(PS_SOLID, 1, clr);
    const HGDIOBJ hOldBrush = SelectObject(hDC, GetStockObject(NULL_BRUSH));
    const HGDIOBJ hOldPen = SelectObject(hDC, static_cast<HPEN>(pen));
    RoundRect(hDC, rc.left, rc.top, rc.right, rc.bottom, ellipse.cx, ellipse.cy);
    SelectObject(hDC, hOldPen);
    SelectObject(hDC, hOldBrush);
}

} // namespace

void CKXGdiplusHelper::DrawLinearGradientRect(HDC hDC, const CRect& rc, COLORREF clrStart, COLORREF clrEnd,
                                              int bMirror)
{
    Gdiplus::Graphics graphics(hDC);
    if (!bMirror) {
        FillAcross(graphics, rc, rc.left, rc.right, clrStart, clrEnd);
        return;
    }
    // Each brush begins a pixel before its half: what it repeats on either side never shows.
    const int nMiddle = Plus(rc.left, rc.Width() / 2);
    FillAcross(graphics, CRect(rc.left, rc.top, nMiddle, rc.bottom), Minus(rc.left, 1), nMiddle, clrStart,
               clrEnd);
    FillAcross(graphics, CRect(nMiddle, rc.top, rc.right, rc.bottom), Minus(nMiddle, 1), rc.right, clrEnd,
               clrStart);
}

void CKXGdiplusHelper::DrawGradientRect(HDC hDC, COLORREF clrTop, COLORREF clrBottom, const CRect& rc,
                                        int bBorder, COLORREF clrBorder)
{
    Gdiplus::Graphics graphics(hDC);
    const auto brush = DownBrush(rc, clrTop, clrBottom);
    graphics.FillRectangle(&brush, rc.left, rc.top, rc.Width(), rc.Height());
    if (!bBorder) return;
    const Gdiplus::Pen pen(Opaque(clrBorder), 1.0F);
    graphics.DrawRectangle(&pen, rc.left, rc.top, rc.Width(), rc.Height());
}

void CKXGdiplusHelper::DrawGradientRoundRect(HDC hDC, COLORREF clrTop, COLORREF clrBottom, const CRect& rc,
                                             int nEllipseWidth, int nEllipseHeight, int bBorder,
                                             COLORREF clrBorder)
{
    {
        CRgn rgn;
        rgn.CreateRoundRectRgn(rc.left, rc.top, rc.right, rc.bottom, nEllipseWidth, nEllipseHeight);
        Gdiplus::Graphics graphics(hDC);
        const Gdiplus::Region region(rgn);
        const auto brush = DownBrush(rc, clrTop, clrBottom);
        graphics.FillRegion(&brush, &region);
    }
    if (bBorder) OutlineRoundRect(hDC, rc, CSize(nEllipseWidth, nEllipseHeight), clrBorder);
}

void CKXGdiplusHelper::DrawPathGradientRect(HDC hDC, const CRect& rc, COLORREF clrCenter,
                                            COLORREF clrSurround)
{
    Gdiplus::GraphicsPath path(Gdiplus::FillModeAlternate);
    path.AddRectangle(rc.left, rc.top, rc.Width(), rc.Height());
    Gdiplus::PathGradientBrush brush(&path);
    brush.SetCenterColor(Opaque(clrCenter));
    const Gdiplus::Color surround = Opaque(clrSurround);
    int nCount = 1;
    brush.SetSurroundColors(&surround, &nCount);
    Gdiplus::Graphics graphics(hDC);
    graphics.FillRectangle(&brush, rc.left, rc.top, rc.Width(), rc.Height());
}
