#include "KXTipWnd.h"

#include "KXLanResManager.h"
#include "include/platform/Clock.h"
#include "tests/support/Desktop.h"
#include "tests/support/Test.h"

namespace {

using test::Pump;
using test::SeenAt;

constexpr COLORREF kYellow = RGB(255, 255, 0);
constexpr int kLeft = (DESKTOP_WIDTH - 200) / 2, kTop = (DESKTOP_HEIGHT - 100) / 2;

// The pixels of a box of the tip's size, row by row.
std::vector<COLORREF> BoxAt(HDC hDC, int left, int top)
{
    std::vector<COLORREF> pixels;
    for (int n = 0; n < 200 * 100; ++n)
        pixels.push_back(GetPixel(hDC, left + n % 200, top + n / 200));
    return pixels;
}

std::vector<COLORREF> SeenInTheBox()
{
    return BoxAt(test::Desktop(), kLeft, kTop);
}

// The bounds of what is more blue than yellow within the box.
RECT TextBounds()
{
    RECT bounds{999, 999, -1, -1};
    int n = 0;
    for (const COLORREF clr : SeenInTheBox()) {
        const int x = n % 200, y = n++ / 200;
        if (GetBValue(clr) < 128) continue;
        bounds = {std::min(bounds.left, x), std::min(bounds.top, y), std::max(bounds.right, x + 1),
                  std::max(bounds.bottom, y + 1)};
    }
    return bounds;
}

// A tip on a clock that its fades move themselves, in a face that nobody would take by chance.
struct Tip : testing::Test
{
    static constexpr char kFace[] = "DejaVu Sans Mono";

    Tip()
    {
        CKXLanResManager::GetSingletonPtr()->InsertString("IDS_DEF_FONT", kFace);
        EXPECT_TRUE(tip.CreateTipWnd());
    }
    bool IsUpAfter(DWORD dwMilliseconds)
    {
        KXHost::AdvanceClock(dwMilliseconds);
        Pump();
        return tip.IsWindowVisible();
    }

    test::VirtualClock clock{0, KXHost::VirtualSleep::Advances};
    CKXTipWnd tip;
};

TEST_F(Tip, IsAYellowBoxInTheMiddleWithALineInBlue)
{
    const test::NoLeak noLeak;
    CKXTipWnd box;
    ASSERT_TRUE(box.CreateTipWnd());
    EXPECT_FALSE(box.IsWindowVisible());
    EXPECT_FALSE(box.CreateTipWnd()); // once
    RECT rect;
    box.GetWindowRect(&rect);
    EXPECT_EQ(rect, CRect(kLeft, kTop, kLeft + 200, kTop + 100));
    EXPECT_EQ(SeenAt(kLeft, kTop), DESKTOP_COLOR);

    const DWORD begin = GetTickCount();
    box.ShowTipWnd("Well done", 500);
    EXPECT_EQ(GetTickCount() - begin, 3000u);
    EXPECT_TRUE(box.IsWindowVisible());
    for (const auto& [x, y] : {std::pair(0, 0), {199, 0}, {0, 99}, {199, 99}})
        EXPECT_EQ(SeenAt(kLeft + x, kTop + y), kYellow);
    EXPECT_EQ(SeenAt(kLeft - 1, kTop), DESKTOP_COLOR);
    EXPECT_EQ(SeenAt(kLeft + 200, kTop + 99), DESKTOP_COLOR);
    box.SetWindowPos(nullptr, 0, 0, 300, 100, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    EXPECT_NEAR((TextBounds().left + TextBounds().right) / 2, 150, 2); // all is drawn anew
}

// The text of the tip's box as it must be: erasing draws it, and so does painting.
std::vector<COLORREF> Letters(const char* pszText)
{
    const test::Paper paper(200, 100);
    CDC& dc = *CDC::FromHandle(paper);
    dc.FillSolidRect(0, 0, 200, 100, kYellow);
    CFont font;
    font.CreatePointFont(100, Tip::kFace, nullptr);
    CFont* pOld = dc.SelectObject(&font);
    dc.SetTextColor(RGB(0, 0, 255));
    dc.SetBkMode(TRANSPARENT);
    CRect rc(0, 0, 200, 100);
    for (int n = 0; n < 2; ++n)
        dc.DrawText(pszText, rc, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    dc.SelectObject(pOld);
    return BoxAt(dc, 0, 0);
}

TEST_F(Tip, DrawsInTenPointsOfTheLanguagesFaceOnTheYellow)
{
    tip.ShowTipWnd("Well done", 500);
    EXPECT_TRUE(SeenInTheBox() == Letters("Well done"));
    const HDC hDC = GetDC(tip.m_hWnd); // a paint alone draws the text, without the ground
    CDC::FromHandle(hDC)->FillSolidRect(0, 0, 200, 100, kYellow);
    ReleaseDC(tip.m_hWnd, hDC);
    EXPECT_EQ(TextBounds().right, -1);
    InvalidateRect(tip.m_hWnd, nullptr, FALSE);
    Pump();
    const RECT text = TextBounds();
    EXPECT_GT(text.right - text.left, 50);
    EXPECT_EQ(SeenAt(kLeft + text.left - 1, kTop + text.top), kYellow);
}

// Counts how often it loses the focus.
class CFocusCounter : public CWnd
{
public:
    int m_nLosses = 0;

protected:
    void OnKillFocus(CWnd* pNew)
    {
        ++m_nLosses;
        CWnd::OnKillFocus(pNew);
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CFocusCounter, CWnd)
ON_WM_KILLFOCUS()
END_MESSAGE_MAP()

TEST_F(Tip, StaysAboveOtherWindowsAndDisturbsNone)
{
    CFocusCounter own;
    const CRect rc(kLeft, kTop, kLeft + 200, kTop + 100);
    const auto hWhite = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    own.CreateEx(0, AfxRegisterWndClass(0, nullptr, hWhite), "", WS_POPUP | WS_VISIBLE, rc, nullptr, 0);
    Pump();
    ASSERT_EQ(CWnd::GetFocus(), &own);
    ASSERT_EQ(SeenAt(kLeft, kTop), RGB(255, 255, 255));
    for (int n = 0; n < 2; ++n) // anew, and while it is up
        tip.ShowTipWnd("text", 1000);
    EXPECT_EQ(own.m_nLosses, 0);
    own.SetWindowPos(HWND_TOP, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    EXPECT_EQ(SeenAt(kLeft, kTop), kYellow);
}

TEST_F(Tip, StaysAsLongAsToldThroughTheWrapOfTheTickCount)
{
    KXHost::AdvanceClock(0xFFFFFFFFu - GetTickCount() - 3500);
    tip.ShowTipWnd("text", 1000); // ends behind the wrap
    EXPECT_GT(GetTickCount(), 0xF0000000u);
    EXPECT_TRUE(IsUpAfter(999)); // nine ticks
    const DWORD before = GetTickCount();
    EXPECT_LT(before, 0x10000000u);
    EXPECT_FALSE(IsUpAfter(1)); // the tenth
    EXPECT_EQ(GetTickCount() - before, 3001u);
    EXPECT_EQ(SeenAt(kLeft, kTop), DESKTOP_COLOR);
    EXPECT_FALSE(tip.KillTimer(1)); // it killed that

    tip.ShowTipWnd("again", 0);
    EXPECT_TRUE(tip.IsWindowVisible());
    EXPECT_TRUE(IsUpAfter(99));
    EXPECT_FALSE(IsUpAfter(1));
}

TEST_F(Tip, ThatIsUpIsReplaced)
{
    tip.ShowTipWnd("i", 1000);
    const RECT narrow = TextBounds();
    KXHost::AdvanceClock(900);
    const DWORD begin = GetTickCount();
    tip.ShowTipWnd("a text of more words than the box of the tip can hold on one line of it", 1000);
    EXPECT_EQ(GetTickCount() - begin, 3000u);
    const RECT wide = TextBounds();
    EXPECT_LT(wide.left, 3); // cut at both edges, and one line
    EXPECT_GT(wide.right, 197);
    EXPECT_LT(narrow.right - narrow.left, 10);
    EXPECT_LT(wide.bottom - wide.top, 20);

    Pump(); // the timer went on meanwhile, but the time runs anew
    EXPECT_TRUE(IsUpAfter(900));
    EXPECT_FALSE(IsUpAfter(100));
    KXHost::AdvanceClock(5000);
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)); // there was no second timer
}

TEST_F(Tip, HandsTheFocusBack)
{
    CWnd own;
    own.CreateEx(0, AfxRegisterWndClass(0), "", WS_POPUP | WS_VISIBLE, CRect(0, 0, 1, 1), nullptr, 0);
    ASSERT_EQ(CWnd::GetFocus(), &own);
    tip.ShowTipWnd("text", 1000);
    EXPECT_EQ(CWnd::GetFocus(), &own); // it didn't take it
    tip.PostMessage(WM_LBUTTONDOWN);
    Pump();
    EXPECT_EQ(CWnd::GetFocus(), &own);
    own.DestroyWindow();
    tip.SetFocus(); // from nobody: there is no one to give it to
    EXPECT_EQ(CWnd::GetFocus(), &tip);
}

TEST_F(Tip, LeavesAlienTimersAndEndsItsOwn)
{
    tip.ShowTipWnd("text", 0);
    tip.SendMessage(WM_TIMER, 2);
    EXPECT_TRUE(tip.IsWindowVisible());
    tip.DestroyWindow();
    KXHost::AdvanceClock(1000);
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    tip.ShowTipWnd("text", 0); // without a window nothing happens
    ASSERT_TRUE(tip.CreateTipWnd());
    tip.ShowTipWnd("text", 0); // with a new one it runs as before
    EXPECT_FALSE(IsUpAfter(100));
}

TEST_F(Tip, PaintsTheTextWithoutFillingAndRestoresTheSurface)
{
    const test::Paper paper(200, 100, 'W');
    const HGDIOBJ hFont = GetStockObject(SYSTEM_FONT);
    SetTextColor(paper, test::ColorOf('R'));
    EXPECT_EQ(tip.OnEraseBkgnd(CDC::FromHandle(paper)), 1);
    EXPECT_EQ(GetPixel(paper, 0, 0), kYellow);
    EXPECT_EQ(GetTextColor(paper), test::ColorOf('R'));
    EXPECT_EQ(SelectObject(paper, hFont), hFont);
}

// Shows another text when it is asked to.
class CAskedTip : public CKXTipWnd
{
public:
    static constexpr UINT kAsk = WM_USER + 1;
    std::binary_semaphore asked{0};

protected:
    LRESULT OnAsk(WPARAM, LPARAM)
    {
        asked.release();
        ShowTipWnd("second", 5000);
        return 1;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CAskedTip, CKXTipWnd)
ON_MESSAGE(kAsk, OnAsk)
END_MESSAGE_MAP()

// A message comes while the tip fades out, and shows it anew.
TEST(TipFade, RisesAndFallsEvenlyAndIsShownAnewWhileItFalls)
{
    const test::VirtualClock clock;
    CAskedTip tip;
    std::binary_semaphore made{0};
    std::atomic<bool> over{false};
    std::thread thread([&] {
        tip.CreateTipWnd();
        CWnd cover; // above all but the tip
        const auto hBlack = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
        const CRect rc(kLeft, kTop, kLeft + 1, kTop + 1);
        cover.CreateEx(0, AfxRegisterWndClass(0, nullptr, hBlack), "", WS_POPUP | WS_VISIBLE, rc, nullptr, 0);
        cover.SetWindowPos(HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
        Pump();
        made.release();
        tip.ShowTipWnd("first", 100);
        MSG msg;
        while (tip.IsWindowVisible() && GetMessageA(&msg, nullptr, 0, 0))
            DispatchMessageA(&msg);
        tip.DestroyWindow();
        over = true;
    });
    made.acquire();
    const auto advance = [&](DWORD dwMilliseconds) {
        KXHost::AdvanceClock(dwMilliseconds);
        test::Await([&] { return KXHost::ClockWaiters() > 0 || over; });
        return int{GetRValue(SeenAt(kLeft, kTop))};
    };
    EXPECT_EQ(advance(0), 0); // of yellow; the desktop has none
    EXPECT_EQ(advance(1500), 127);
    EXPECT_EQ(advance(600), 178);
    EXPECT_EQ(advance(900), 255);
    EXPECT_EQ(advance(100), 255);
    EXPECT_EQ(advance(600), 204); // it falls
    std::thread sender([hTip = tip.m_hWnd] { SendMessageA(hTip, CAskedTip::kAsk, 0, 0); });
    tip.asked.acquire();
    EXPECT_EQ(advance(0), 0);
    EXPECT_EQ(advance(1500), 127); // it rises
    EXPECT_EQ(advance(1500), 255);
    sender.join();
    EXPECT_EQ(advance(4900), 255);
    EXPECT_EQ(advance(100), 255);
    EXPECT_EQ(advance(600), 204); // its time is over
    EXPECT_EQ(advance(900), 128);
    EXPECT_EQ(advance(1500), GetRValue(DESKTOP_COLOR));
    thread.join();
}

} // namespace
