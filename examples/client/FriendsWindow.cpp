#include "SkinWindows.h"

using client::SkinPainter;
using client::TextOf;
using client::TextsOf;

namespace {

void PaintFriend(SkinPainter& painter, const CRect& rc, const char* pszKey, COLORREF clrPresence)
{
    const std::vector<CString> texts = TextsOf(pszKey);
    if (texts.size() < 2) return;
    CBrush brush(clrPresence);
    CRgn dot;
    dot.CreateRoundRectRgn(rc.left + 7, rc.top + 5, rc.left + 16, rc.top + 14, 9, 9);
    painter.DC().FillRgn(&dot, &brush);
    const CRect rcText(rc.left + 26, rc.top, rc.right - 6, rc.bottom);
    painter.Text(rcText, texts[0]);
    painter.Text(rcText, texts[1], client::Disabled, DT_RIGHT);
}

void PaintGroups(SkinPainter& painter, const CRect& rc)
{
    constexpr COLORREF clrHere = RGB(70, 180, 90);
    constexpr COLORREF clrAway = RGB(230, 170, 50);
    constexpr COLORREF clrGone = RGB(150, 155, 160);
    painter.DC().FillSolidRect(&rc, painter.Wnd().m_clrBack);
    painter.Outline(rc, painter.Colors().m_clrCommonBorderLine);
    const std::vector<CString> groups = TextsOf("IDS_GROUPS");
    if (groups.size() < 3) return;
    const auto row = [&](int y, int nHeight) {
        return CRect(rc.left + 3, rc.top + y, rc.right - 3, rc.top + y + nHeight);
    };
    painter.Group(row(3, 22), groups[0], true, true, client::Normal);
    PaintFriend(painter, row(27, 20), "IDS_FRIEND1", clrHere);
    PaintFriend(painter, row(47, 20), "IDS_FRIEND2", clrHere);
    PaintFriend(painter, row(67, 20), "IDS_FRIEND3", clrAway);
    PaintFriend(painter, row(87, 20), "IDS_FRIEND4", clrGone);
    painter.Group(row(110, 22), groups[1], false, false, client::Pressed);
    painter.Group(row(136, 22), groups[2], false, true, client::Hot);
}

void PaintTransfer(SkinPainter& painter, const CRect& rc, CKXGdiplusImage& image, const char* pszKey,
                   int nPercent, bool bHot)
{
    const CKXSkinColorDef& colors = painter.Colors();
    if (bHot) painter.Gradient(rc, colors.m_clrFileTransHotBk1, colors.m_clrFileTransHotBk2);
    if (bHot) painter.Outline(rc, colors.m_clrCommonBorderLine);
    const CSize size = image.GetImageSize();
    const int y = rc.top + (rc.Height() - size.cy) / 2;
    image.Render(&painter.DC(), CRect(rc.left + 6, y, rc.left + 6 + size.cx, y + size.cy));
    const std::vector<CString> texts = TextsOf(pszKey);
    if (texts.size() < 2) return;
    const CRect rcText(rc.left + 46, rc.top + 4, rc.right - 8, rc.top + 22);
    painter.Text(rcText, texts[0]);
    painter.Text(rcText, texts[1], client::Disabled, DT_RIGHT);
    CString strPercent;
    strPercent.Format("%d %%", nPercent);
    const CRect rcBar(rcText.left, rc.top + 24, rcText.right - 44, rc.top + 40);
    painter.Progress(rcBar, nPercent);
    painter.Text(CRect(rcBar.right, rcBar.top, rcText.right, rcBar.bottom), strPercent, client::Normal,
                 DT_RIGHT);
}

void PaintMenuItem(SkinPainter& painter, const CRect& rc, const CString& str, client::State state,
                   bool bChecked)
{
    const CKXSkinColorDef& colors = painter.Colors();
    if (state == client::Hot) {
        painter.DC().FillSolidRect(&rc, colors.m_clrPopMenuSelBk);
        painter.Outline(rc, colors.m_clrPopMenuSelBorder);
    }
    if (bChecked)
        painter.Other().m_bmpMenuIconChecked.TransparentDraw(
            &painter.DC(), rc.left + 4, rc.top + (rc.Height() - 16) / 2, painter.Other().m_clrMask, 0);
    painter.Text(CRect(rc.left + 34, rc.top, rc.right, rc.bottom), str, state);
}

} // namespace

void client::PaintFriends(SkinPainter& painter, const CRect& rcClient)
{
    CRect rc(rcClient.left + 10, rcClient.top + 10, rcClient.right - 10, rcClient.top + 32);
    painter.Combo(rc, TextOf("IDS_STATUS"), Normal);
    PaintGroups(painter, CRect(rc.left, rc.bottom + 10, rc.right, rc.bottom + 10 + 162));
    const int y = rc.bottom + 10 + 162 + 12;
    painter.Heading(CRect(rc.left, y, rc.right, y + 18), TextOf("IDS_TRANSFERS"));
    PaintTransfer(painter, CRect(rc.left, y + 26, rc.right, y + 72), painter.Other().m_imgFileSend,
                  "IDS_SENDING", 60, true);
    PaintTransfer(painter, CRect(rc.left, y + 76, rc.right, y + 122), painter.Other().m_imgFileReceive,
                  "IDS_RECEIVING", 85, false);
}

CRect client::FriendsField(const CRect& rcClient)
{
    return CRect(rcClient.left + 10, rcClient.bottom - 34, rcClient.right - 10, rcClient.bottom - 12);
}

void client::PaintFriendMenu(SkinPainter& painter, const CRect& rcClient)
{
    const CKXSkinColorDef& colors = painter.Colors();
    CDC& dc = painter.DC();
    dc.FillSolidRect(&rcClient, colors.m_clrPopMenuBk);
    dc.FillSolidRect(rcClient.left, rcClient.top, 28, rcClient.Height(), colors.m_clrPopMenuLeftBk);
    painter.Outline(rcClient, colors.m_clrCommonBorderLine);
    constexpr State states[] = {Normal, Hot, Normal, Normal, Normal, Disabled};
    const std::vector<CString> texts = TextsOf("IDS_FRIEND_MENU");
    int y = rcClient.top + 3;
    for (std::size_t n = 0; n < texts.size() && n < std::size(states); ++n) {
        PaintMenuItem(painter, CRect(rcClient.left + 3, y, rcClient.right - 3, y + 24), texts[n], states[n],
                      n == 2 || n == 3);
        y += 24;
        if (n != 1 && n != 4) continue;
        dc.FillSolidRect(rcClient.left + 34, y + 3, rcClient.Width() - 37, 1, colors.m_clrMenuBorderNormal);
        y += 7;
    }
}
