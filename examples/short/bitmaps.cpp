#include "Short.h"

// A bitmap of three states, drawn as a button of any width.
namespace {

constexpr int cxState = 20, cyState = 16, nStates = 3;

HBITMAP MakeStates()
{
    CKXMemoryDC surface;
    surface.Create(cxState * nStates, cyState);
    CDC& dc = surface.GetDC();
    const COLORREF colors[nStates] = {RGB(70, 130, 180), RGB(100, 160, 210), RGB(40, 90, 130)};
    for (int n = 0; n < nStates; ++n) {
        const CRect rcState(n * cxState, 0, (n + 1) * cxState, cyState);
        const CRect rcEdge(rcState.left, 0, rcState.left + 3, cyState);
        dc.FillSolidRect(rcState, colors[n]);
        dc.FillSolidRect(rcEdge, RGB(0, 0, 0));
    }
    return static_cast<HBITMAP>(surface.GetBitmap().Detach());
}

} // namespace

int main()
{
    CKXBitmap button;
    button.AttachBitmap(MakeStates()); // or LoadBitmapA, from a file
    button.SetMultiState(nStates, 1);
    button.SetFillParam(3, 3, 1); // the ends stay as they are, what is between them is repeated

    CKXMemoryDC surface;
    surface.Create(200, 40);
    button.DrawFill(&surface.GetDC(), CRect(0, 0, 200, 16), 1);
    button.TransparentDraw(&surface.GetDC(), 0, 20, RGB(0, 0, 0), 2);
    const bool bFilled = surface.GetDC().GetPixel(100, 8) == RGB(100, 160, 210);
    const bool bKeyed = surface.GetDC().GetPixel(1, 24) == surface.GetDC().GetPixel(199, 39);
    std::printf("filled: %d, keyed: %d\n", bFilled, bKeyed);

    CRgn body; // what isn't black of the picture: there a click would count
    RECT box;
    button.CreateBitmapRgn(body, RGB(0, 0, 0), 0);
    body.GetRgnBox(&box);
    const bool bHit = body.PtInRegion(10, 8) && !body.PtInRegion(1, 8) && box.left == 3;
    return bFilled && bKeyed && bHit ? 0 : 1;
}
