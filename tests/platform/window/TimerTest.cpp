#include "include/platform/Clock.h"
#include "include/platform/Input.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

using test::Make;
using testing::ElementsAre;

namespace {

// The messages that the thread can take now: the WPARAMs of WM_TIMER, or the number of another message.
std::vector<UINT_PTR> TakeAll()
{
    std::vector<UINT_PTR> taken;
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
        taken.push_back(msg.message == WM_TIMER ? msg.wParam : msg.message);
    return taken;
}

TEST(Timer, ComesOncePerPeriodAndLast)
{
    const test::VirtualClock clock;
    const HWND hWnd = Make();
    EXPECT_EQ(SetTimer(hWnd, 7, 100, nullptr), 7u);
    EXPECT_EQ(SetTimer(hWnd, 0, 1, nullptr), 1u); // each 10 ms
    EXPECT_TRUE(TakeAll().empty());
    KXHost::AdvanceClock(9);
    EXPECT_TRUE(TakeAll().empty());
    KXHost::AdvanceClock(1);
    EXPECT_THAT(TakeAll(), ElementsAre(1u));
    PostMessage(hWnd, WM_USER, 0, 0);
    KXHost::AdvanceClock(95); // nine are missed
    MSG msg;
    EXPECT_TRUE(PeekMessageA(&msg, hWnd, WM_TIMER, WM_TIMER, PM_NOREMOVE));
    EXPECT_THAT(TakeAll(), ElementsAre(WM_USER, 1u, 7u));
    KXHost::AdvanceClock(5); // the rhythm stays
    EXPECT_THAT(TakeAll(), ElementsAre(1u));

    EXPECT_EQ(SetTimer(hWnd, 7, 50, nullptr), 7u); // anew
    KXHost::AdvanceClock(49);
    EXPECT_THAT(TakeAll(), ElementsAre(1u));
    KXHost::AdvanceClock(1);
    EXPECT_TRUE(KillTimer(hWnd, 1));
    EXPECT_FALSE(KillTimer(hWnd, 1));
    EXPECT_THAT(TakeAll(), ElementsAre(7u)); // the other one's is gone

    test::InThread([&] {
        EXPECT_EQ(SetTimer(hWnd, 9, 10, nullptr), 0u);
        EXPECT_FALSE(KillTimer(hWnd, 7));
    });
    DestroyWindow(hWnd);
    KXHost::AdvanceClock(1000);
    EXPECT_TRUE(TakeAll().empty());
    EXPECT_EQ(SetTimer(hWnd, 7, 100, nullptr), 0u);
}

TEST(Timer, WakesAThreadThatWaitsForMessages)
{
    const test::VirtualClock clock;
    static int s_calls;
    s_calls = 0;
    std::thread thread([] {
        const HWND hWnd = Make();
        SetTimer(hWnd, 3, 1000, [](HWND, UINT, UINT_PTR nId, DWORD) { s_calls += static_cast<int>(nId); });
        MSG msg;
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_EQ(msg.message, WM_TIMER);
        DispatchMessageA(&msg);
    });
    while (KXHost::ClockWaiters() == 0)
        std::this_thread::yield();
    KXHost::AdvanceClock(1000);
    thread.join();
    EXPECT_EQ(s_calls, 3);
}

// A record of what windows have been told, as letters: + and - for focus gained and lost, and the number
// told.
struct Told
{
    test::Handler Handler(char letter)
    {
        return [=, this](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            if (nMsg == WM_SETFOCUS || nMsg == WM_KILLFOCUS) {
                text += letter;
                text += nMsg == WM_SETFOCUS ? '+' : '-';
                others.push_back(reinterpret_cast<HWND>(wParam));
            }
            return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        };
    }
    std::string Take() { return std::exchange(text, {}); }

    std::string text;
    std::vector<HWND> others;
};

TEST(Focus, GoesFromWindowToWindow)
{
    Told told;
    const test::Handler a = told.Handler('a'), b = told.Handler('b');
    const HWND hA = Make(&a, WS_VISIBLE);
    EXPECT_EQ(told.Take(), "a+");
    EXPECT_EQ(GetFocus(), hA);
    const HWND hB = Make(&b);
    told.others.clear();
    EXPECT_EQ(SetFocus(hB), hA);
    EXPECT_EQ(told.Take(), "a-b+");
    EXPECT_THAT(told.others, ElementsAre(hB, hA));
    EXPECT_EQ(SetFocus(hB), hB);
    EXPECT_EQ(told.Take(), "");

    PostMessage(hA, WM_LBUTTONDOWN, 0, 0); // a press takes it before the window hears of the press
    MSG msg;
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(msg.message, WM_LBUTTONDOWN);
    EXPECT_EQ(told.Take(), "b-a+");

    test::InThread([&] {
        EXPECT_EQ(SetFocus(hA), nullptr);
        EXPECT_EQ(GetFocus(), nullptr);
        const HWND hOther = Make();
        EXPECT_EQ(SetFocus(hOther), hA);
        DestroyWindow(hOther);
    });
    EXPECT_EQ(told.Take(), ""); // posted
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    DispatchMessageA(&msg);
    EXPECT_EQ(told.Take(), "a-");

    SetFocus(hA);
    DestroyWindow(hA);
    EXPECT_EQ(GetFocus(), nullptr);
    DestroyWindow(hB);
    EXPECT_EQ(SetFocus(hB), nullptr);
}

} // namespace
