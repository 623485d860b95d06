#pragma once

#include "SkinPainter.h"
#include "SpellingTest.h"

#include <functional>
#include <vector>

namespace client {

// The window of the spelling test, drawn from the current skin: one types the missing letters, sees the
// result, asks for a hint, and picks another skin or language while it runs. It is moved by its title.
class CSpellingWnd : public CWnd
{
public:
    // Has it take the focus.
    static constexpr UINT TAKE_FOCUS = WM_USER;
    using ShowText = std::function<void(const CString&)>;
    // Around the middle of the desktop; a hint that is asked for goes to `showHint`. False if there is no
    // window to be had.
    bool Create(ShowText showHint);

    const SpellingTest& Test() const { return m_test; }
    // The middle of a button, or of a skin's or language's tab, for who plays the user.
    CPoint ButtonCenter(std::size_t nButton) const { return CenterOf(m_buttons, nButton); }
    CPoint SkinCenter(std::size_t nSkin) const { return CenterOf(m_skins, nSkin); }
    CPoint LanguageCenter(std::size_t nLan) const { return CenterOf(m_lans, nLan); }

protected:
    int OnCreate(CREATESTRUCTA* pCreate);
    void OnPaint();
    int OnEraseBkgnd(CDC*) { return 1; } // all of it is painted
    void OnTimer(UINT nId);
    void OnChar(UINT nChar, UINT nRepeat, UINT nFlags);
    void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags);
    void OnSysChar(UINT nChar, UINT nRepeat, UINT nFlags);
    int OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT nMessage);
    void OnMouseMove(UINT nFlags, CPoint point);
    void OnLButtonDown(UINT nFlags, CPoint point);
    void OnLButtonUp(UINT nFlags, CPoint point);
    void OnDestroy();
    LRESULT OnChanged(WPARAM wParam, LPARAM lParam);
    void OnSetFocus(CWnd* pOld);
    LRESULT OnTakeFocus(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

private:
    struct Item
    {
        CRect rc;
        CString strText;
        std::function<void()> act;
    };
    using Items = std::vector<Item>;

    static CPoint CenterOf(const Items& items, std::size_t n);
    Item* ItemAt(CPoint point);
    void Layout();
    void MakeFonts();
    CRect ClientArea() const;
    CRect TypedRect() const;
    CRect TitleRect() const;

    void PaintAll(CDC& dc);
    void PaintChoices(SkinPainter& painter);
    void PaintQuestion(SkinPainter& painter);
    void PaintTyped(SkinPainter& painter);
    void PaintResult(CDC& dc);
    State StateOf(const Item& item) const;

    // The items that keys walk through, in their order on the window.
    std::vector<Item*> Walk();
    void MoveChosen(int nStep);
    // Null for the field.
    Item* Chosen();
    void SetChosen(std::size_t nPlace);
    void TellCaret();
    void TypeLetter(char letter);
    void Enter();
    void ShowHint();

    SpellingTest m_test;
    CKXGifRender m_gif;
    ShowText m_showHint;
    CFont m_wordFont;
    Items m_boxes; // in the title
    Items m_buttons;
    CString m_strNext; // the first button's text once the word is answered
    Items m_skins;
    Items m_lans;
    CString m_strDrawn;        // the text that the field shows
    CRect m_rcHot;             // of the item below the mouse
    std::size_t m_nChosen = 0; // the place that keys have chosen in the walk; 0: the field, and Enter answers
    bool m_bPressed = false;
    bool m_bMoving = false;
    CPoint m_ptGrip;
};

} // namespace client
