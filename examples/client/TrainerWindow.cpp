#include "SkinWindows.h"

#include <cstdlib>

using client::SkinPainter;
using client::TextOf;
using client::TextsOf;

namespace {

void PaintMenuBar(SkinPainter& painter, const CRect& rc)
{
    const CKXSkinColorDef& colors = painter.Colors();
    painter.Gradient(rc, colors.m_clrControlBarBk1, colors.m_clrControlBarBk2);
    painter.DC().FillSolidRect(rc.left, rc.bottom - 1, rc.Width(), 1, colors.m_clrMenuBorderNormal);
    int x = rc.left + 6;
    int n = 0;
    for (const CString& str : TextsOf("IDS_MENU_BAR")) {
        const CRect rcItem(x, rc.top + 2, x + painter.TextWidth(str) + 22, rc.bottom - 2);
        if (n == 2) painter.DC().FillSolidRect(&rcItem, colors.m_clrMenuSelectBk);
        if (n == 2) painter.Outline(rcItem, colors.m_clrMenuBorderSelect);
        if (n == 3) painter.DC().FillSolidRect(&rcItem, colors.m_clrPopMenuSelBk);
        if (n == 3) painter.Outline(rcItem, colors.m_clrMenuBorderPress);
        painter.Text(rcItem, str, client::Normal, DT_CENTER);
        x = rcItem.right + 2;
        ++n;
    }
}

// The main tabs stand on the page's upper edge, which the chosen one covers.
void PaintMainTabs(SkinPainter& painter, const CRect& rcPage, const CKXSkinBtnRes& buttons)
{
    const CKXSkinColorDef& colors = painter.Colors();
    painter.DC().FillSolidRect(&rcPage, colors.m_clrMainTabClient);
    painter.Outline(rcPage, colors.m_clrMainTabBorderLine);
    constexpr client::State states[] = {client::Normal, client::Pressed, client::Hot, client::Normal,
                                        client::Disabled};
    const std::vector<CString> tabs = TextsOf("IDS_MAIN_TABS");
    const CSize size = buttons.m_sizeMainTabBtn;
    const int nOver = buttons.m_nMainTabBtnIntersectHeight;
    for (std::size_t n = 0; n < tabs.size() && n < std::size(states); ++n) {
        const int x = rcPage.left + 10 + static_cast<int>(n) * (size.cx + 2);
        const int y = rcPage.top - size.cy + (states[n] == client::Pressed ? nOver : 0);
        painter.TabButton(CRect(x, y, x + size.cx, y + size.cy), tabs[n], client::Tab::Main, states[n]);
    }
}

// The open section with its sets and the course's progress; the others lie folded at the bottom.
void PaintSections(SkinPainter& painter, const CRect& rc)
{
    const CKXSkinColorDef& colors = painter.Colors();
    painter.DC().FillSolidRect(&rc, colors.m_clrMainTabBkg);
    painter.Outline(rc, colors.m_clrCommonBorderLine);
    const std::vector<CString> bars = TextsOf("IDS_SECTIONS");
    if (bars.size() < 3) return;
    painter.OutlookBar(CRect(rc.left, rc.top, rc.right, rc.top + 26), bars[0], client::Pressed);
    painter.OutlookBar(CRect(rc.left, rc.bottom - 52, rc.right, rc.bottom - 26), bars[1], client::Hot);
    painter.OutlookBar(CRect(rc.left, rc.bottom - 26, rc.right, rc.bottom), bars[2], client::Normal);

    constexpr client::State states[] = {client::Normal, client::Pressed, client::Hot, client::Disabled};
    int y = rc.top + 34;
    int n = 0;
    for (const CString& str : TextsOf("IDS_SETS")) {
        painter.TabButton(CRect(rc.left + 8, y, rc.right - 1, y + 26), str, client::Tab::Vert,
                          states[n++ % 4]);
        y += 28;
    }
    CRect rcLine(rc.left + 10, y + 14, rc.right - 10, y + 32);
    painter.Bold(rcLine, TextOf("IDS_COURSE"), painter.TextColor(client::Normal));
    painter.Progress(CRect(rcLine.left, rcLine.top + 22, rcLine.right, rcLine.bottom + 22), 60);
    for (const CString& str : TextsOf("IDS_COURSE_STATE")) {
        painter.Text(CRect(rcLine.left, rcLine.top + 48, rcLine.right, rcLine.bottom + 48), str);
        rcLine.top += 20;
        rcLine.bottom += 20;
    }
}

void PaintPageTabs(SkinPainter& painter, const CRect& rc)
{
    constexpr client::State states[] = {client::Pressed, client::Normal, client::Hot, client::Disabled};
    painter.DC().FillSolidRect(rc.left, rc.bottom - 1, rc.Width(), 1, painter.Colors().m_clrTabBorderLine);
    int x = rc.left + 8;
    int n = 0;
    for (const CString& str : TextsOf("IDS_PAGE_TABS")) {
        const CRect rcTab(x, rc.top, x + 84, rc.bottom);
        painter.TabButton(rcTab, str, client::Tab::Horz, states[n++ % 4]);
        x = rcTab.right + 2;
    }
}

void PaintWordBar(SkinPainter& painter, const CRect& rc)
{
    const CString strUnit = TextOf("IDS_UNIT");
    const CString strPerDay = TextOf("IDS_PER_DAY");
    int x = rc.left;
    painter.Text(CRect(x, rc.top, rc.right, rc.bottom), strUnit);
    x += painter.TextWidth(strUnit) + 8;
    painter.Combo(CRect(x, rc.top, x + 160, rc.bottom), TextOf("IDS_UNIT_NAME"), client::Hot);
    painter.Spin(CRect(rc.right - 64, rc.top, rc.right, rc.bottom), "20", client::Normal, client::Hot);
    painter.Text(CRect(rc.left, rc.top, rc.right - 72, rc.bottom), strPerDay, client::Normal, DT_RIGHT);
}

constexpr int nColumns[] = {92, 176, 60}; // the last one takes the rest
constexpr int nRowHeight = 20;

void PaintWord(SkinPainter& painter, const CRect& rc, const std::vector<CString>& fields)
{
    int x = rc.left;
    for (std::size_t n = 0; n < std::size(nColumns); ++n) {
        painter.Text(CRect(x + 8, rc.top, x + nColumns[n] - 4, rc.bottom), fields[n]);
        x += nColumns[n];
    }
    painter.Progress(CRect(x + 8, rc.top, rc.right - 8, rc.bottom), std::atoi(fields.back()));
}

void PaintWordList(SkinPainter& painter, const CRect& rc)
{
    const CKXSkinColorDef& colors = painter.Colors();
    painter.DC().FillSolidRect(&rc, painter.Wnd().m_clrBack);
    constexpr client::State states[] = {client::Pressed, client::Hot, client::Normal, client::Normal};
    const CRect rcInside(rc.left + 1, rc.top + 1, rc.right - 17, rc.bottom - 1);
    int x = rcInside.left;
    std::size_t n = 0;
    for (const CString& str : TextsOf("IDS_COLUMNS")) {
        const int nRight = n < std::size(nColumns) ? x + nColumns[n] : rc.right - 1;
        painter.Header(CRect(x, rcInside.top, nRight, rcInside.top + 22), str, states[n % 4]);
        x = nRight;
        ++n;
    }
    int y = rcInside.top + 22;
    for (int nWord = 1; nWord <= 6; ++nWord, y += nRowHeight) {
        CString strKey;
        strKey.Format("IDS_WORD%d", nWord);
        const CRect rcRow(rcInside.left, y, rcInside.right, y + nRowHeight);
        if (nWord == 3) painter.DC().FillSolidRect(&rcRow, colors.m_clrPopMenuSelBk);
        if (nWord == 3) painter.Outline(rcRow, colors.m_clrPopMenuSelBorder);
        const std::vector<CString> fields = TextsOf(strKey);
        if (fields.size() == std::size(nColumns) + 1) PaintWord(painter, rcRow, fields);
    }
    painter.ScrollBar(CRect(rc.right - 17, rcInside.top + 22, rc.right - 1, rcInside.bottom), 8, 46);
    painter.Outline(rc, colors.m_clrCommonBorderLine);
}

void PaintPractice(SkinPainter& painter, const CRect& rc)
{
    painter.Heading(CRect(rc.left, rc.top, rc.right, rc.top + 18), TextOf("IDS_PRACTICE"));
    constexpr std::pair<client::Check, client::State> checks[] = {{client::On, client::Normal},
                                                                  {client::Off, client::Hot},
                                                                  {client::Mixed, client::Normal},
                                                                  {client::On, client::Disabled}};
    constexpr std::pair<client::Check, client::State> radios[] = {{client::On, client::Normal},
                                                                  {client::Off, client::Hot},
                                                                  {client::Off, client::Pressed},
                                                                  {client::Off, client::Disabled}};
    const std::vector<CString> checkTexts = TextsOf("IDS_CHECKS");
    const std::vector<CString> radioTexts = TextsOf("IDS_RADIOS");
    if (checkTexts.size() < 4 || radioTexts.size() < 4) return;
    for (std::size_t n = 0; n < 4; ++n) {
        const int y = rc.top + 24 + static_cast<int>(n) * 20;
        painter.CheckBox(CRect(rc.left, y, rc.left + 150, y + 18), checkTexts[n], checks[n].first,
                         checks[n].second);
        painter.RadioButton(CRect(rc.left + 164, y, rc.left + 270, y + 18), radioTexts[n], radios[n].first,
                            radios[n].second);
    }
    const CRect rcSlider(rc.right - 170, rc.top + 46, rc.right, rc.top + 68);
    painter.Text(CRect(rcSlider.left, rc.top + 24, rc.right, rc.top + 42), TextOf("IDS_SPEED"));
    painter.Slider(rcSlider, 65);
    const CRect rcEnds(rcSlider.left, rcSlider.bottom + 2, rcSlider.right, rcSlider.bottom + 20);
    painter.Text(rcEnds, TextOf("IDS_SLOW"));
    painter.Text(rcEnds, TextOf("IDS_FAST"), client::Normal, DT_RIGHT);
}

// The first three from the left, the others from the right.
void PaintButtons(SkinPainter& painter, const CRect& rc)
{
    constexpr client::State states[] = {client::Hot, client::Pressed, client::Disabled, client::Default,
                                        client::Normal};
    constexpr int nWidth = 92;
    const std::vector<CString> texts = TextsOf("IDS_BUTTONS");
    for (std::size_t n = 0; n < texts.size() && n < std::size(states); ++n) {
        const int nAt = static_cast<int>(n);
        const int x = n < 3 ? rc.left + nAt * (nWidth + 8) : rc.right - (5 - nAt) * (nWidth + 8) + 8;
        painter.PushButton(CRect(x, rc.top, x + nWidth, rc.bottom), texts[n], states[n]);
    }
}

} // namespace

void client::PaintTrainer(SkinPainter& painter, const CRect& rcClient)
{
    const CKXSkinBtnRes& buttons = *CKXSkinResManager::GetSingletonPtr()->GetBtnRes();
    PaintMenuBar(painter, CRect(rcClient.left, rcClient.top, rcClient.right, rcClient.top + 24));
    const CRect rcPage(rcClient.left + 8, rcClient.top + 32 + buttons.m_sizeMainTabBtn.cy, rcClient.right - 8,
                       rcClient.bottom - 42);
    PaintMainTabs(painter, rcPage, buttons);
    PaintSections(painter, CRect(rcPage.left + 10, rcPage.top + 12, rcPage.left + 148, rcPage.bottom - 10));

    const CRect rc(rcPage.left + 160, rcPage.top + 12, rcPage.right - 10, rcPage.bottom - 10);
    PaintPageTabs(painter, CRect(rc.left, rc.top, rc.right, rc.top + 24));
    PaintWordBar(painter, CRect(rc.left, rc.top + 34, rc.right, rc.top + 56));
    PaintWordList(painter, CRect(rc.left, rc.top + 66, rc.right, rc.top + 66 + 24 + 6 * nRowHeight));
    PaintPractice(painter, CRect(rc.left, rc.top + 222, rc.right, rc.top + 326));
    PaintSkinSamples(painter, CRect(rc.left, rc.top + 338, rc.right, rc.bottom));
    PaintButtons(painter,
                 CRect(rcClient.left + 8, rcClient.bottom - 33, rcClient.right - 8, rcClient.bottom - 9));
}
