#include "SkinPainter.h"

#include <cstdlib>

namespace {

CKXSkinResManager& Skins()
{
    return *CKXSkinResManager::GetSingletonPtr();
}

COLORREF Halfway(COLORREF a, COLORREF b)
{
    return RGB((GetRValue(a) + GetRValue(b)) / 2u, (GetGValue(a) + GetGValue(b)) / 2u,
               (GetBValue(a) + GetBValue(b)) / 2u);
}

int Middle(const CRect& rc, int nHeight)
{
    return rc.top + (rc.Height() - nHeight) / 2;
}

} // namespace

CString client::TextOf(const char* pszKey)
{
    return CKXLanResManager::GetSingletonPtr()->GetString(pszKey);
}

std::vector<CString> client::TextsOf(const char* pszKey)
{
    const CString strAll = TextOf(pszKey);
    std::vector<CString> texts;
    int nStart = 0;
    for (CString str = strAll.Tokenize("|", nStart); nStart >= 0; str = strAll.Tokenize("|", nStart))
        texts.push_back(str);
    return texts;
}

client::SkinPainter::SkinPainter(CDC& dc)
    : m_dc(dc),
      m_wnd(*Skins().GetWndRes()),
      m_buttons(*Skins().GetBtnRes()),
      m_list(*Skins().GetIMLRes()),
      m_other(*Skins().GetOthRes()),
      m_colors(*Skins().GetClrDef())
{
    m_font.CreatePointFont(std::atoi(TextOf("IDS_UI_POINTS")), TextOf("IDS_DEF_FONT"));
    LOGFONTA font{};
    m_font.GetLogFont(&font);
    font.lfWeight = FW_BOLD;
    m_bold.CreateFontIndirectA(&font);
    m_pOldFont = m_dc.SelectObject(&m_font);
    m_dc.SetBkMode(TRANSPARENT);
}

client::SkinPainter::~SkinPainter()
{
    m_dc.SelectObject(m_pOldFont);
}

COLORREF client::SkinPainter::TextColor(State state) const
{
    return state == Disabled ? Halfway(m_wnd.m_clrText, m_colors.m_clrMainTabClient) : m_wnd.m_clrText;
}

void client::SkinPainter::Text(const CRect& rc, const CString& str, State state, UINT nAlign)
{
    Text(rc, str, TextColor(state), nAlign);
}

void client::SkinPainter::Text(const CRect& rc, const CString& str, COLORREF clr, UINT nAlign)
{
    CRect rcText(rc);
    m_dc.SetTextColor(clr);
    m_dc.DrawText(str, &rcText, nAlign | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}

void client::SkinPainter::Bold(const CRect& rc, const CString& str, COLORREF clr)
{
    m_dc.SelectObject(&m_bold);
    Text(rc, str, clr, DT_LEFT);
    m_dc.SelectObject(&m_font);
}

void client::SkinPainter::Outline(const CRect& rc, COLORREF clr)
{
    m_dc.FillSolidRect(rc.left, rc.top, rc.Width(), 1, clr);
    m_dc.FillSolidRect(rc.left, rc.bottom - 1, rc.Width(), 1, clr);
    m_dc.FillSolidRect(rc.left, rc.top, 1, rc.Height(), clr);
    m_dc.FillSolidRect(rc.right - 1, rc.top, 1, rc.Height(), clr);
}

void client::SkinPainter::Gradient(const CRect& rc, COLORREF clrTop, COLORREF clrBottom)
{
    CKXGdiplusHelper::DrawGradientRect(m_dc, clrTop, clrBottom, rc, 0, 0);
}

void client::SkinPainter::Heading(const CRect& rc, const CString& str)
{
    Bold(rc, str, m_wnd.m_clrText);
    m_dc.SelectObject(&m_bold);
    const int x = rc.left + TextWidth(str) + 8;
    m_dc.SelectObject(&m_font);
    m_dc.FillSolidRect(x, Middle(rc, 1), rc.right - x, 1, m_colors.m_clrCommonBorderLine);
}

void client::SkinPainter::Background(const CRect& rc, CKXSkinWndRes& wnd)
{
    CRgn rgn;
    rgn.CreateRectRgn(rc.left, rc.top, rc.right, rc.bottom);
    m_dc.SelectClipRgn(&rgn);
    switch (wnd.m_nBkgType) {
    case 1:
        m_dc.FillSolidRect(&rc, wnd.m_clrBkg);
        break;
    case 2:
        wnd.m_bmpBkg.Pave(&m_dc, rc, 0);
        break;
    case 3:
        wnd.m_bmpBkgMid.Pave(&m_dc, rc, 0);
        wnd.m_bmpBkgBtm.DrawFill(&m_dc, CRect(rc.left, rc.bottom - wnd.m_nBkgBtmHeight, rc.right, rc.bottom),
                                 0);
        wnd.m_bmpBkgTop.DrawFill(&m_dc, rc, 0);
        break;
    default:
        m_dc.FillSolidRect(&rc, wnd.m_clrBack);
    }
    m_dc.SelectClipRgn(nullptr);
}

void client::SkinPainter::PushButton(const CRect& rc, const CString& str, State state)
{
    m_buttons.m_bmpPushButton.TransparentDrawFill(&m_dc, rc, m_buttons.m_clrMask, state);
    const int nSunk = state == Pressed ? 1 : 0;
    CRect rcText(rc.left + nSunk, rc.top + nSunk, rc.right + nSunk, rc.bottom + nSunk);
    m_dc.SetTextColor(TextColor(state));
    m_dc.DrawText(str, &rcText, DT_CENTER | DT_VCENTER | DT_SINGLELINE); // with its letter underlined
}

void client::SkinPainter::Mark(CKXBitmap& bmp, const CSize& size, const CRect& rc, const CString& str,
                               int nImage, State state)
{
    bmp.TransparentDraw(&m_dc, rc.left, Middle(rc, size.cy), m_buttons.m_clrMask, nImage);
    Text(CRect(rc.left + size.cx + 6, rc.top, rc.right, rc.bottom), str, state);
}

void client::SkinPainter::CheckBox(const CRect& rc, const CString& str, Check check, State state)
{
    Mark(m_buttons.m_bmpCheckBox, m_buttons.m_sizeCheckBox, rc, str, check * 4 + state, state);
}

void client::SkinPainter::RadioButton(const CRect& rc, const CString& str, Check check, State state)
{
    Mark(m_buttons.m_bmpRadioButton, m_buttons.m_sizeRadioButton, rc, str, check * 4 + state, state);
}

// A box with a text and room for a button at its right; where that goes.
CRect client::SkinPainter::Edit(const CRect& rc, const CString& str, int nButtonWidth)
{
    m_dc.FillSolidRect(&rc, m_wnd.m_clrBack);
    Outline(rc, m_colors.m_clrCommonBorderLine);
    const CRect rcButton(rc.right - 1 - nButtonWidth, rc.top + 1, rc.right - 1, rc.bottom - 1);
    Text(CRect(rc.left + 6, rc.top, rcButton.left - 4, rc.bottom), str);
    return rcButton;
}

void client::SkinPainter::Combo(const CRect& rc, const CString& str, State state)
{
    const CRect rcButton = Edit(rc, str, m_buttons.m_sizeComboButton.cx);
    m_buttons.m_bmpComboButton.TransparentDraw(
        &m_dc, rcButton.left, Middle(rcButton, m_buttons.m_sizeComboButton.cy), m_buttons.m_clrMask, state);
}

void client::SkinPainter::Spin(const CRect& rc, const CString& str, State up, State down)
{
    const CSize& size = m_buttons.m_sizeSpinButton;
    const CRect rcButtons = Edit(rc, str, size.cx);
    const int y = Middle(rcButtons, 2 * size.cy);
    m_buttons.m_bmpSpinButton.TransparentDraw(&m_dc, rcButtons.left, y, m_buttons.m_clrMask, up);
    m_buttons.m_bmpSpinButton.TransparentDraw(&m_dc, rcButtons.left, y + size.cy, m_buttons.m_clrMask,
                                              4 + down);
}

void client::SkinPainter::TabButton(const CRect& rc, const CString& str, Tab tab, State state)
{
    if (tab == Tab::Main) {
        m_buttons.m_bmpMainTabBtn.TransparentDraw(&m_dc, rc.left, rc.top, m_buttons.m_clrMask, state);
        return Text(rc, str, state, DT_CENTER);
    }
    CKXBitmap& bmp = tab == Tab::Horz ? m_buttons.m_bmpTabBtnHorz : m_buttons.m_bmpTabBtnVert;
    bmp.TransparentDrawFill(&m_dc, rc, m_buttons.m_clrMask, state);
    Text(CRect(rc.left + 12, rc.top, rc.right - 4, rc.bottom), str, state);
}

void client::SkinPainter::Header(const CRect& rc, const CString& str, State state)
{
    m_buttons.m_bmpListViewHeader.DrawFill(&m_dc, rc, state);
    Text(CRect(rc.left + 8, rc.top, rc.right - 4, rc.bottom), str, state);
}

void client::SkinPainter::ScrollBar(const CRect& rc, int nThumbTop, int nThumbHeight)
{
    // Four squares side by side: up, down, thumb, track.
    BITMAP record{};
    m_wnd.m_bmpScrollBar.GetBitmap(&record);
    const int n = record.bmHeight;
    CDC source;
    source.CreateCompatibleDC(&m_dc);
    CBitmap* pOld = source.SelectObject(&m_wnd.m_bmpScrollBar);
    m_dc.StretchBlt(rc.left, rc.top, n, rc.Height(), &source, 3 * n, 0, n, n, SRCCOPY);
    m_dc.BitBlt(rc.left, rc.top, n, n, &source, 0, 0, SRCCOPY);
    m_dc.BitBlt(rc.left, rc.bottom - n, n, n, &source, n, 0, SRCCOPY);
    const int y = rc.top + n + nThumbTop;
    m_dc.StretchBlt(rc.left, y + 3, n, nThumbHeight - 6, &source, 2 * n, 3, n, 1, SRCCOPY);
    m_dc.BitBlt(rc.left, y, n, 3, &source, 2 * n, 0, SRCCOPY);
    m_dc.BitBlt(rc.left, y + nThumbHeight - 3, n, 3, &source, 2 * n, n - 3, SRCCOPY);
    m_dc.BitBlt(rc.left, y + nThumbHeight / 2 - 4, n, 8, &source, 2 * n, 4, SRCCOPY);
    source.SelectObject(pOld);
}

void client::SkinPainter::Slider(const CRect& rc, int nPercent)
{
    const CRect& rcTrack = m_other.m_bmpSliderTrack.GetSrcImageRect();
    const CRect& rcThumb = m_other.m_bmpSliderThumb.GetSrcImageRect();
    const int y = Middle(rc, rcTrack.Height());
    m_other.m_bmpSliderTrack.TransparentDrawFill(&m_dc, CRect(rc.left, y, rc.right, y + rcTrack.Height()),
                                                 m_other.m_clrMask, 0);
    m_other.m_bmpSliderThumb.TransparentDraw(&m_dc, rc.left + (rc.Width() - rcThumb.Width()) * nPercent / 100,
                                             Middle(rc, rcThumb.Height()), m_other.m_clrMask, 0);
}

void client::SkinPainter::Progress(const CRect& rc, int nPercent)
{
    CKXBitmap& bmp = m_other.m_bmpFileTransProgress;
    const int nHeight = bmp.GetSrcImageRect().Height();
    CRect rcBar(rc.left, Middle(rc, nHeight), rc.right, Middle(rc, nHeight) + nHeight);
    bmp.TransparentDrawFill(&m_dc, rcBar, m_other.m_clrMask, 0);
    if (nPercent <= 0) return; // the ends of a bar would be wider than it
    rcBar.right = rcBar.left + rcBar.Width() * nPercent / 100;
    bmp.TransparentDrawFill(&m_dc, rcBar, m_other.m_clrMask, 1);
}

void client::SkinPainter::OutlookBar(const CRect& rc, const CString& str, State state)
{
    m_other.m_bmpOutlookBar.TransparentDrawFill(&m_dc, rc, m_other.m_clrMask, state);
    Bold(CRect(rc.left + 12, rc.top, rc.right, rc.bottom), str, m_wnd.m_clrText);
}

void client::SkinPainter::Group(const CRect& rc, const CString& str, bool bExpanded, bool bTeam, State state)
{
    m_list.m_bmpGroupBtn.TransparentDrawFill(&m_dc, rc, m_list.m_clrMask, state);
    m_dc.DrawIcon(rc.left + 4, Middle(rc, 16), bExpanded ? m_list.m_hExpandIcon : m_list.m_hNormalIcon);
    Bold(CRect(rc.left + 26, rc.top, rc.right, rc.bottom), str, m_wnd.m_clrText);
    if (!bTeam) return;
    m_list.m_bmpTeamBtn.TransparentDraw(&m_dc, rc.right - m_list.m_sizeTeamBtn.cx - 3,
                                        Middle(rc, m_list.m_sizeTeamBtn.cy), m_list.m_clrMask,
                                        state == Hot ? Hot : Normal);
}
