#include "SkinFrame.h"

#include "Artwork.h"

#include <algorithm>
#include <cmath>

namespace {

void PaintBorder(client::SkinPainter& painter, const CSize& size, int nState)
{
    CDC* pDC = &painter.DC();
    CKXSkinWndRes& wnd = painter.Wnd();
    const int nBottom = size.cy - wnd.m_nBottomHeight;
    wnd.m_bmpLeft.DrawFill(pDC, CRect(0, wnd.m_nTitleHeight, wnd.m_nLeftWidth, nBottom), nState);
    wnd.m_bmpRight.DrawFill(pDC, CRect(size.cx - wnd.m_nRightWidth, wnd.m_nTitleHeight, size.cx, nBottom),
                            nState);
    wnd.m_bmpTitle.TransparentDrawFill(pDC, CRect(0, 0, size.cx, wnd.m_nTitleHeight), client::clrKey, nState);
    wnd.m_bmpBottom.TransparentDrawFill(pDC, CRect(0, nBottom, size.cx, size.cy), client::clrKey, nState);
}

// The buttons from the right: in a row with equal spaces, or each at its own offset.
void PaintCaptionButtons(client::SkinPainter& painter, int nWidth, bool bActive, client::Boxes boxes,
                         client::State close)
{
    CKXSkinWndRes& wnd = painter.Wnd();
    struct Button
    {
        CKXBitmap& bmp;
        int cx, nOffset, nTop;
        bool bShown;
        client::State state;
    };
    Button buttons[] = {
        {wnd.m_bmpCloseBtn, wnd.m_sizeCloseBtn.cx, wnd.m_nCloseBtnOffset, wnd.m_nCloseBtnTop, true, close},
        {wnd.m_bmpMaxBtn, wnd.m_sizeMaxBtn.cx, wnd.m_nMaxBtnOffset, wnd.m_nMaxBtnTop,
         boxes == client::Boxes::All, client::Normal},
        {wnd.m_bmpMinBtn, wnd.m_sizeMinBtn.cx, wnd.m_nMinBtnOffset, wnd.m_nMinBtnTop,
         boxes == client::Boxes::All || (boxes == client::Boxes::Usual && wnd.m_bAlwaysShowMinBtn != 0),
         client::Normal},
    };
    int xNext = nWidth - wnd.m_nCloseBtnOffset;
    for (Button& button : buttons) {
        if (!button.bShown) continue;
        const int x = (wnd.m_bAutoAlign ? xNext : nWidth - button.nOffset) - button.cx;
        button.bmp.TransparentDraw(&painter.DC(), x, button.nTop, client::clrKey,
                                   button.state + (bActive ? 0 : 4));
        xNext = x - wnd.m_nBtnSpace;
    }
}

// How much of a row, counted from the corner, lies outside of the corner's path.
int CutOf(const std::vector<CPoint>& path, int nRow)
{
    for (std::size_t n = 1; n < path.size(); ++n) {
        const CPoint& a = path[n - 1];
        const CPoint& b = path[n];
        if (nRow < std::min(a.y, b.y) || nRow >= std::max(a.y, b.y)) continue;
        return static_cast<int>(std::lround(a.x + (b.x - a.x) * (nRow + 0.5 - a.y) / (b.y - a.y)));
    }
    return 0;
}

} // namespace

CRect client::PaintFrame(SkinPainter& painter, const CSize& size, const CString& strTitle, bool bActive,
                         Boxes boxes, State close)
{
    CKXSkinWndRes& wnd = painter.Wnd();
    const CRect rcClient(wnd.m_nLeftWidth, wnd.m_nTitleHeight, size.cx - wnd.m_nRightWidth,
                         size.cy - wnd.m_nBottomHeight);
    painter.Background(rcClient, wnd);
    PaintBorder(painter, size, bActive ? 0 : 1);
    painter.DC().DrawIcon(wnd.m_nSysMenuLeft, wnd.m_nSysMenuTop, painter.List().m_hNormalIcon);
    painter.Bold(CRect(wnd.m_nTitleTextLeft, wnd.m_nTitleTextTop, size.cx, wnd.m_nTitleHeight), strTitle,
                 wnd.m_clrTitle);
    PaintCaptionButtons(painter, size.cx, bActive, boxes, close);
    return rcClient;
}

CRect client::CloseBoxRect(const CKXSkinWndRes& wnd, int nWidth)
{
    const int nRight = nWidth - wnd.m_nCloseBtnOffset;
    return CRect(nRight - wnd.m_sizeCloseBtn.cx, wnd.m_nCloseBtnTop, nRight,
                 wnd.m_nCloseBtnTop + wnd.m_sizeCloseBtn.cy);
}

void client::MakeWindowRgn(const CKXSkinWndRes& wnd, const CSize& size, CRgn& rgn)
{
    std::vector<RECT> rows;
    for (int y = 0; y < size.cy; ++y) {
        const int yUp = size.cy - 1 - y;
        const int nLeft = std::max(CutOf(wnd.m_vecCornerPath1, y), CutOf(wnd.m_vecCornerPath3, yUp));
        const int nRight = std::max(CutOf(wnd.m_vecCornerPath2, y), CutOf(wnd.m_vecCornerPath4, yUp));
        rows.push_back({nLeft, y, size.cx - nRight, y + 1});
    }
    rgn.Attach(CreateRectsRgn(rows.data(), static_cast<int>(rows.size())));
}
