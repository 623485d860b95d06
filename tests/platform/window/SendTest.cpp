#include "platform/sync/PerThread.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Test.h"

#include <latch>
#include <pthread.h>

using namespace test;

namespace {

TEST(Send, RunsOnTheOwnersThread)
{
    const Handler where = [](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (nMsg != kAsk) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        return static_cast<LRESULT>(GetCurrentThreadId() + (wParam << 32)) + (lParam == INTPTR_MIN);
    };
    const WindowThread other(where);
    EXPECT_EQ(SendMessageA(other.Window(), kAsk, 5, INTPTR_MIN), other.Id() + (5LL << 32) + 1);
    const HWND own = Make(&where);
    EXPECT_EQ(SendMessageA(own, kAsk, 5, INTPTR_MIN), GetCurrentThreadId() + (5LL << 32) + 1);

    Sender sender(own, kPing);
    InThread([&] { sender.AwaitWaiting(); }); // this thread would serve it in the wait
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)); // serves all the same
    EXPECT_EQ(sender.Join(), 1);
    EXPECT_TRUE(DestroyWindow(own));
}

// Threads in a ring, each of which hands a message on to the next. They are asked all at once, so that each
// waits for the next while the one before asks it, many deep.
TEST(Send, RingsOfThreadsDontDeadlock)
{
    for (const std::size_t count : {2u, 3u, 5u}) {
        std::vector<HWND> windows(count);
        std::vector<std::unique_ptr<WindowThread>> ring;
        for (std::size_t i = 0; i < count; ++i) {
            ring.push_back(std::make_unique<WindowThread>(On(kAsk, [&, i](HWND, WPARAM hops) {
                return hops == 0 ? 1 : 1 + SendMessageA(windows[(i + 1) % count], kAsk, hops - 1, 0);
            })));
            windows[i] = ring[i]->Window();
        }
        RunThreads(static_cast<int>(count), [&](int t) {
            for (WPARAM hops = 0; hops < 40; ++hops)
                EXPECT_EQ(SendMessageA(windows[static_cast<std::size_t>(t)], kAsk, hops, 0),
                          static_cast<LRESULT>(hops + 1));
        });
    }
}

// While each message that is served brings the next, what is posted has its turn.
TEST(Send, WithoutEndDoesntHoldUpWhatIsPosted)
{
    constexpr int nMost = 20;
    int served = 0;
    std::vector<std::unique_ptr<Sender>> senders;
    const auto send = [&](HWND hWnd) {
        senders.push_back(std::make_unique<Sender>(hWnd, kAsk));
        InThread([&] { senders.back()->AwaitWaiting(); });
    };
    const Handler handler = On(kAsk, [&](HWND hWnd, WPARAM) {
        if (++served < nMost) send(hWnd);
        return 1;
    });
    const HWND hWnd = Make(&handler);
    PostMessage(hWnd, WM_USER, 0, 0);
    send(hWnd);
    MSG msg;
    EXPECT_TRUE(GetMessageA(&msg, nullptr, 0, 0));
    EXPECT_EQ(msg.message, WM_USER);
    EXPECT_EQ(served, 1);
    while (served < nMost)
        PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE);
    for (const auto& sender : senders)
        EXPECT_EQ(sender->Join(), 1);
    EXPECT_TRUE(DestroyWindow(hWnd));
}

// How the end of a window or its thread releases senders whose message hasn't begun.
TEST(Send, IsReleasedWithoutAnswer)
{
    for (const bool bWithThread : {false, true}) {
        std::binary_semaphore made{0}, go{0}, released{0};
        HWND hWnd = nullptr;
        bool bHeard = false;
        const Handler listen = On(WM_NCDESTROY, [&](HWND, WPARAM) { return bHeard = true; });
        std::thread owner([&] {
            hWnd = Make(&listen);
            made.release();
            go.acquire(); // without serving anything
            if (bWithThread) return;
            EXPECT_TRUE(DestroyWindow(hWnd));
            released.acquire();
        });
        made.acquire();
        Sender one(hWnd, kPing), two(hWnd, kPing);
        one.AwaitWaiting();
        two.AwaitWaiting();
        go.release();
        EXPECT_EQ(one.Join(), 0);
        EXPECT_EQ(two.Join(), 0);
        released.release();
        owner.join();
        EXPECT_FALSE(IsWindow(hWnd));
        EXPECT_FALSE(SendMessageA(hWnd, kPing, 0, 0));
        EXPECT_NE(bHeard, bWithThread);
    }
}

// The result that a sender gets when the procedure that it waits for ends its window, throws or ends its
// thread.
TEST(Send, IsAnsweredHoweverTheProcedureEnds)
{
    const std::tuple<std::function<LRESULT(HWND)>, LRESULT, int> cases[] = {
        {[](HWND h) { return LRESULT{DestroyWindow(h)} + 6; }, 7, 0},
        {[](HWND) -> LRESULT { throw std::runtime_error("no"); }, 0, 1},
        {[](HWND) -> LRESULT { pthread_exit(nullptr); }, 0, 0},
    };
    for (const auto& [act, expected, thrown] : cases) {
        WindowThread thread(On(kAsk, [&own = act](HWND h, WPARAM) { return own(h); }));
        EXPECT_EQ(SendMessageA(thread.Window(), kAsk, 0, 0), expected);
        thread.Join();
        EXPECT_EQ(thread.Thrown(), thrown); // out of the thread's GetMessageA
        EXPECT_FALSE(IsWindow(thread.Window()));
    }
}

TEST(Send, LeftByAnExceptionIsTakenBack)
{
    int asked = 0;
    const Handler count = On(kAsk, [&](HWND, WPARAM) { return ++asked; });
    const Handler fail = On(kAsk, [](HWND, WPARAM) -> LRESULT { throw std::runtime_error("no"); });
    const HWND hWnd = Make(&count);
    HWND hFailing = nullptr;
    std::binary_semaphore made{0};
    std::thread sender([&] {
        hFailing = Make(&fail);
        made.release();
        EXPECT_THROW(SendMessageA(hWnd, kAsk, 0, 0), std::runtime_error);
    });
    made.acquire();
    InThread([&] { EXPECT_EQ(SendMessageA(hFailing, kAsk, 0, 0), 0); });
    sender.join();
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(asked, 0);
    EXPECT_TRUE(DestroyWindow(hWnd));
}

struct AtEnd
{
    std::function<void()> action;
    ~AtEnd()
    {
        if (action) action();
    }
};

// An object that a thread keeps under a key may be destroyed after its queue.
TEST(Send, WorksWhenTheThreadsQueueIsGone)
{
    const WindowThread other;
    kx::sync::PerThread<AtEnd> atEnd;
    bool bDone = false;
    InThread([&] {
        atEnd.Get().action = [&] {
            MSG msg;
            EXPECT_EQ(SendMessageA(other.Window(), kPing, 0, 0), 1);
            EXPECT_TRUE(PostMessage(other.Window(), kPing, 0, 0));
            EXPECT_FALSE(Make());
            EXPECT_FALSE(PostMessage(nullptr, WM_USER, 0, 0));
            EXPECT_EQ(GetLastError(), ERROR_INVALID_THREAD_ID);
            PostQuitMessage(0);
            EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), -1);
            EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
            bDone = true;
        };
        EXPECT_TRUE(Make());
    });
    EXPECT_TRUE(bDone);
}

// Threads that make and end windows, send and post to any of them, and end while others still send to them.
TEST(Send, ManyThreadsAtOnce)
{
    std::array<std::atomic<HWND>, 8> windows{};
    std::atomic<int> answers{0};
    std::latch all(4);
    RunThreads(4, [&](int seed) {
        std::mt19937 random(static_cast<unsigned>(seed + 1));
        const auto pick = [&]() -> std::atomic<HWND>& { return windows[random() % windows.size()]; };
        const Handler handler = On(kAsk, [&](HWND hWnd, WPARAM depth) {
            EXPECT_EQ(GetWindowThreadProcessId(hWnd, nullptr), GetCurrentThreadId());
            if (depth > 0) answers += static_cast<int>(SendMessageA(pick(), kAsk, depth - 1, 0));
            if (random() % 8 == 0) DestroyWindow(hWnd);
            return 1;
        });
        MSG msg;
        all.arrive_and_wait();
        for (int step = 0; step < 1'000; ++step) {
            const auto act = random() % 4;
            if (act == 0) pick() = Make(&handler);
            if (act == 1) PostMessage(pick(), kAsk, 0, 0);
            if (act == 2) answers += static_cast<int>(SendMessageA(pick(), kAsk, 3, 0));
            while (act == 3 && PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageA(&msg);
        }
    });
    EXPECT_GT(answers, 0);
    for (const auto& hWnd : windows)
        EXPECT_FALSE(IsWindow(hWnd));
}

} // namespace
