#include "KXTipWnd.h"

#include "KXLanResManager.h"
#include "include/platform/Clock.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Desktop.h"
#include "tests/support/Test.h"

using namespace test;

namespace {

constexpr COLORREF kYellow = RGB(255, 255, 0);
constexpr int kLeft = (DESKTOP_WIDTH - 200) / 2, kTop = (DESKTOP_HEIGHT - 100) / 2;
constexpr char kFace[] = "DejaVu Sans Mono"; // that nobody would take by chance

// The pixels of a box of the tip's size, row by row.
std::vector<COLORREF> BoxAt(HDC hDC, int left, int top)
{
    std::vector<COLORREF> pixels;
    for (int n = 0; n < 200 * 100; ++n)
        pixels.push_back(GetPixel(hDC, left + n % 200, top + n / 200));
    return pixels;
}

// Whether the box shows this text, and in a window of which width: erasing draws it, and so does painting.
bool Shows(const char* pszText, int nTimes = 2, int cx = 200)
{
    const Paper paper(cx, 100);
    CDC& dc = *CDC::FromHandle(paper);
    CRect rc(0, 0, cx, 100);
    dc.FillSolidRect(rc, kYellow);
    CFont font;
    font.CreatePointFont(100, kFace, nullptr);
    CFont* pOld = dc.SelectObject(&font);
    dc.SetTextColor(RGB(0, 0, 255));
    dc.SetBkMode(TRANSPARENT);
    for (int n = 0; n < nTimes; ++n)
        dc.DrawText(pszText, rc, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    dc.SelectObject(pOld);
    return BoxAt(Desktop(), kLeft, kTop) == BoxAt(dc, 0, 0);
}

// A tip on a clock that its fades move themselves.
struct Tip : testing::Test
{
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

    VirtualClock clock{0, KXHost::VirtualSleep::Advances};
    CKXTipWnd tip;
};

TEST_F(Tip, IsAYellowBoxInTheMiddleWithALineInBlue)
{
    const NoLeak noLeak;
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
    EXPECT_TRUE(Shows("Well done")) << "in ten points of the language's face";
    EXPECT_EQ(SeenAt(kLeft - 1, kTop), DESKTOP_COLOR);
    EXPECT_EQ(SeenAt(kLeft + 200, kTop + 99), DESKTOP_COLOR);
    box.SetWindowPos(nullptr, 0, 0, 300, 100, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    EXPECT_TRUE(Shows("Well done", 2, 300)) << "all is drawn anew";
}

TEST_F(Tip, APaintAloneDrawsTheTextWithoutTheGround)
{
    tip.ShowTipWnd("Well done", 500);
    const HDC hDC = GetDC(tip.m_hWnd);
    CDC::FromHandle(hDC)->FillSolidRect(0, 0, 200, 100, kYellow);
    ReleaseDC(tip.m_hWnd, hDC);
    EXPECT_TRUE(Shows(""));
    InvalidateRect(tip.m_hWnd, nullptr, FALSE);
    Pump();
    EXPECT_TRUE(Shows("Well done", 1));
}

TEST_F(Tip, StaysAboveOtherWindowsAndDisturbsNone)
{
    for (int n = 0; n < 2; ++n) { // anew, and while it is up
        tip.ShowTipWnd("text", 1000);
        EXPECT_EQ(CWnd::GetFocus(), nullptr);
    }
    CWnd own;
    const CRect rc(kLeft - 1, kTop, kLeft + 200, kTop + 100);
    const auto hWhite = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    own.CreateEx(0, AfxRegisterWndClass(0, nullptr, hWhite), "", WS_POPUP | WS_VISIBLE, rc, nullptr, 0);
    Pump();
    EXPECT_EQ(SeenAt(kLeft - 1, kTop), RGB(255, 255, 255));
    EXPECT_EQ(SeenAt(kLeft, kTop), kYellow);
    ASSERT_EQ(CWnd::GetFocus(), &own);
    tip.PostMessage(WM_LBUTTONDOWN);
    Pump();
    EXPECT_EQ(CWnd::GetFocus(), &own) << "it hands the focus back";
    own.DestroyWindow();
    tip.SetFocus(); // from nobody: there is no one to give it to
    EXPECT_EQ(CWnd::GetFocus(), &tip);
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
    EXPECT_TRUE(Shows("i"));
    KXHost::AdvanceClock(900);
    const DWORD begin = GetTickCount();
    const char* pszWide = "a text of more words than the box of the tip can hold on one line of it";
    tip.ShowTipWnd(pszWide, 1000);
    EXPECT_EQ(GetTickCount() - begin, 3000u);
    EXPECT_TRUE(Shows(pszWide)) << "cut at both edges, and one line";

    Pump(); // the timer went on meanwhile, but the time runs anew
    EXPECT_TRUE(IsUpAfter(900));
    EXPECT_FALSE(IsUpAfter(100));
    KXHost::AdvanceClock(5000);
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)); // there was no second timer
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

TEST_F(Tip, ErasesWithYellowAndRestoresTheSurface)
{
    const Paper paper(200, 100, 'W');
    const HGDIOBJ hFont = GetStockObject(SYSTEM_FONT);
    SetTextColor(paper, ColorOf('R'));
    EXPECT_EQ(tip.OnEraseBkgnd(CDC::FromHandle(paper)), 1);
    EXPECT_EQ(GetPixel(paper, 0, 0), kYellow);
    EXPECT_EQ(GetTextColor(paper), ColorOf('R'));
    EXPECT_EQ(SelectObject(paper, hFont), hFont);
}

// Is asked for another text while it fades out.
class CAskedTip : public CKXTipWnd
{
public:
    std::optional<Sender> sender;

protected:
    void OnTimer(unsigned int nIDEvent)
    {
        if (!sender) {
            sender.emplace(m_hWnd, kAsk);
            InThread([&] { sender->AwaitWaiting(); }); // this one would serve it in the wait
        }
        CKXTipWnd::OnTimer(nIDEvent);
    }
    LRESULT OnAsk(WPARAM, LPARAM)
    {
        ShowTipWnd("second", 5000);
        return 1;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CAskedTip, CKXTipWnd)
ON_WM_TIMER()
ON_MESSAGE(kAsk, OnAsk)
END_MESSAGE_MAP()

TEST_F(Tip, IsShownAnewWhileItFalls)
{
    CAskedTip asked;
    ASSERT_TRUE(asked.CreateTipWnd());
    asked.ShowTipWnd("first", 100);
    KXHost::AdvanceClock(100);
    const DWORD begin = GetTickCount();
    Pump();
    EXPECT_EQ(GetTickCount() - begin, 3016u); // a step of the fall, and the rise
    EXPECT_EQ(asked.sender->Join(), 1);
    EXPECT_TRUE(Shows("second"));
    KXHost::AdvanceClock(5000);
    Pump();
    EXPECT_FALSE(asked.IsWindowVisible());
}

} // namespace
