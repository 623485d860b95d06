#include "include/platform/Wnd.h"
#include "include/platform/Dc.h"
#include "tests/support/Desktop.h"
#include "tests/support/Test.h"

namespace {

constexpr UINT kOwn = WM_USER + 1;

// Notes what its handlers are called for.
class CBase : public CWnd
{
    DECLARE_DYNAMIC(CBase)

public:
    std::vector<std::string> calls;
    int failAt = 0; // the size that OnSize throws at; below 0 OnCreate does

protected:
    int OnCreate(CREATESTRUCTA* pCreate)
    {
        calls.push_back(std::string("create ") + pCreate->lpszName);
        if (failAt < 0) throw std::runtime_error("create");
        return CWnd::OnCreate(pCreate);
    }
    void OnSize(UINT, int cx, int cy)
    {
        calls.push_back("size " + std::to_string(cx) + " " + std::to_string(cy));
        if (cx == failAt) throw std::runtime_error("size");
    }
    void OnDestroy()
    {
        calls.emplace_back("destroy");
        CWnd::OnDestroy();
    }
    LRESULT OnOwn(WPARAM wParam, LPARAM lParam) { return static_cast<LRESULT>(wParam) * 10 + lParam; }
    void PostNcDestroy() override { calls.emplace_back(m_hWnd ? "window" : "gone"); }
    DECLARE_MESSAGE_MAP()
};

class CDerived : public CBase
{
protected:
    void OnMouseMove(UINT nFlags, CPoint point)
    {
        calls.push_back("move " + std::to_string(nFlags) + " " + std::to_string(point.x) + " " +
                        std::to_string(point.y));
    }
    // In place of the base's, which is called for the rest.
    void OnSize(UINT nType, int cx, int cy)
    {
        calls.emplace_back("derived");
        CBase::OnSize(nType, cx, cy);
    }
    DECLARE_MESSAGE_MAP()
};

IMPLEMENT_DYNAMIC(CBase, CWnd)

BEGIN_MESSAGE_MAP(CBase, CWnd)
ON_WM_CREATE()
ON_WM_SIZE()
ON_WM_DESTROY()
ON_MESSAGE(kOwn, OnOwn)
END_MESSAGE_MAP()

BEGIN_MESSAGE_MAP(CDerived, CBase)
ON_WM_MOUSEMOVE()
ON_WM_SIZE()
END_MESSAGE_MAP()

int Create(CWnd& wnd, DWORD dwStyle = WS_POPUP)
{
    return wnd.CreateEx(0, AfxRegisterWndClass(CS_HREDRAW), "name", dwStyle, CRect(1, 2, 4, 6),
                        CWnd::GetDesktopWindow(), 0);
}

TEST(Wnd, HandlersAreFoundFromTheDerivedClassUp)
{
    CDerived wnd;
    ASSERT_TRUE(Create(wnd));
    EXPECT_FALSE(Create(wnd)); // it has one
    EXPECT_EQ(CWnd::FromHandle(wnd.m_hWnd), &wnd);
    EXPECT_EQ(wnd.SendMessage(kOwn, 4, 2), 42);
    wnd.SendMessage(WM_MOUSEMOVE, MK_SHIFT, 0xFFFF0003);
    wnd.SetWindowPos(nullptr, 1, 2, 8, 4, SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(wnd.DestroyWindow());
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    EXPECT_THAT(wnd.calls,
                testing::ElementsAre("create name", "move 4 3 -1", "derived", "size 8 4", "destroy", "gone"));
    EXPECT_TRUE(wnd.IsKindOf(CBase::GetThisClass()));
    EXPECT_TRUE(wnd.IsKindOf(CWnd::GetThisClass()));
    ASSERT_TRUE(Create(wnd)); // and again
}

TEST(Wnd, EndsItsWindowWithItself)
{
    HWND hWnd = nullptr;
    {
        CBase wnd;
        Create(wnd);
        hWnd = wnd.m_hWnd;
        CWnd wrapper;
        EXPECT_TRUE(wrapper.Attach(hWnd));
        EXPECT_FALSE(wrapper.Attach(hWnd));
    }
    EXPECT_FALSE(IsWindow(hWnd));

    auto wnd = std::make_unique<CBase>();
    Create(*wnd);
    hWnd = wnd->Detach(); // it no longer hears anything
    EXPECT_EQ(SendMessageA(hWnd, kOwn, 4, 2), 0);
    EXPECT_NE(CWnd::FromHandle(hWnd), wnd.get());
    wnd.reset();
    EXPECT_TRUE(DestroyWindow(hWnd));

    CWnd none;
    CRect rect(1, 1, 2, 2);
    none.GetClientRect(&rect);
    EXPECT_EQ(rect, CRect());
    EXPECT_FALSE(none.DestroyWindow());
    EXPECT_FALSE(none.ShowWindow(SW_SHOW));
    EXPECT_FALSE(none.SetTimer(1, 10, nullptr));
    EXPECT_FALSE(none.CreateEx(0, "NoSuchClass", "", 0, rect, nullptr, 0));
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
}

// Wrappers of windows that ended are swept now and then.
TEST(Wnd, TheDesktopsWrapperOutlivesWindows)
{
    CWnd* desktop = CWnd::GetDesktopWindow();
    EXPECT_TRUE(IsWindow(GetDesktopWindow()));
    for (int i = 0; i < 70; ++i) {
        CBase wnd;
        Create(wnd);
        const HWND hWnd = wnd.Detach();
        EXPECT_EQ(CWnd::FromHandle(hWnd)->m_hWnd, hWnd);
        EXPECT_TRUE(DestroyWindow(hWnd));
    }
    ASSERT_EQ(CWnd::GetDesktopWindow(), desktop);
    EXPECT_EQ(desktop->m_hWnd, GetDesktopWindow());
}

std::vector<std::string> g_heardByClass;
CBase* g_within = nullptr; // made while the window of the class below is

// The procedure of a client's own class.
LRESULT OwnProcedure(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (nMsg == WM_CREATE) {
        g_heardByClass.emplace_back("create");
        if (g_within) Create(*g_within);
        const char* pszClass = AfxRegisterWndClass(CS_HREDRAW);
        const HWND plain = CreateWindowExA(0, pszClass, "plain", WS_POPUP, 0, 0, 1, 1);
        EXPECT_NE(CWnd::FromHandle(plain)->m_hWnd, hWnd);
        EXPECT_EQ(SendMessageA(plain, kOwn, 4, 2), 0); // nobody's
        EXPECT_TRUE(DestroyWindow(plain));
    }
    if (nMsg == WM_DESTROY) g_heardByClass.emplace_back("destroy");
    if (nMsg == kOwn + 1) return 7;
    return DefWindowProcA(hWnd, nMsg, wParam, lParam);
}

TEST(Wnd, HearsTheWindowsOfAClientsOwnClassFirst)
{
    const WNDCLASSA cls{OwnProcedure, "KXWndTest"};
    ASSERT_TRUE(RegisterClassA(&cls));
    HWND detached = nullptr;
    {
        CBase wnd, within;
        g_within = &within;
        ASSERT_TRUE(wnd.CreateEx(0, "KXWndTest", "name", WS_POPUP, CRect(1, 2, 4, 6), nullptr, 0));
        g_within = nullptr;
        ASSERT_NE(wnd.m_hWnd, nullptr);
        EXPECT_EQ(CWnd::FromHandle(wnd.m_hWnd), &wnd);
        EXPECT_NE(wnd.m_hWnd, within.m_hWnd);
        EXPECT_EQ(wnd.SendMessage(kOwn, 4, 2), 42);
        EXPECT_EQ(within.SendMessage(kOwn, 4, 2), 42);
        EXPECT_EQ(wnd.SendMessage(kOwn + 1), 7); // what it has no handler for
        EXPECT_EQ(within.SendMessage(kOwn + 1), 0);
        EXPECT_TRUE(wnd.DestroyWindow());
        EXPECT_THAT(wnd.calls, testing::ElementsAre("create name", "destroy", "gone"));
        EXPECT_THAT(g_heardByClass, testing::ElementsAre("create", "destroy"));

        ASSERT_TRUE(wnd.CreateEx(0, "KXWndTest", "name", WS_POPUP, CRect(1, 2, 4, 6), nullptr, 0));
        detached = wnd.Detach();
    }
    EXPECT_EQ(SendMessageA(detached, kOwn, 4, 2), 0);
    EXPECT_EQ(SendMessageA(detached, kOwn + 1, 0, 0), 7); // its class's alone now
    EXPECT_TRUE(DestroyWindow(detached));
    EXPECT_TRUE(UnregisterClassA("KXWndTest"));
}

TEST(Wnd, AHandlerThatThrowsLeavesOrder)
{
    CBase wnd;
    wnd.failAt = -1;
    EXPECT_THROW(Create(wnd), std::runtime_error);
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    wnd.failAt = 7;
    EXPECT_TRUE(Create(wnd));
    EXPECT_THROW(wnd.SendMessage(WM_SIZE, 0, 7), std::runtime_error);
    EXPECT_EQ(wnd.SendMessage(kOwn, 1, 1), 11);
}

TEST(Wnd, PaintsThroughContextsThatEndWithTheirScope)
{
    const test::NoLeak noLeak;
    CBase wnd;
    Create(wnd);
    wnd.ShowWindow(SW_SHOWNA);
    const auto seen = [] { return test::SeenRow(0, 2, 5); };
    {
        CPaintDC dc(&wnd);
        EXPECT_EQ(dc.m_ps.rcPaint, CRect(0, 0, 3, 4));
        dc.FillSolidRect(0, 0, 9, 9, test::ColorOf('R'));
    }
    EXPECT_EQ(seen(), "?RRR?");
    CPaintDC(&wnd).FillSolidRect(0, 0, 9, 9, test::ColorOf('G')); // nothing is to be painted any more
    EXPECT_EQ(seen(), "?RRR?");
    CClientDC(&wnd).SetPixel(1, 0, test::ColorOf('B'));
    EXPECT_EQ(seen(), "?RBR?");
    CPaintDC none(nullptr);
    EXPECT_EQ(none.m_hDC, nullptr);
}

TEST(Wnd, RegistersAClassOnceForEachKind)
{
    const test::Scoped<HBRUSH> brush(CreateSolidBrush(0));
    EXPECT_EQ(AfxRegisterWndClass(3), AfxRegisterWndClass(3));
    EXPECT_STRNE(AfxRegisterWndClass(3), AfxRegisterWndClass(1));
    EXPECT_STRNE(AfxRegisterWndClass(3), AfxRegisterWndClass(3, nullptr, brush));
}

// A wrapper lives at least as long as its handle, whatever comes and goes meanwhile.
template <class Wrapper, class Make>
void ExpectKept(Make make)
{
    const auto handle = make();
    auto* wrapper = Wrapper::FromHandle(handle);
    for (int n = 0; n < 200; ++n) {
        const test::Scoped other(make());
        EXPECT_EQ(Wrapper::FromHandle(other)->GetSafeHandle(), other);
    }
    EXPECT_EQ(Wrapper::FromHandle(handle), wrapper);
    EXPECT_EQ(wrapper->GetSafeHandle(), handle);
    DeleteObject(handle);
}

TEST(Wrapper, OfALivingHandleStays)
{
    const test::NoLeak noLeak;
    const auto region = [] { return CreateRectRgn(0, 0, 1, 1); };
    ExpectKept<CRgn>(region);
    ExpectKept<CGdiObject>(region);
    ExpectKept<CPen>([] { return CreatePen(PS_SOLID, 1, 0); });
    EXPECT_EQ(CRgn::FromHandle(nullptr), nullptr);
}

TEST(Wrapper, ARegionIsCopiedIntoTheClipAndFillsGoToTheEndOfTheRange)
{
    const test::Paper paper(6, 4);
    CDC& dc = *CDC::FromHandle(paper);
    CRgn region;
    EXPECT_EQ(dc.SelectObject(&region), RGN_ERROR);
    region.CreateRectRgn(1, 1, 3, 9);
    EXPECT_EQ(dc.SelectObject(&region), SIMPLEREGION);
    EXPECT_EQ(dc.SelectObject(static_cast<CGdiObject*>(&region)), nullptr); // displaces no object
    EXPECT_EQ(dc.SelectObject(static_cast<CRgn*>(nullptr)), RGN_ERROR);
    RECT box;
    EXPECT_EQ(dc.GetClipBox(&box), SIMPLEREGION);
    EXPECT_EQ(box, CRect(1, 1, 3, 4));
    dc.FillSolidRect(2, -1, INT_MAX, INT_MAX, test::ColorOf('R'));
    dc.FillSolidRect(INT_MIN, INT_MIN, INT_MIN, INT_MIN, test::ColorOf('G'));
    EXPECT_EQ(paper.Read()[1], " .R   "); // nothing is seen beside the clip
}

} // namespace
