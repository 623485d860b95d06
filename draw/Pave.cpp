#include "draw/Pave.h"

#include "draw/Tiling.h"

void kx::draw::Pave(const CDC* pDC, Gdiplus::Image& image, const CRect& rc)
{
    if (!pDC) return;
    Gdiplus::Graphics graphics(pDC->m_hDC);
    Pave(graphics, image, rc);
}

void kx::draw::Pave(Gdiplus::Graphics& graphics, Gdiplus::Image& image, const CRect& rc)
{
    Gdiplus::Rect seen;
    Gdiplus::DllExports::GdipGetVisibleClipBoundsI(graphics.Native(), &seen);
    const auto nWidth = static_cast<int>(image.GetWidth());
    const auto nHeight = static_cast<int>(image.GetHeight());
    ForEachStep({rc.top, rc.bottom}, nHeight, {seen.Y, seen.Y + seen.Height}, [&](int y) {
        ForEachStep({rc.left, rc.right}, nWidth, {seen.X, seen.X + seen.Width},
                    [&](int x) { graphics.DrawImage(&image, x, y); });
    });
}
