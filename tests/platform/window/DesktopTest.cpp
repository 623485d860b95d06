#include "include/platform/MessageBox.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Test.h"

using namespace test;
using testing::ElementsAre, testing::FieldsAre;

namespace {

HDESK Open(const char* pszName = "Default")
{
    return OpenDesktopA(pszName, 0, FALSE, DESKTOP_ENUMERATE);
}

// The windows that a walk visits, which gives the expected result. The action tells whether to go on.
std::vector<HWND> Visited(HDESK hDesk, int nExpected, const std::function<bool(HWND)>& action)
{
    std::vector<HWND> visited;
    const auto visit = [&](HWND hWnd) -> int {
        visited.push_back(hWnd);
        return action(hWnd);
    };
    EXPECT_EQ(Walk(visit, hDesk), nExpected);
    return visited;
}

std::vector<HWND> WalkAll(HDESK hDesk = nullptr)
{
    return Visited(hDesk, 1, [](HWND) { return true; });
}

TEST(Desktop, WalksWindowsOfEveryProcessOldestFirst)
{
    const HWND first = Make();
    const HWND foreign = KXHost::AddForeignWindow(77, true);
    const WindowThread thread;
    const HWND last = Make(nullptr, WS_VISIBLE);
    const HDESK hDesk = Open();
    for (const HDESK h : {hDesk, HDESK{}})
        EXPECT_THAT(WalkAll(h), ElementsAre(first, foreign, thread.Window(), last));
    EXPECT_THAT(Visited(hDesk, 0, [&](HWND h) { return h != foreign; }), ElementsAre(first, foreign));
    EXPECT_FALSE(EnumDesktopWindows(hDesk, nullptr, 0));
    EXPECT_TRUE(CloseDesktop(hDesk));
    EXPECT_TRUE(DestroyWindow(first));
    EXPECT_TRUE(DestroyWindow(last));
    KXHost::RemoveForeignWindow(foreign);
}

TEST(Desktop, AWalkBearsWhatItsCallbackDoes)
{
    const auto thread = std::make_unique<WindowThread>();
    const std::vector<HWND> own{Make(), Make(), Make(), Make()};
    HWND made = nullptr;
    const auto visited = Visited(nullptr, 1, [&](HWND hWnd) {
        EXPECT_EQ(SendMessageA(hWnd, kPing, 0, 0), 1);
        if (hWnd == thread->Window()) thread->Join(); // ends its window
        if (hWnd != own[0]) return true;
        made = Make();
        EXPECT_TRUE(DestroyWindow(own[0]));
        EXPECT_TRUE(DestroyWindow(own[2]));
        EXPECT_THAT(WalkAll(), ElementsAre(own[1], own[3], made));
        return true;
    });
    EXPECT_THAT(visited, ElementsAre(thread->Window(), own[0], own[1], own[3]));
    for (const HWND hWnd : {made, own[1], own[3]})
        EXPECT_TRUE(DestroyWindow(hWnd));
    EXPECT_TRUE(WalkAll().empty());
}

TEST(Desktop, OnlyDefaultOpensAndClosesOnce)
{
    EXPECT_FALSE(Open("Winlogon"));
    EXPECT_FALSE(Open(nullptr));
    const HDESK one = Open("DEFAULT"), two = Open();
    EXPECT_NE(one, two);
    EXPECT_EQ(CloseDesktop(one), 1);
    for (const HDESK stale : {one, reinterpret_cast<HDESK>(std::intptr_t{-1})}) {
        EXPECT_FALSE(CloseDesktop(stale));
        Visited(stale, 0, {});
    }
    EXPECT_FALSE(CloseDesktop(nullptr));
    WalkAll(two);
    EXPECT_TRUE(CloseDesktop(two));
}

TEST(Desktop, ForeignWindowsRecordWhatTheyReceive)
{
    const HWND hidden = KXHost::AddForeignWindow(78, false), foreign = KXHost::AddForeignWindow(77, true);
    DWORD dwProcessId = 0;
    EXPECT_EQ(GetWindowThreadProcessId(foreign, &dwProcessId), 77u);
    EXPECT_EQ(dwProcessId, 77u);
    EXPECT_TRUE(IsWindow(hidden));
    EXPECT_FALSE(IsWindowVisible(hidden));
    EXPECT_TRUE(IsWindowVisible(GetDesktopWindow()));
    EXPECT_TRUE(IsWindowVisible(foreign));

    EXPECT_EQ(SendMessageA(foreign, kPing, 2, -3), 0);
    EXPECT_EQ(PostMessage(foreign, WM_USER, 4, 5), 1);
    EXPECT_THAT(KXHost::TakeForeignMessages(foreign),
                ElementsAre(FieldsAre(kPing, 2, -3), FieldsAre(WM_USER, 4, 5)));
    for (UINT n = 0; n < 1'002; ++n)
        PostMessage(foreign, n, 0, 0);
    const auto newest = KXHost::TakeForeignMessages(foreign);
    ASSERT_EQ(newest.size(), 1'000u);
    EXPECT_EQ(newest.front().nMsg, 2);
    EXPECT_EQ(newest.back().nMsg, 1'001);
    EXPECT_TRUE(KXHost::TakeForeignMessages(foreign).empty());

    // It is no window of this process.
    MSG msg{foreign, WM_USER, 0, 0, 0};
    EXPECT_FALSE(DestroyWindow(foreign));
    EXPECT_FALSE(ShowWindow(foreign, SW_HIDE));
    EXPECT_FALSE(SetWindowTextA(foreign, "x"));
    EXPECT_FALSE(DispatchMessageA(&msg));
    EXPECT_EQ(GetMessageA(&msg, foreign, 0, 0), -1);

    KXHost::RemoveForeignWindow(hidden);
    KXHost::RemoveForeignWindow(foreign);
    EXPECT_FALSE(IsWindow(foreign));
    EXPECT_FALSE(PostMessage(foreign, 1, 0, 0));
    EXPECT_FALSE(KXHost::AddForeignWindow(0, true));
    EXPECT_TRUE(KXHost::TakeForeignMessages(foreign).empty());
}

TEST(Desktop, MessageBoxesAreRecorded)
{
    KXHost::TakeMessageBoxes();
    EXPECT_EQ(AfxMessageBox("text", 0x30, 9), IDOK);
    EXPECT_EQ(AfxMessageBox(nullptr), IDOK);
    EXPECT_THAT(KXHost::TakeMessageBoxes(), ElementsAre(FieldsAre("text", 0x30, 9), FieldsAre("", MB_OK, 0)));
    for (UINT n = 0; n < 1'002; ++n)
        AfxMessageBox("many", n);
    const auto newest = KXHost::TakeMessageBoxes();
    ASSERT_EQ(newest.size(), 1'000u);
    EXPECT_EQ(newest.front().nType, 2);
    EXPECT_EQ(newest.back().nType, 1'001);
}

} // namespace
