#include "tests/platform/window/Support.h"
#include "tests/support/Host.h"

#include "include/platform/Clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

using test::Handler;
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
        LRESULT lSum = 0;
        const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            if (nMsg < WM_USER) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
            return lSum += static_cast<LRESULT>(wParam) + lParam;
        };
        const HWND hWnd = Make(&handler);
        const DWORD dwStart = GetTickCount();
        EXPECT_TRUE(PostMessage(hWnd, WM_USER, 5, -1));
        KXHost::AdvanceClock(40);
        EXPECT_TRUE(PostMessage(nullptr, WM_USER + 1, 0, 0));
        EXPECT_TRUE(PostThreadMessageA(GetCurrentThreadId(), WM_USER + 2, 0, 0));

        MSG msg;
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_TRUE(msg.hwnd == hWnd && msg.message == WM_USER && msg.wParam == 5 && msg.lParam == -1);
        EXPECT_EQ(msg.time, dwStart);
        EXPECT_EQ(DispatchMessageA(&msg), 4);
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_TRUE(!msg.hwnd && msg.message == WM_USER + 1);
        EXPECT_EQ(msg.time, dwStart + 40);
        EXPECT_EQ(DispatchMessageA(&msg), 0);
        EXPECT_THAT(TakeAll(), ElementsAre(WM_USER + 2));
        EXPECT_EQ(DispatchMessageA(nullptr), 0);
        EXPECT_EQ(lSum, 4);
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
        EXPECT_THAT(TakeAll(nullptr, 20, 22), ElementsAre(21u, 22u));
        EXPECT_THAT(TakeAll(), ElementsAre(11u, 13u, 23u));
    });
}

TEST(Queue, QuitComesLastAndPassesFilters)
{
    InThread([] {
        const HWND hWnd = Make();
        MSG msg;
        PostQuitMessage(9);
        PostMessage(hWnd, WM_USER, 0, 0);
        EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 1);
        EXPECT_TRUE(PeekMessageA(&msg, hWnd, 1, 2, PM_NOREMOVE));
        EXPECT_TRUE(msg.message == WM_QUIT && !msg.hwnd);
        EXPECT_EQ(GetMessageA(&msg, hWnd, 1, 2), 0);
        EXPECT_EQ(msg.wParam, 9u);
        EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));

        PostMessage(nullptr, WM_QUIT, 3, 0); // posted as such it keeps its place
        PostMessage(hWnd, WM_USER, 0, 0);
        EXPECT_EQ(GetMessageA(&msg, hWnd, 1, 2), 0);
        EXPECT_EQ(msg.wParam, 3u);
        EXPECT_THAT(TakeAll(), ElementsAre(WM_USER));
    });
}

TEST(Queue, HoldsTenThousand)
{
    InThread([] {
        const HWND hWnd = Make(), other = Make();
        for (UINT n = 0; n < 10'000; ++n)
            ASSERT_TRUE(PostMessage(hWnd, n, 0, 0));
        EXPECT_FALSE(PostMessage(hWnd, 1, 0, 0));
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
        EXPECT_FALSE(PostMessage(other, 1, 0, 0)); // the thread has the queue
        EXPECT_FALSE(PostThreadMessageA(GetCurrentThreadId(), 1, 0, 0));
        PostQuitMessage(0);
        EXPECT_EQ(SendMessageA(hWnd, WM_NCCREATE, 0, 0), 1);

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
    DWORD dwId = 0;
    InThread([&] {
        dwId = GetCurrentThreadId();
        EXPECT_FALSE(PostThreadMessageA(dwId, 1, 0, 0)); // none yet
        EXPECT_EQ(GetLastError(), ERROR_INVALID_THREAD_ID);
        EXPECT_TRUE(TakeAll().empty());
        EXPECT_TRUE(PostThreadMessageA(dwId, 1, 0, 0));
    });
    EXPECT_FALSE(PostThreadMessageA(dwId, 1, 0, 0)); // gone
    EXPECT_FALSE(PostThreadMessageA(0, 1, 0, 0));

    const test::WindowThread thread;
    MSG msg{thread.Window(), WM_NCCREATE, 0, 0, 0};
    EXPECT_EQ(DispatchMessageA(&msg), 0); // not here
    EXPECT_EQ(GetMessageA(&msg, thread.Window(), 0, 0), -1);
    EXPECT_FALSE(PeekMessageA(&msg, thread.Window(), 0, 0, PM_REMOVE));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_EQ(GetMessageA(nullptr, nullptr, 0, 0), -1);
    EXPECT_FALSE(PeekMessageA(nullptr, nullptr, 0, 0, PM_REMOVE));
}

TEST(Queue, AWaitForAWindowEndsWithIt)
{
    const test::WindowThread thread;
    std::binary_semaphore made{0};
    HWND hWaited = nullptr, hControl = nullptr;
    std::thread waiter([&] {
        hWaited = Make();
        hControl = Make();
        made.release();
        MSG msg;
        EXPECT_EQ(GetMessageA(&msg, hWaited, 0, 0), -1);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    });
    made.acquire();
    PostMessage(hControl, WM_USER, 0, 0); // not what it waits for
    SendMessageA(hWaited, WM_CLOSE, 0, 0);
    waiter.join();
}

TEST(Queue, WakesItsThread)
{
    std::vector<UINT> seen;
    {
        const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            if (nMsg > WM_USER) seen.push_back(nMsg);
            return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        };
        const test::WindowThread thread(handler);
        for (UINT n = 1; n <= 3; ++n) {
            EXPECT_TRUE(PostMessage(thread.Window(), WM_USER + n, 0, 0));
            // A pass through the queue in between, so that the thread sleeps again and again.
            std::binary_semaphore reached{0};
            thread.Do([&] { return reached.release(), LRESULT{0}; });
            reached.acquire();
        }
    }
    EXPECT_THAT(seen, ElementsAre(WM_USER + 1, WM_USER + 2, WM_USER + 3));
}

} // namespace
