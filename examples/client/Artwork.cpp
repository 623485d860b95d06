#include "Artwork.h"

namespace {

// Draws into a new bitmap.
template <class Paint>
HBITMAP MakePicture(int cx, int cy, Paint&& paint)
{
    CKXMemoryDC surface;
    surface.Create(cx, cy);
    surface.GetDC().FillSolidRect(0, 0, cx, cy, client::clrKey);
    paint(surface.GetDC());
    const HDC hDC = CreateCompatibleDC(nullptr);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hDC, cx, cy);
    const HGDIOBJ hOld = SelectObject(hDC, hBitmap);
    BitBlt(hDC, 0, 0, cx, cy, surface.GetHDC(), 0, 0, SRCCOPY);
    SelectObject(hDC, hOld);
    DeleteDC(hDC);
    return hBitmap;
}

void RoundBox(CDC& dc, const CRect& rect, COLORREF clrLine, COLORREF clrInside, int nCorner)
{
    CPen pen(PS_SOLID, 1, clrLine);
    CBrush brush(clrInside);
    CPen* pOldPen = dc.SelectObject(&pen);
    CBrush* pOldBrush = dc.SelectObject(&brush);
    dc.RoundRect(&rect, CPoint(nCorner, nCorner));
    dc.SelectObject(pOldBrush);
    dc.SelectObject(pOldPen);
}

} // namespace

HBITMAP client::MakeButtonStates()
{
    constexpr COLORREF clrInside[] = {RGB(70, 130, 200), RGB(110, 170, 235), RGB(40, 90, 150),
                                      RGB(170, 175, 180)};
    return MakePicture(120, 30, [&](CDC& dc) {
        for (int n = 0; n < 4; ++n) {
            RoundBox(dc, CRect(n * 30, 0, n * 30 + 30, 30), RGB(20, 50, 90), clrInside[n], 12);
            dc.FillSolidRect(n * 30 + 6, 5, 18, 2, RGB(235, 243, 252));
        }
    });
}

HBITMAP client::MakeFrame()
{
    return MakePicture(24, 24, [](CDC& dc) {
        RoundBox(dc, CRect(0, 0, 24, 24), RGB(90, 60, 20), RGB(235, 200, 140), 12);
        RoundBox(dc, CRect(4, 4, 20, 20), RGB(160, 120, 60), RGB(255, 250, 235), 6);
    });
}

HBITMAP client::MakeDisc()
{
    return MakePicture(60, 60, [](CDC& dc) {
        RoundBox(dc, CRect(0, 0, 60, 60), RGB(120, 20, 20), RGB(210, 60, 50), 60);
        RoundBox(dc, CRect(20, 20, 40, 40), clrKey, clrKey, 20);
    });
}

HBITMAP client::MakeLandscape()
{
    return MakePicture(160, 100, [](CDC& dc) {
        CKXGdiplusHelper::DrawGradientRect(dc, RGB(60, 130, 220), RGB(250, 225, 190), CRect(0, 0, 160, 84), 0,
                                           0);
        RoundBox(dc, CRect(108, 14, 136, 42), RGB(255, 220, 120), RGB(255, 240, 180), 28);
        RoundBox(dc, CRect(-60, 52, 100, 160), RGB(70, 120, 90), RGB(90, 150, 105), 160);
        RoundBox(dc, CRect(50, 60, 230, 160), RGB(60, 105, 60), RGB(75, 130, 70), 180);
        CKXGdiplusHelper::DrawLinearGradientRect(dc, CRect(0, 84, 160, 100), RGB(40, 80, 150),
                                                 RGB(190, 215, 240), 1);
    });
}
