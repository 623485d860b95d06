#pragma once

#include "KXExport.h"
#include "platform/Gdi.h"

// Paints gradients of opaque colours on a surface, whose pen and brush stay as they were. The client has
// called Gdiplus::GdiplusStartup. A bad surface paints nothing, and a rectangle without width or
// height has no inside to paint.
// Distinct surfaces may be painted by distinct threads.
class KX_API CKXGdiplusHelper
{
public:
    // From left to right; with `bMirror` from both sides to the middle, which is `clrEnd`.
    static void DrawLinearGradientRect(HDC hDC, const CRect& rc, COLORREF clrStart, COLORREF clrEnd,
                                       int bMirror);
    // From top to bottom. With `bBorder` a line one pixel wide goes around it, whose right and bottom sides
    // lie just outside of `rc`.
    static void DrawGradientRect(HDC hDC, COLORREF clrTop, COLORREF clrBottom, const CRect& rc, int bBorder,
                                 COLORREF clrBorder);
    // The same in a rectangle with corners that are quarters of an ellipse of that size; the border lies
    // within it.
    static void DrawGradientRoundRect(HDC hDC, COLORREF clrTop, COLORREF clrBottom, const CRect& rc,
                                      int nEllipseWidth, int nEllipseHeight, int bBorder, COLORREF clrBorder);
    // From the centre out to the edge.
    static void DrawPathGradientRect(HDC hDC, const CRect& rc, COLORREF clrCenter, COLORREF clrSurround);
};
