#include "SpellingWnd.h"

#include "PictureFiles.h"
#include "SkinFrame.h"

#include <algorithm>
#include <platform/Clock.h>
#include <utility>

namespace {

constexpr int kWidth = 660;
constexpr int kHeight = 420;
constexpr int kSideWidth = 150;
constexpr UINT kGifTimer = 1;
constexpr UINT kGifPeriod = 50;
constexpr COLORREF kField = RGB(255, 255, 255);
constexpr COLORREF kWord = RGB(30, 50, 90);
constexpr COLORREF kBox = RGB(150, 160, 180);
constexpr COLORREF kRight = RGB(20, 130, 60);
constexpr COLORREF kWrong = RGB(190, 40, 40);

bool IsSame(const CRect& a, const CRect& b)
{
    return static_cast<const RECT&>(a) == static_cast<const RECT&>(b);
}

bool Contains(const CRect& rc, CPoint point)
{
    return point.x >= rc.left && point.x < rc.right && point.y >= rc.top && point.y < rc.bottom;
}

// Whether each byte is a letter, as the drawing of test words takes it.
bool IsOfLetters(const CString& str)
{
    return std::ranges::all_of(str.View(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

void DrawWhole(CDC& dc, const CString& str, CRect rc, CFont& font, COLORREF clr)
{
    CGdiObject* pOld = dc.SelectObject(&font);
    dc.SetTextColor(clr);
    dc.SetBkMode(TRANSPARENT);
    dc.DrawText(str, &rc, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    dc.SelectObject(pOld);
}

} // namespace

namespace client {

BEGIN_MESSAGE_MAP(CSpellingWnd, CWnd)
ON_WM_CREATE()
ON_WM_PAINT()
ON_WM_ERASEBKGND()
ON_WM_TIMER()
ON_WM_CHAR()
ON_WM_KEYDOWN()
ON_WM_SYSCHAR()
ON_WM_SETCURSOR()
ON_WM_MOUSEMOVE()
ON_WM_LBUTTONDOWN()
ON_WM_LBUTTONUP()
ON_WM_DESTROY()
ON_MESSAGE(WM_KXSKINCHANGED, OnChanged)
ON_MESSAGE(WM_KXLANCHANGED, OnChanged)
ON_WM_SETFOCUS()
ON_MESSAGE(TAKE_FOCUS, OnTakeFocus)
END_MESSAGE_MAP()

bool CSpellingWnd::Create(ShowText showHint)
{
    m_showHint = std::move(showHint);
    const int x = (GetSystemMetrics(SM_CXSCREEN) - kWidth) / 2;
    const int y = (GetSystemMetrics(SM_CYSCREEN) - kHeight) / 2;
    return CreateEx(0, AfxRegisterWndClass(0), TextOf("IDS_SPELL_TITLE"), 0,
                    CRect(x, y, x + kWidth, y + kHeight), GetDesktopWindow(), 0) != 0;
}

int CSpellingWnd::OnCreate(CREATESTRUCTA* pCreate)
{
    m_test.LoadTexts();
    m_test.Restart();
    const CString strGif = CKXFileSystem::GetInstancePtr()->GetAppPath() + "spinner.gif";
    if (MakeSpinnerGif(strGif) && m_gif.Load(strGif)) m_gif.Play();
    SetTimer(kGifTimer, kGifPeriod, nullptr);
    OnChanged(0, 0);
    return CWnd::OnCreate(pCreate);
}

void CSpellingWnd::OnDestroy()
{
    CWnd::OnDestroy();
    PostQuitMessage(0);
}

// Another skin or language: texts, fonts, places and the window's shape follow.
LRESULT CSpellingWnd::OnChanged(WPARAM, LPARAM)
{
    m_test.LoadTexts();
    MakeFonts();
    Layout();
    SetWindowText(TextOf("IDS_SPELL_TITLE"));
    const HICON hIcon = CKXSkinResManager::GetSingletonPtr()->GetIMLRes()->m_hNormalIcon;
    SendMessage(WM_SETICON, 0, reinterpret_cast<LPARAM>(hIcon));
    TellCaret();
    CRgn rgn;
    MakeWindowRgn(*CKXSkinResManager::GetSingletonPtr()->GetWndRes(), CSize(kWidth, kHeight), rgn);
    SetWindowRgn(m_hWnd, static_cast<HRGN>(rgn.Detach()), 0);
    Invalidate();
    return 0;
}

void CSpellingWnd::MakeFonts()
{
    m_wordFont.DeleteObject();
    m_wordFont.CreatePointFont(260, TextOf("IDS_DEF_FONT"));
}

CRect CSpellingWnd::ClientArea() const
{
    const CKXSkinWndRes& wnd = *CKXSkinResManager::GetSingletonPtr()->GetWndRes();
    return CRect(wnd.m_nLeftWidth, wnd.m_nTitleHeight, kWidth - wnd.m_nRightWidth,
                 kHeight - wnd.m_nBottomHeight);
}

CRect CSpellingWnd::TitleRect() const
{
    return CRect(0, 0, kWidth, ClientArea().top);
}

CRect CSpellingWnd::TypedRect() const
{
    const CRect rc = ClientArea();
    return CRect(rc.left + kSideWidth + 34, rc.top + 158, rc.right - 34, rc.top + 206);
}

void CSpellingWnd::Layout()
{
    const CRect rc = ClientArea();
    CKXSkinResManager* pSkins = CKXSkinResManager::GetSingletonPtr();
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    const auto tab = [&](int y) { return CRect(rc.left + 14, y, rc.left + kSideWidth - 6, y + 26); };
    int y = rc.top + 36;
    m_skins.clear();
    for (int n = 0; n < pSkins->GetSkinsTotal(); ++n, y += 28)
        m_skins.push_back(
            {tab(y), pSkins->GetSkinName(n), [=] { pSkins->SetSkin(pSkins->GetSkinName(n), 1); }});
    y += 34;
    m_lans.clear();
    for (int n = 0; n < pLans->GetLanCount(); ++n, y += 28)
        m_lans.push_back({tab(y), pLans->GetLanName(n), [=] { pLans->SetCurrentLan(n, 1); }});

    const std::vector<CString> texts = TextsOf("IDS_SPELL_BUTTONS");
    const std::function<void()> acts[] = {[this] { Enter(); }, [this] { ShowHint(); },
                                          [this] { PostMessage(WM_CLOSE); }};
    m_strNext = texts.size() > std::size(acts) ? texts[std::size(acts)] : CString();
    m_boxes = {{CloseBoxRect(*pSkins->GetWndRes(), kWidth), "", acts[2]}};
    m_buttons.clear();
    for (std::size_t n = 0; n < texts.size() && n < std::size(acts); ++n) {
        const int x = rc.right - 14 - static_cast<int>(3 - n) * 104;
        m_buttons.push_back({CRect(x, rc.bottom - 36, x + 96, rc.bottom - 12), texts[n], acts[n]});
    }
}

CPoint CSpellingWnd::CenterOf(const Items& items, std::size_t n)
{
    if (n >= items.size()) return CPoint(-1, -1);
    const CRect& rc = items[n].rc;
    return CPoint((rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2);
}

CSpellingWnd::Item* CSpellingWnd::ItemAt(CPoint point)
{
    for (Items* items : {&m_boxes, &m_buttons, &m_skins, &m_lans})
        for (Item& item : *items)
            if (Contains(item.rc, point)) return &item;
    return nullptr;
}

// ---- Painting

void CSpellingWnd::OnPaint()
{
    CPaintDC paint(this);
    CKXPaintMemoryDC memory(this, &paint, 0);
    PaintAll(memory);
}

State CSpellingWnd::StateOf(const Item& item) const
{
    if (!IsSame(item.rc, m_rcHot)) return Normal;
    return m_bPressed ? Pressed : Hot;
}

void CSpellingWnd::PaintAll(CDC& dc)
{
    SkinPainter painter(dc);
    PaintFrame(painter, CSize(kWidth, kHeight), TextOf("IDS_SPELL_TITLE"), true, Boxes::Close,
               StateOf(m_boxes.front()));
    PaintChoices(painter);
    PaintQuestion(painter);
    if (m_test.IsAnswered())
        PaintResult(dc);
    else
        PaintTyped(painter);
    for (const Item& item : m_buttons) {
        const bool bNext = m_test.IsAnswered() && &item == &m_buttons.front();
        painter.PushButton(item.rc, bNext ? m_strNext : item.strText, StateOf(item));
    }
    if (const Item* chosen = Chosen()) {
        const CRect& rc = chosen->rc;
        painter.Outline(CRect(rc.left + 3, rc.top + 3, rc.right - 3, rc.bottom - 3), kBox);
    }
}

void CSpellingWnd::PaintChoices(SkinPainter& painter)
{
    const CRect rc = ClientArea();
    const CKXSkinResManager& skins = *CKXSkinResManager::GetSingletonPtr();
    const int nLan = CKXLanResManager::GetSingletonPtr()->GetCurrentLanIndex();
    const auto list = [&](const Items& items, const char* pszHeading, int nCurrent) {
        if (items.empty()) return;
        const CRect& rcFirst = items.front().rc;
        painter.Heading(CRect(rcFirst.left, rcFirst.top - 24, rcFirst.right, rcFirst.top - 4),
                        TextOf(pszHeading));
        for (std::size_t n = 0; n < items.size(); ++n)
            painter.TabButton(items[n].rc, items[n].strText, Tab::Vert,
                              static_cast<int>(n) == nCurrent ? Pressed : StateOf(items[n]));
    };
    list(m_skins, "IDS_SPELL_SKIN", skins.GetCurrentSkinkID());
    list(m_lans, "IDS_SPELL_LANGUAGE", nLan);
    m_gif.Render(&painter.DC(), rc.left + kSideWidth / 2 - 20, rc.bottom - 76);
}

void CSpellingWnd::PaintQuestion(SkinPainter& painter)
{
    const CRect rc = ClientArea();
    const CRect rcCard(rc.left + kSideWidth + 14, rc.top + 14, rc.right - 14, rc.bottom - 48);
    painter.DC().FillSolidRect(&rcCard, kField);
    painter.Outline(rcCard, painter.Colors().m_clrCommonBorderLine);
    painter.Bold(CRect(rcCard.left + 20, rcCard.top + 12, rcCard.right, rcCard.top + 32), m_test.Meaning(),
                 kWord);
    const CRect rcWord(rcCard.left + 20, rcCard.top + 42, rcCard.right - 20, rcCard.top + 92);
    CKXEnglishWord::DrawTestWord(&painter.DC(), m_test.Word(), m_test.Shown(), rcWord, &m_wordFont, kBox,
                                 kWord, 1);
    const char* pszHint = !m_test.IsAnswered() ? "IDS_SPELL_HINT"
                          : m_test.IsLast()    ? "IDS_SPELL_DONE"
                                               : "IDS_SPELL_NEXT";
    painter.Text(CRect(rcCard.left + 20, rcCard.top + 106, rcCard.right, rcCard.top + 126), TextOf(pszHint),
                 kWord, DT_LEFT);
    CString strScore;
    strScore.Format("%s %d / %d", TextOf("IDS_SPELL_SCORE").GetString(), m_test.Right(), m_test.Count());
    const CRect rcScore(rcCard.left + 20, rcCard.bottom - 28, rcCard.right - 20, rcCard.bottom - 8);
    painter.Progress(CRect(rcScore.left, rcScore.top, rcScore.left + 200, rcScore.bottom),
                     m_test.Done() * 100 / m_test.Count());
    painter.Text(rcScore, strScore, kWord, DT_RIGHT);
}

void CSpellingWnd::PaintTyped(SkinPainter& painter)
{
    const CRect rc = TypedRect();
    painter.Outline(CRect(rc.left - 8, rc.top - 1, rc.right + 8, rc.bottom + 1), kBox);
    if (IsOfLetters(m_test.Typed()))
        CKXEnglishWord::RedrawWordInvalidPart(&painter.DC(), &painter.DC(), "", m_test.Typed(), rc,
                                              &m_wordFont, kWord);
    else
        DrawWhole(painter.DC(), m_test.Typed(), rc, m_wordFont, kWord);
    m_strDrawn = m_test.Typed();
}

void CSpellingWnd::PaintResult(CDC& dc)
{
    const CRect rc = TypedRect();
    const CRect rcRight(rc.left, rc.bottom + 4, rc.right, rc.bottom + 4 + rc.Height());
    const bool bLetters = IsOfLetters(m_test.Typed());
    dc.SetBkMode(TRANSPARENT);
    CKXEnglishWord::DrawTestWordResult(&dc, m_test.Word(), bLetters ? m_test.Typed() : CString(), rc, rcRight,
                                       &m_wordFont, kRight, kBox, kRight, kWrong);
    constexpr int nLabel = 100; // before the letters of a result
    if (!bLetters)
        DrawWhole(dc, m_test.Typed(), CRect(rc.left + nLabel, rc.top, rc.right, rc.bottom), m_wordFont,
                  kWrong);
}

// ---- Input

void CSpellingWnd::OnSetFocus(CWnd* pOld)
{
    CWnd::OnSetFocus(pOld);
    TellCaret();
}

LRESULT CSpellingWnd::OnTakeFocus(WPARAM, LPARAM)
{
    SetFocus();
    return 0;
}

void CSpellingWnd::OnTimer(UINT nId)
{
    const CRect rc = ClientArea();
    m_gif.Playing(GetTickCount());
    const CRect rcGif(rc.left, rc.bottom - 80, rc.left + kSideWidth, rc.bottom - 20);
    InvalidateRect(&rcGif, 0);
    CWnd::OnTimer(nId);
}

// Letters are drawn anew only where they differ.
void CSpellingWnd::TypeLetter(char letter)
{
    if (!m_test.Type(letter)) return;
    const CRect rc = TypedRect();
    if (!IsOfLetters(m_strDrawn) || !IsOfLetters(m_test.Typed())) return InvalidateRect(&rc, 0);
    CKXMemoryDC empty;
    empty.Create(kWidth, rc.Height());
    empty.GetDC().FillSolidRect(0, 0, kWidth, rc.Height(), kField);
    CClientDC dc(this);
    dc.SetBkMode(TRANSPARENT);
    CKXEnglishWord::RedrawWordInvalidPart(&dc, &empty.GetDC(), m_strDrawn, m_test.Typed(), rc, &m_wordFont,
                                          kWord);
    m_strDrawn = m_test.Typed();
}

// Characters of an input method come byte by byte.
void CSpellingWnd::OnChar(UINT nChar, UINT, UINT)
{
    if (nChar != '\r' && nChar != '\t' && nChar != ' ' && nChar != VK_ESCAPE)
        TypeLetter(static_cast<char>(nChar));
    TellCaret();
}

void CSpellingWnd::OnKeyDown(UINT nKey, UINT, UINT)
{
    if (nKey == VK_TAB) MoveChosen(GetKeyState(VK_SHIFT) < 0 ? -1 : 1);
    if (nKey == VK_DOWN || nKey == VK_RIGHT) MoveChosen(1);
    if (nKey == VK_UP || nKey == VK_LEFT) MoveChosen(-1);
    const Item* chosen = Chosen();
    if (nKey == VK_RETURN || (nKey == VK_SPACE && chosen)) {
        const std::function<void()> act = chosen ? chosen->act : [this] { Enter(); };
        act();
    }
    if (nKey == VK_F1) ShowHint();
    if (nKey == VK_ESCAPE) PostMessage(WM_CLOSE);
}

// With Alt, a button is pressed by the letter that is underlined.
void CSpellingWnd::OnSysChar(UINT nChar, UINT, UINT)
{
    for (const Item& item : m_buttons) {
        const CString& strText =
            m_test.IsAnswered() && &item == &m_buttons.front() ? m_strNext : item.strText;
        const int nAt = strText.Find('&') + 1;
        if (nAt == 0 || nAt == strText.GetLength() ||
            (static_cast<UINT>(strText[nAt]) | 0x20) != (nChar | 0x20))
            continue;
        const std::function<void()> act = item.act;
        return act();
    }
}

std::vector<CSpellingWnd::Item*> CSpellingWnd::Walk()
{
    std::vector<Item*> walk;
    for (Items* items : {&m_buttons, &m_skins, &m_lans})
        for (Item& item : *items)
            walk.push_back(&item);
    return walk;
}

CSpellingWnd::Item* CSpellingWnd::Chosen()
{
    const std::vector<Item*> walk = Walk();
    return m_nChosen > 0 && m_nChosen <= walk.size() ? walk[m_nChosen - 1] : nullptr;
}

// From the field, which has the keys at first, through all items and back to it.
void CSpellingWnd::MoveChosen(int nStep)
{
    const std::size_t nPlaces = Walk().size() + 1;
    SetChosen((m_nChosen + nPlaces + static_cast<std::size_t>(nStep)) % nPlaces);
}

void CSpellingWnd::SetChosen(std::size_t nPlace)
{
    const auto redraw = [this] {
        if (const Item* chosen = Chosen()) InvalidateRect(&chosen->rc, 0);
    };
    redraw();
    m_nChosen = nPlace;
    redraw();
}

// Candidates of an input method appear where one types.
void CSpellingWnd::TellCaret()
{
    CClientDC dc(this);
    CGdiObject* pOld = dc.SelectObject(&m_wordFont);
    const CSize size = dc.GetTextExtent(m_test.Typed());
    dc.SelectObject(pOld);
    const CRect rc = TypedRect();
    SetCaretPos(rc.left + size.cx, rc.bottom);
}

int CSpellingWnd::OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT nMessage)
{
    if (!m_rcHot.IsRectEmpty()) return ::SetCursor(LoadCursorA(nullptr, IDC_HAND)), 1;
    return CWnd::OnSetCursor(pWnd, nHitTest, nMessage);
}

void CSpellingWnd::Enter()
{
    if (m_test.IsAnswered())
        m_test.Next();
    else
        m_test.Answer();
    Invalidate();
    TellCaret();
}

void CSpellingWnd::ShowHint()
{
    const CString& strWord = m_test.Word();
    m_showHint(TextOf("IDS_SPELL_TIP") + " " + strWord.Left(strWord.GetLength() / 2) + "...");
}

void CSpellingWnd::OnMouseMove(UINT nFlags, CPoint point)
{
    if (m_bMoving && (nFlags & MK_LBUTTON)) {
        CRect rc;
        GetWindowRect(&rc);
        SetWindowPos(HWND_TOP, rc.left + point.x - m_ptGrip.x, rc.top + point.y - m_ptGrip.y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        return;
    }
    const Item* item = ItemAt(point);
    const CRect rcHot = item ? item->rc : CRect();
    if (IsSame(rcHot, m_rcHot)) return;
    InvalidateRect(&m_rcHot, 0);
    m_rcHot = rcHot;
    m_bPressed = false;
    InvalidateRect(&m_rcHot, 0);
}

void CSpellingWnd::OnLButtonDown(UINT nFlags, CPoint point)
{
    OnMouseMove(nFlags & ~MK_LBUTTON, point);
    m_bPressed = ItemAt(point) != nullptr;
    m_bMoving = !m_bPressed && Contains(TitleRect(), point);
    if (m_bMoving) SetCapture();
    SetChosen(0);
    m_ptGrip = point;
    InvalidateRect(&m_rcHot, 0);
}

void CSpellingWnd::OnLButtonUp(UINT, CPoint point)
{
    if (std::exchange(m_bMoving, false)) ReleaseCapture();
    const bool bClicked = m_bPressed;
    m_bPressed = false;
    InvalidateRect(&m_rcHot, 0);
    const Item* item = ItemAt(point);
    if (!bClicked || !item || !IsSame(item->rc, m_rcHot)) return;
    const std::function<void()> act = item->act; // which may lay out anew
    act();
}

} // namespace client
