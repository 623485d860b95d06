#include "tests/platform/window/Support.h"
#include "tests/support/Child.h"

#include "include/platform/Host.h"
#include "include/platform/MessageBox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

using test::Handler;
using test::Make;
using testing::ElementsAre;

namespace {

class Desktop
{
public:
    Desktop() : m_handle(OpenDesktopA("Default", 0, FALSE, DESKTOP_ENUMERATE)) {}
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    ~Desktop() { EXPECT_TRUE(CloseDesktop(m_handle)); }
    operator HDESK() const { return m_handle; }

private:
    HDESK m_handle;
};

// The windows that a walk visits, and what it gives. The action is called with each, and tells whether to go
// on.
std::vector<HWND> Walk(HDESK hDesk, const std::function<bool(HWND)>& action, int nExpected)
{
    struct State
    {
        std::vector<HWND> visited;
        const std::function<bool(HWND)>& action;
    } state{{}, action};
    const auto visit = [](HWND hWnd, long lParam) -> int {
        auto& s = *reinterpret_cast<State*>(lParam);
        s.visited.push_back(hWnd);
        return s.action(hWnd);
    };
    EXPECT_EQ(EnumDesktopWindows(hDesk, visit, reinterpret_cast<long>(&state)), nExpected);
    return state.visited;
}

bool GoOn(HWND)
{
    return true;
}

class ForeignWindow
{
public:
    ForeignWindow(DWORD dwProcessId, bool bVisible)
        : m_handle(KXHost::AddForeignWindow(dwProcessId, bVisible))
    {
    }
    ForeignWindow(const ForeignWindow&) = delete;
    ForeignWindow& operator=(const ForeignWindow&) = delete;
    ~ForeignWindow() { KXHost::RemoveForeignWindow(m_handle); }
    operator HWND() const { return m_handle; }

private:
    HWND m_handle;
};

TEST(Desktop, WalksWindowsOfEveryProcessOldestFirst)
{
    const HWND first = Make();
    const ForeignWindow foreignWindow(77, true);
    const HWND foreign = foreignWindow;
    const test::WindowThread thread;
    const HWND last = Make(nullptr, WS_VISIBLE);
    {
        const Desktop desktop;
        EXPECT_THAT(Walk(desktop, GoOn, 1), ElementsAre(first, foreign, thread.Window(), last));
        EXPECT_THAT(Walk(nullptr, GoOn, 1), ElementsAre(first, foreign, thread.Window(), last));
        EXPECT_THAT(Walk(
                        desktop, [&](HWND h) { return h != foreign; }, 0),
                    ElementsAre(first, foreign));
        EXPECT_FALSE(EnumDesktopWindows(desktop, nullptr, 0));
    }
    DestroyWindow(first);
    DestroyWindow(last);
}

TEST(Desktop, AWalkBearsWhatItsCallbackDoes)
{
    const Desktop desktop;
    std::vector<HWND> all;
    const auto thread = std::make_unique<test::WindowThread>();
    for (int i = 0; i < 4; ++i)
        all.push_back(Make());
    HWND made = nullptr;
    const auto visited = Walk(
        desktop,
        [&](HWND hWnd) {
            if (hWnd == all[0]) {
                made = Make();
                DestroyWindow(all[0]);
                DestroyWindow(all[2]);
                EXPECT_THAT(Walk(desktop, GoOn, 1), ElementsAre(thread->Window(), all[1], all[3], made));
            }
            EXPECT_EQ(SendMessageA(hWnd, WM_NCCREATE, 0, 0), hWnd == all[0] ? 0 : 1);
            if (hWnd == thread->Window()) thread->Join(); // ends its window
            return true;
        },
        1);
    EXPECT_THAT(visited, ElementsAre(testing::_, all[0], all[1], all[3]));
    for (const HWND hWnd : {made, all[1], all[3]})
        EXPECT_TRUE(DestroyWindow(hWnd));
    EXPECT_TRUE(Walk(desktop, GoOn, 1).empty());
}

TEST(Desktop, OnlyDefaultOpensAndClosesOnce)
{
    EXPECT_EQ(OpenDesktopA("Winlogon", 0, FALSE, DESKTOP_ENUMERATE), nullptr);
    EXPECT_EQ(OpenDesktopA(nullptr, 0, FALSE, DESKTOP_ENUMERATE), nullptr);
    const HDESK one = OpenDesktopA("DEFAULT", 0, FALSE, DESKTOP_ENUMERATE);
    const HDESK two = OpenDesktopA("Default", 0, FALSE, DESKTOP_ENUMERATE);
    EXPECT_TRUE(one && two && one != two);
    EXPECT_TRUE(CloseDesktop(one));
    for (const HDESK stale : {one, HDESK{}, reinterpret_cast<HDESK>(std::intptr_t{-1})}) {
        EXPECT_FALSE(CloseDesktop(stale));
        if (stale) Walk(stale, GoOn, 0);
    }
    Walk(two, GoOn, 1);
    EXPECT_TRUE(CloseDesktop(two));
}

TEST(Desktop, ForeignWindowsRecordWhatTheyReceive)
{
    const ForeignWindow hidden(78, false);
    HWND hGone = nullptr;
    {
        const ForeignWindow foreign(77, true);
        hGone = foreign;
        DWORD dwProcessId = 0;
        EXPECT_EQ(GetWindowThreadProcessId(foreign, &dwProcessId), 77u);
        EXPECT_EQ(dwProcessId, 77u);
        EXPECT_TRUE(IsWindow(foreign) && IsWindowVisible(foreign));
        EXPECT_TRUE(IsWindow(hidden) && !IsWindowVisible(hidden));

        EXPECT_EQ(SendMessageA(foreign, WM_NCCREATE, 2, -3), 0);
        EXPECT_EQ(PostMessage(foreign, WM_USER, 4, 5), 1);
        const auto got = KXHost::TakeForeignMessages(foreign);
        ASSERT_EQ(got.size(), 2u);
        EXPECT_TRUE(got[0].nMsg == WM_NCCREATE && got[0].wParam == 2 && got[0].lParam == -3);
        EXPECT_TRUE(got[1].nMsg == WM_USER && got[1].wParam == 4 && got[1].lParam == 5);
        for (UINT n = 0; n < 1'002; ++n)
            PostMessage(foreign, n, 0, 0);
        const auto newest = KXHost::TakeForeignMessages(foreign);
        ASSERT_EQ(newest.size(), 1'000u);
        EXPECT_TRUE(newest.front().nMsg == 2 && newest.back().nMsg == 1'001);
        EXPECT_TRUE(KXHost::TakeForeignMessages(foreign).empty());

        // It is no window of this process.
        MSG msg{foreign, WM_USER, 0, 0, 0};
        EXPECT_FALSE(DestroyWindow(foreign) || ShowWindow(foreign, SW_HIDE) || SetWindowTextA(foreign, "x"));
        EXPECT_FALSE(GetWindowProcA(foreign));
        EXPECT_EQ(DispatchMessageA(&msg), 0);
        EXPECT_EQ(GetMessageA(&msg, foreign, 0, 0), -1);
    }
    EXPECT_FALSE(IsWindow(hGone) || PostMessage(hGone, 1, 0, 0));
    EXPECT_TRUE(KXHost::TakeForeignMessages(hGone).empty());
    KXHost::RemoveForeignWindow(hGone);
    EXPECT_FALSE(KXHost::AddForeignWindow(0, true));
}

TEST(Desktop, MessageBoxesAreRecorded)
{
    KXHost::TakeMessageBoxes();
    EXPECT_EQ(AfxMessageBox("text", 0x30, 9), IDOK);
    EXPECT_EQ(AfxMessageBox(nullptr), IDOK);
    const auto boxes = KXHost::TakeMessageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_TRUE(boxes[0].strText == "text" && boxes[0].nType == 0x30 && boxes[0].nHelpId == 9);
    EXPECT_TRUE(boxes[1].strText.IsEmpty() && boxes[1].nType == MB_OK);

    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int n = 0; n < 300; ++n)
                AfxMessageBox("many");
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(KXHost::TakeMessageBoxes().size(), 1'000u);
}

// While the process ends, the main thread's windows are gone before its static objects.
TEST(Desktop, WorksFromStaticDestructors)
{
    test::Child child("WindowExitChild", {}, {}, true);
    EXPECT_EQ(child.Wait(), 0) << child.ErrorText();
}

} // namespace
