#include "KXTransparentWnd.h"

#include "tests/support/CopyList.h"
#include "tests/support/Desktop.h"

namespace {

using test::Pump;
using test::SeenRow;

// Paints a rectangle of the desktop itself in stripes of two colours, and takes them away again.
class Stripes : test::Fixed
{
public:
    explicit Stripes(const RECT& rect) : m_rect(rect) { Paint(test::ColorOf('G'), test::ColorOf('M')); }
    ~Stripes() { Paint(DESKTOP_COLOR, DESKTOP_COLOR); }

    void Paint(COLORREF clrEven, COLORREF clrOdd) const
    {
        const test::Desktop desktop;
        for (int x = m_rect.left; x < m_rect.right; ++x)
            CDC::FromHandle(desktop)->FillSolidRect(x, m_rect.top, 1, m_rect.bottom - m_rect.top,
                                                    x % 2 ? clrOdd : clrEven);
    }

private:
    RECT m_rect;
};

void Create(CWnd& wnd, const CRect& rect)
{
    ASSERT_TRUE(
        wnd.CreateEx(0, AfxRegisterWndClass(CS_HREDRAW | CS_VREDRAW), "", WS_POPUP, rect, nullptr, 0));
}

// Its white-on-screen notice is "开始听写！" in code page 936, in the default font.
TEST(Transparent, ShowsTheScreenBelowItselfOutlinedWithTheNotice)
{
    constexpr char szNotice[] = "\xBF\xAA\xCA\xBC\xCC\xFD\xD0\xB4\xA3\xA1";
    const test::NoLeak noLeak;
    const Stripes stripes({18, 28, 150, 92});
    const test::Paper paper(120, 60);
    CDC& dc = *CDC::FromHandle(paper);
    const test::Desktop desktop;
    BitBlt(paper, 0, 0, 120, 60, desktop, 20, 30, SRCCOPY);
    CRect rc(0, 0, 120, 60);
    CGdiObject* pOld = dc.SelectStockObject(NULL_BRUSH);
    dc.Rectangle(rc);
    dc.SelectObject(pOld);
    dc.DrawText(szNotice, rc, DT_CENTER | DT_VCENTER);
    CKXTransparentWnd wnd;
    Create(wnd, CRect(20, 30, 140, 90));
    wnd.ShowWindow(SW_SHOWNA);
    EXPECT_EQ(SeenRow(18, 30, 6), "GMGMGM"); // nothing of its own is seen before it has painted
    test::CopyList copies;
    Pump();
    EXPECT_THAT(copies.Take(), // its own rectangle of the desktop, and its copy
                testing::ElementsAre("0,0 120x60 from 20,30", "0,0 120x60 from 0,0"));
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 120; ++x)
            ASSERT_EQ(GetPixel(desktop, 20 + x, 30 + y), dc.GetPixel(x, y)) << x << "," << y;
    EXPECT_EQ(SeenRow(18, 30, 6), "GM....");
    EXPECT_EQ(SeenRow(136, 89, 6), "....GM");
}

TEST(Transparent, TakesTheCopyAnewAtEachPaintAndTheSizeAtEachShow)
{
    const Stripes stripes({18, 28, 150, 92});
    CKXTransparentWnd wnd;
    Create(wnd, CRect(20, 30, 40, 70));
    wnd.ShowWindow(SW_SHOWNA);
    Pump();
    EXPECT_EQ(SeenRow(19, 68, 4), "M.MG");
    stripes.Paint(test::ColorOf('R'), test::ColorOf('B'));
    wnd.Invalidate();
    Pump();
    EXPECT_EQ(SeenRow(19, 68, 4), "B.MG"); // what it sees is itself

    wnd.SetWindowPos(nullptr, 20, 30, 30, 50, SWP_NOZORDER | SWP_NOACTIVATE); // the copy keeps the old size
    Pump();
    EXPECT_EQ(SeenRow(38, 68, 4), "G..."); // so beyond it there is nothing
    EXPECT_EQ(SeenRow(19, 79, 4), "B...");
    const int handles = KXHost::LiveHandles();
    wnd.ShowWindow(SW_HIDE);
    EXPECT_EQ(KXHost::LiveHandles(), handles); // the copy stays
    EXPECT_EQ(SeenRow(19, 68, 4), "BRBR");
    wnd.ShowWindow(SW_SHOWNA);
    Pump();
    EXPECT_EQ(KXHost::LiveHandles(), handles);
    EXPECT_EQ(SeenRow(19, 78, 4), "B.BR");
    EXPECT_EQ(SeenRow(46, 78, 5), "RBR.R");
}

TEST(Transparent, PaintsNothingBeforeItWasShown)
{
    CKXTransparentWnd wnd;
    Create(wnd, CRect(20, 60, 40, 70));
    wnd.SendMessage(WM_PAINT);
    EXPECT_EQ(SeenRow(20, 60, 2), "??");
    wnd.DestroyWindow();
    wnd.ShowWindow(SW_SHOW);
}

} // namespace
