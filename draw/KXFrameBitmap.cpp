#include "KXFrameBitmap.h"

#include "draw/Tiling.h"
#include "internal/Wrap.h"

#include <algorithm>

using kx::Minus;
using kx::Plus;

void CKXFrameBitmap::SetBitmapOptions(CSize sizeTopLeft, CSize sizeTopRight, CSize sizeBottomLeft,
                                      CSize sizeBottomRight)
{
    const int W = GetBITMAP().bmWidth;
    const int H = GetBITMAP().bmHeight;
    m_rcTopLeft = CRect(0, 0, sizeTopLeft.cx, sizeTopLeft.cy);
    m_rcTopRight = CRect(Minus(W, sizeTopRight.cx), 0, W, sizeTopRight.cy);
    m_rcBottomLeft = CRect(0, Minus(H, sizeBottomLeft.cy), sizeBottomLeft.cx, H);
    m_rcBottomRight = CRect(Minus(W, sizeBottomRight.cx), Minus(H, sizeBottomRight.cy), W, H);

    m_rcLeft = CRect(m_rcTopLeft.left, m_rcTopLeft.bottom, m_rcTopLeft.right, m_rcBottomLeft.top);
    m_rcRight = CRect(m_rcTopRight.left, m_rcTopRight.bottom, m_rcTopRight.right, m_rcBottomRight.top);
    m_rcTop = CRect(m_rcTopLeft.right, m_rcTopLeft.top, m_rcTopRight.left, m_rcTopLeft.bottom);
    m_rcBottom = CRect(m_rcBottomLeft.right, m_rcBottomLeft.top, m_rcBottomRight.left, m_rcBottomLeft.bottom);

    m_nInsetLeft = std::max(m_rcTopLeft.Width(), m_rcBottomLeft.Width());
    m_nInsetRight = std::max(m_rcTopRight.Width(), m_rcBottomRight.Width());
    m_nInsetTop = std::max(m_rcTopLeft.Height(), m_rcTopRight.Height());
    m_nInsetBottom = std::max(m_rcBottomLeft.Height(), m_rcBottomRight.Height());
}

void CKXFrameBitmap::Draw(CDC* pDC, const CRect& rc, int bFillCenter, COLORREF clrCenter)
{
    if (bFillCenter) {
        const CRect center(Plus(rc.left, m_nInsetLeft), Plus(rc.top, m_nInsetTop),
                           Minus(rc.right, m_nInsetRight), Minus(rc.bottom, m_nInsetBottom));
        pDC->FillSolidRect(&center, clrCenter);
    }
    DrawFill(pDC,
             CRect(Plus(rc.left, m_rcTopLeft.Width()), rc.top, Minus(rc.right, m_rcTopRight.Width()),
                   Plus(rc.top, m_rcTop.Height())),
             m_rcTop, 1);
    DrawFill(pDC,
             CRect(Plus(rc.left, m_rcBottomLeft.Width()), Minus(rc.bottom, m_rcBottom.Height()),
                   Minus(rc.right, m_rcBottomRight.Width()), rc.bottom),
             m_rcBottom, 1);
    DrawFill(pDC,
             CRect(rc.left, Plus(rc.top, m_rcTopLeft.Height()), Plus(rc.left, m_rcLeft.Width()),
                   Minus(rc.bottom, m_rcBottomLeft.Height())),
             m_rcLeft, 0);
    DrawFill(pDC,
             CRect(Minus(rc.right, m_rcRight.Width()), Plus(rc.top, m_rcTopRight.Height()), rc.right,
                   Minus(rc.bottom, m_rcBottomRight.Height())),
             m_rcRight, 0);
    DrawCorner(pDC, rc.left, rc.top, m_rcTopLeft);
    DrawCorner(pDC, Minus(rc.right, m_rcTopRight.Width()), rc.top, m_rcTopRight);
    DrawCorner(pDC, rc.left, Minus(rc.bottom, m_rcBottomLeft.Height()), m_rcBottomLeft);
    DrawCorner(pDC, Minus(rc.right, m_rcBottomRight.Width()), Minus(rc.bottom, m_rcBottomRight.Height()),
               m_rcBottomRight);
}

void CKXFrameBitmap::DrawFill(CDC* pDC, const CRect& rcDst, const CRect& rcSrc, int bHorz)
{
    const auto seen = [&] { return kx::draw::SeenOf(pDC->m_hDC, bHorz); };
    if (bHorz)
        kx::draw::ForEachTile(rcDst.left, std::int64_t{rcDst.right} - rcDst.left, rcSrc.Width(), seen,
                              [&](int x, int n) { CopyBlock(pDC, x, rcDst.top, n, rcSrc.Height(), rcSrc); });
    else
        kx::draw::ForEachTile(rcDst.top, std::int64_t{rcDst.bottom} - rcDst.top, rcSrc.Height(), seen,
                              [&](int y, int n) { CopyBlock(pDC, rcDst.left, y, rcSrc.Width(), n, rcSrc); });
}

void CKXFrameBitmap::DrawCorner(CDC* pDC, int x, int y, const CRect& rcSrc)
{
    CopyBlock(pDC, x, y, rcSrc.Width(), rcSrc.Height(), rcSrc);
}

void CKXFrameBitmap::CopyBlock(CDC* pDC, int x, int y, int cx, int cy, const CRect& rcSrc)
{
    BitBlt(pDC->m_hDC, x, y, cx, cy, m_image.DC(), rcSrc.left, rcSrc.top, SRCCOPY);
}
