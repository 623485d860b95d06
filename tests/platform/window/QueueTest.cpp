#include "tests/platform/window/Support.h"
#include "tests/support/Host.h"

#include "include/platform/Clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

using test::InThread;
using test::Make;
using testing::ElementsAre;

namespace {

// The numbers of what is in the calling thread's queue and passes, taken out.
std::vector<UINT> TakeAll(HWND hWnd = nullptr, UINT nMin = 0, UINT nMax = 0)
{
    std::vector<UINT> numbers;
    MSG msg;
    while (PeekMessageA(&msg, hWnd, nMin, nMax, PM_REMOVE))
        numbers.push_back(msg.message);
    return numbers;
}

TEST(Queue, GivesWhatIsPostedInOrder)
{
    InThread([] {
        const test::VirtualClock clock;
        const test::Handler handler = test::On(test::kAsk, [](HWND, WPARAM wParam) { return wParam + 1; });
        const HWND hWnd = Make(&handler);
        const DWORD dwStart = GetTickCount();
        EXPECT_TRUE(PostMessage(hWnd, test::kAsk, 5, -1));
        KXHost::AdvanceClock(40);
        EXPECT_TRUE(PostMessage(nullptr, 1, 0, 0));
        EXPECT_TRUE(PostMessage(nullptr, 2, 0, 0));

        MSG msg;
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_TRUE(msg.hwnd == hWnd && msg.message == test::kAsk && msg.wParam == 5 && msg.lParam == -1);
        EXPECT_EQ(msg.time, dwStart);
        EXPECT_EQ(DispatchMessageA(&msg), 6);
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_TRUE(!msg.hwnd && msg.message == 1 && msg.time == dwStart + 40);
        EXPECT_FALSE(DispatchMessageA(&msg) || DispatchMessageA(nullptr));
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
        EXPECT_TRUE(msg.message == WM_QUIT && msg.wParam == 9 && !msg.hwnd);
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
        EXPECT_FALSE(PostMessage(other, 1, 0, 0) || PostMessage(nullptr, 1, 0, 0));
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
    const test::WindowThread thread;
    MSG msg{thread.Window(), test::kPing, 0, 0, 0};
    EXPECT_FALSE(DispatchMessageA(&msg) || PeekMessageA(&msg, thread.Window(), 0, 0, PM_REMOVE));
    EXPECT_EQ(GetMessageA(&msg, thread.Window(), 0, 0), -1);
    EXPECT_EQ(GetMessageA(nullptr, nullptr, 0, 0), -1);
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

} // namespace
