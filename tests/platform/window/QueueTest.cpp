#include "include/platform/Clock.h"
#include "include/platform/Input.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Test.h"

using namespace test;
using testing::ElementsAre;

namespace {

// Takes out what is in the calling thread's queue and passes: the numbers of messages, and of timers.
std::vector<UINT_PTR> TakeAll(HWND hWnd = nullptr, UINT nMin = 0, UINT nMax = 0)
{
    std::vector<UINT_PTR> taken;
    MSG msg;
    while (PeekMessageA(&msg, hWnd, nMin, nMax, PM_REMOVE))
        taken.push_back(msg.message == WM_TIMER ? msg.wParam : msg.message);
    return taken;
}

TEST(Queue, GivesWhatIsPostedInOrder)
{
    InThread([] {
        const VirtualClock clock;
        const test::Handler handler = On(kAsk, [](HWND, WPARAM wParam) { return wParam + 1; });
        const HWND hWnd = Make(&handler);
        const DWORD dwStart = GetTickCount();
        EXPECT_EQ(PostMessage(hWnd, kAsk, 5, -1), 1);
        KXHost::AdvanceClock(40);
        EXPECT_TRUE(PostMessage(nullptr, 1, 0, 0));
        EXPECT_TRUE(PostMessage(nullptr, 2, 0, 0));

        MSG msg;
        const auto take = [&] {
            EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
            return std::tuple(msg.hwnd, msg.message, msg.wParam, msg.lParam, msg.time);
        };
        EXPECT_EQ(take(), std::tuple(hWnd, kAsk, 5, -1, dwStart));
        EXPECT_EQ(DispatchMessageA(&msg), 6);
        EXPECT_EQ(take(), std::tuple(nullptr, 1, 0, 0, dwStart + 40));
        EXPECT_FALSE(DispatchMessageA(&msg));
        EXPECT_FALSE(DispatchMessageA(nullptr));
        EXPECT_THAT(TakeAll(), ElementsAre(2u));
    });
}

TEST(Queue, FiltersByWindowAndNumber)
{
    InThread([] {
        const HWND a = Make(), b = Make();
        for (UINT n = 1; n <= 3; ++n) {
            PostMessage(a, n, 0, 0);
            PostMessage(b, 10 + n, 0, 0);
            PostMessage(nullptr, 20 + n, 0, 0);
        }
        MSG msg;
        EXPECT_TRUE(PeekMessageA(&msg, b, 12, 13, PM_NOREMOVE));
        EXPECT_EQ(msg.message, 12u);
        EXPECT_THAT(TakeAll(b, 12, 12), ElementsAre(12u));
        EXPECT_THAT(TakeAll(nullptr, 0, 1), ElementsAre(1u));
        EXPECT_THAT(TakeAll(nullptr, 23, 5), ElementsAre()); // no number is between
        EXPECT_THAT(TakeAll(a), ElementsAre(2u, 3u));
        EXPECT_THAT(TakeAll(), ElementsAre(11u, 21u, 22u, 13u, 23u));
    });
}

TEST(Queue, QuitComesLastAndPassesFilters)
{
    InThread([] {
        const HWND hWnd = Make();
        MSG msg;
        PostQuitMessage(9);
        PostMessage(hWnd, 7, 0, 0);
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_TRUE(PeekMessageA(&msg, hWnd, 1, 2, PM_NOREMOVE));
        EXPECT_EQ(GetMessageA(&msg, hWnd, 1, 2), 0);
        EXPECT_EQ(msg.message, WM_QUIT);
        EXPECT_EQ(msg.wParam, 9);
        EXPECT_FALSE(msg.hwnd);
        EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));

        PostMessage(nullptr, WM_QUIT, 3, 0); // posted as such it keeps its place
        PostMessage(hWnd, 7, 0, 0);
        EXPECT_EQ(GetMessageA(&msg, hWnd, 1, 2), 0);
        EXPECT_EQ(msg.wParam, 3u);
        EXPECT_THAT(TakeAll(), ElementsAre(7u));
    });
}

TEST(Queue, HoldsTenThousand)
{
    InThread([] {
        const HWND hWnd = Make(), other = Make();
        for (UINT n = 0; n < 10'000; ++n)
            ASSERT_TRUE(PostMessage(hWnd, n, 0, 0));
        EXPECT_FALSE(PostMessage(other, 1, 0, 0));
        EXPECT_FALSE(PostMessage(nullptr, 1, 0, 0));
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
        PostQuitMessage(0); // fits always
        MSG msg;
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_EQ(msg.message, 0u);
        EXPECT_TRUE(PostMessage(other, 10'000, 0, 0));
        EXPECT_FALSE(PostMessage(other, 1, 0, 0));
        EXPECT_TRUE(DestroyWindow(hWnd)); // takes its messages along
        EXPECT_THAT(TakeAll(), ElementsAre(10'000u, WM_QUIT));
    });
}

TEST(Queue, BelongsToAThread)
{
    const WindowThread thread;
    MSG msg{thread.Window(), kPing, 0, 0, 0};
    EXPECT_FALSE(DispatchMessageA(&msg));
    EXPECT_FALSE(PeekMessageA(&msg, thread.Window(), 0, 0, PM_REMOVE));
    EXPECT_EQ(GetMessageA(&msg, thread.Window(), 0, 0), -1);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_EQ(GetMessageA(nullptr, nullptr, 0, 0), -1);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(PeekMessageA(nullptr, nullptr, 0, 0, PM_REMOVE));
}

TEST(Queue, AWaitForAWindowEndsWithIt)
{
    std::binary_semaphore made{0};
    HWND hAwaited = nullptr, hOther = nullptr;
    std::thread waiter([&] {
        hAwaited = Make();
        hOther = Make();
        made.release();
        MSG msg;
        EXPECT_EQ(GetMessageA(&msg, hAwaited, 0, 0), -1);
    });
    made.acquire();
    PostMessage(hOther, WM_USER, 0, 0); // not what it waits for
    SendMessageA(hAwaited, WM_CLOSE, 0, 0);
    waiter.join();
}

TEST(Timer, ComesOncePerPeriodAndLast)
{
    const VirtualClock clock;
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
    EXPECT_EQ(KillTimer(hWnd, 1), 1);
    EXPECT_FALSE(KillTimer(hWnd, 1));
    EXPECT_THAT(TakeAll(), ElementsAre(7u)); // the other one's is gone

    InThread([&] {
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
    const VirtualClock clock;
    static int s_calls;
    s_calls = 0;
    std::thread thread([] {
        const HWND hWnd = Make();
        SetTimer(hWnd, 3, 1000, [](HWND, UINT, UINT_PTR nId, DWORD) { s_calls += static_cast<int>(nId); });
        MSG msg;
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_EQ(msg.message, WM_TIMER);
        EXPECT_EQ(DispatchMessageA(&msg), 0);
    });
    AwaitSleepers(1);
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
                EXPECT_EQ(lParam, 0);
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
    ASSERT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
    EXPECT_EQ(told.Take(), "b-a+");
    PostMessage(hB, WM_LBUTTONDOWN, 0, 0);
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(told.Take(), "");
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(told.Take(), "a-b+");
    PostMessage(hA, WM_RBUTTONUP, 0, 0); // no press
    ASSERT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
    EXPECT_EQ(told.Take(), "");

    InThread([&] {
        EXPECT_EQ(SetFocus(hB), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
        EXPECT_EQ(GetFocus(), nullptr);
        const HWND hOther = Make();
        EXPECT_EQ(SetFocus(hOther), hB);
        DestroyWindow(hOther);
    });
    EXPECT_EQ(told.Take(), ""); // posted
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    DispatchMessageA(&msg);
    EXPECT_EQ(told.Take(), "b-");
    EXPECT_EQ(told.others.back(), nullptr);

    SetWindowPos(hA, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    EXPECT_EQ(GetFocus(), nullptr);
    SetWindowPos(hA, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
    EXPECT_EQ(GetFocus(), hA);
    DestroyWindow(hA);
    EXPECT_EQ(GetFocus(), nullptr);
    DestroyWindow(hB);
    EXPECT_EQ(SetFocus(hB), nullptr);
}

} // namespace
