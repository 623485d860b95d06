#pragma once

#include "bench/WindowArt.h"

#include <KXBitmap.h>
#include <KXPaintMemoryDC.h>
#include <platform/Wnd.h>

namespace bench {

// The skinned window by the library's classes, on bitmaps that its owner fills. A program includes it once.
class CSkinnedWnd : public CWnd
{
public:
    bool Create()
    {
        for (CKXBitmap& bitmap : bitmaps) {
            bitmap.SetFillParam(0, 0, 1); // without fixed ends
            bitmap.SetMultiState(1, 1);
        }
        return CreateEx(0, AfxRegisterWndClass(0), "", WS_POPUP, CRect(0, 0, cxWindow, cyWindow), nullptr,
                        0) != 0;
    }

    std::array<CKXBitmap, arts.size()> bitmaps;

protected:
    void OnPaint()
    {
        CPaintDC paint(this);
        CKXPaintMemoryDC memory(this, &paint, 0);
        CDC& dc = memory;
        for (const Step& step : m_steps) {
            CKXBitmap& bitmap = bitmaps[step.nArt];
            if (step.bFill)
                bitmap.Pave(&dc, CRect(step.x, step.y, step.x + step.cx, step.y + step.cy), 0);
            else
                bitmap.TransparentDraw(&dc, step.x, step.y, ColorOf(dwKey), 0);
        }
        for (const Stripe& stripe : m_stripes)
            dc.FillSolidRect(stripe.x, stripe.y, stripe.cx, stripe.cy, ColorOf(stripe.color));
    }
    int OnEraseBkgnd(CDC*) { return 1; }
    DECLARE_MESSAGE_MAP()

private:
    static COLORREF ColorOf(std::uint32_t color) { return RGB(color >> 16, color >> 8, color); }

    const std::vector<Step> m_steps = Steps();
    const std::vector<Stripe> m_stripes = Stripes();
};

BEGIN_MESSAGE_MAP(CSkinnedWnd, CWnd)
ON_WM_PAINT()
ON_WM_ERASEBKGND()
END_MESSAGE_MAP()

} // namespace bench
