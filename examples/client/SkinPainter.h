#pragma once

#include <KXCommonClass.h>
#include <vector>

namespace client {

// How the skins' bitmaps lay out their states.
enum State
{
    Normal,
    Hot,
    Pressed, // of a tab or a bar: the one that is chosen
    Disabled,
    Default, // of a push button alone
};
enum Check
{
    Off,
    On,
    Mixed, // of a check box alone
};
enum class Tab
{
    Main,
    Horz,
    Vert,
};

// The text of a key in the current language, and one that is a list: the pieces between its bars.
CString TextOf(const char* pszKey);
std::vector<CString> TextsOf(const char* pszKey);

// Draws the controls of the current skin, with texts in the current language's font.
class SkinPainter
{
public:
    explicit SkinPainter(CDC& dc);
    SkinPainter(const SkinPainter&) = delete;
    SkinPainter& operator=(const SkinPainter&) = delete;
    ~SkinPainter();

    CDC& DC() { return m_dc; }
    CKXSkinWndRes& Wnd() { return m_wnd; }
    CKXSkinIMListRes& List() { return m_list; }
    CKXSkinOtherRes& Other() { return m_other; }
    const CKXSkinColorDef& Colors() const { return m_colors; }

    COLORREF TextColor(State state) const;
    // One line, halfway down; DT_LEFT, DT_CENTER or DT_RIGHT.
    void Text(const CRect& rc, const CString& str, State state = Normal, UINT nAlign = DT_LEFT);
    void Text(const CRect& rc, const CString& str, COLORREF clr, UINT nAlign);
    void Bold(const CRect& rc, const CString& str, COLORREF clr);
    int TextWidth(const CString& str) { return m_dc.GetTextExtent(str).cx; }

    void Outline(const CRect& rc, COLORREF clr);
    void Gradient(const CRect& rc, COLORREF clrTop, COLORREF clrBottom);
    // A heading with a line to the right of it.
    void Heading(const CRect& rc, const CString& str);
    // The background of a type that the set has loaded.
    void Background(const CRect& rc, CKXSkinWndRes& wnd);

    void PushButton(const CRect& rc, const CString& str, State state);
    void CheckBox(const CRect& rc, const CString& str, Check check, State state);
    void RadioButton(const CRect& rc, const CString& str, Check check, State state);
    // A field with a text; gives the room that its button has at the right.
    CRect Edit(const CRect& rc, const CString& str, int nButtonWidth = 0);
    void Combo(const CRect& rc, const CString& str, State state);
    void Spin(const CRect& rc, const CString& str, State up, State down);
    void TabButton(const CRect& rc, const CString& str, Tab tab, State state);
    void Header(const CRect& rc, const CString& str, State state);
    void ScrollBar(const CRect& rc, int nThumbTop, int nThumbHeight);
    // At a number of hundredths.
    void Slider(const CRect& rc, int nPercent);
    void Progress(const CRect& rc, int nPercent);
    void OutlookBar(const CRect& rc, const CString& str, State state);
    // The head of a group, with its icon and, with `bTeam`, the button of a team.
    void Group(const CRect& rc, const CString& str, bool bExpanded, bool bTeam, State state);

private:
    void Mark(CKXBitmap& bmp, const CSize& size, const CRect& rc, const CString& str, int nImage,
              State state);

    CDC& m_dc;
    CKXSkinWndRes& m_wnd;
    CKXSkinBtnRes& m_buttons;
    CKXSkinIMListRes& m_list;
    CKXSkinOtherRes& m_other;
    const CKXSkinColorDef& m_colors;
    CFont m_font;
    CFont m_bold;
    CFont* m_pOldFont;
};

} // namespace client
