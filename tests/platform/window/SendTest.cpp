#include "tests/platform/window/Support.h"

#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <pthread.h>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

using test::Handler;
using test::Make;
using test::WindowThread;

namespace {

constexpr UINT kAsk = WM_USER + 1;

// A thread that sends `nMsg` to a window of another thread, and has a window itself.
class Sender
{
public:
    Sender(HWND hTarget, UINT nMsg)
    {
        m_thread = std::thread([=, this] {
            m_window = Make();
            m_ready.release();
            m_result = SendMessageA(hTarget, nMsg, 0, 0);
        });
        m_ready.acquire();
    }
    // Returns when the thread waits in SendMessageA, the only place where it serves what is sent to it.
    void AwaitWaiting() const { EXPECT_EQ(SendMessageA(m_window, WM_NCCREATE, 0, 0), 1); }
    LRESULT Join()
    {
        m_thread.join();
        return m_result;
    }

private:
    HWND m_window = nullptr;
    LRESULT m_result = -1;
    std::binary_semaphore m_ready{0};
    std::thread m_thread;
};

TEST(Send, RunsOnTheOwnersThread)
{
    const Handler where = [](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (nMsg != kAsk) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        EXPECT_EQ(lParam, INTPTR_MIN);
        return static_cast<LRESULT>(GetCurrentThreadId() + (wParam << 32));
    };
    const WindowThread other(where);
    EXPECT_EQ(SendMessageA(other.Window(), kAsk, 5, INTPTR_MIN), other.Id() + (5LL << 32));
    const HWND own = Make(&where);
    EXPECT_EQ(SendMessageA(own, kAsk, 5, INTPTR_MIN), GetCurrentThreadId() + (5LL << 32));
    EXPECT_TRUE(DestroyWindow(own));
}

TEST(Send, PeekServesToo)
{
    std::binary_semaphore made{0};
    HWND hWnd = nullptr;
    bool bServed = false;
    std::thread peeker([&] {
        const Handler handler = [&](HWND h, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            bServed = bServed || nMsg == kAsk;
            return DefWindowProcA(h, nMsg, wParam, lParam);
        };
        hWnd = Make(&handler);
        made.release();
        MSG msg;
        while (!bServed) {
            EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
            std::this_thread::yield();
        }
    });
    made.acquire();
    SendMessageA(hWnd, kAsk, 0, 0);
    peeker.join();
    EXPECT_TRUE(bServed);
}

// Threads in a ring, each of which hands a message on to the next. All begin at once, so that each waits for
// the next and is asked by the one before, many deep.
TEST(Send, RingsOfThreadsDontDeadlock)
{
    for (const std::size_t count : {2u, 3u, 5u}) {
        std::vector<std::unique_ptr<WindowThread>> threads;
        const auto next = [&](DWORD dwThreadId) {
            std::size_t i = 0;
            while (threads[i]->Id() != dwThreadId)
                ++i;
            return threads[(i + 1) % count]->Window();
        };
        const Handler handOn = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (nMsg != kAsk) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
            return wParam == 0 ? 1 : 1 + SendMessageA(next(GetCurrentThreadId()), kAsk, wParam - 1, 0);
        };
        for (std::size_t i = 0; i < count; ++i)
            threads.push_back(std::make_unique<WindowThread>(handOn));
        std::latch all(static_cast<std::ptrdiff_t>(count));
        std::vector<std::thread> starters;
        for (const auto& thread : threads)
            starters.emplace_back([&] {
                thread->Do([&] {
                    all.arrive_and_wait();
                    for (WPARAM hops = 0; hops < 30; ++hops)
                        EXPECT_EQ(SendMessageA(next(GetCurrentThreadId()), kAsk, hops, 0),
                                  static_cast<LRESULT>(hops + 1));
                    return LRESULT{0};
                });
            });
        for (auto& starter : starters)
            starter.join();
        for (const auto& thread : threads)
            thread->Join();
    }
}

// How the end of a window or its thread releases a sender whose message hasn't begun.
TEST(Send, IsReleasedWithoutAnswer)
{
    for (const bool bWithThread : {false, true}) {
        std::binary_semaphore made{0}, go{0}, sent{0};
        HWND hWnd = nullptr;
        std::thread owner([&] {
            hWnd = Make();
            made.release();
            go.acquire(); // without serving anything
            if (bWithThread) return;
            EXPECT_TRUE(DestroyWindow(hWnd));
            sent.acquire();
        });
        made.acquire();
        Sender one(hWnd, WM_NCCREATE), two(hWnd, WM_NCCREATE); // would give 1
        one.AwaitWaiting();
        two.AwaitWaiting();
        go.release();
        EXPECT_EQ(one.Join(), 0);
        EXPECT_EQ(two.Join(), 0);
        sent.release();
        owner.join();
        EXPECT_EQ(SendMessageA(hWnd, WM_NCCREATE, 0, 0), 0);
    }
}

// What a sender gets when the procedure that it waits for ends its window, throws or ends its thread.
TEST(Send, IsAnsweredHoweverTheProcedureEnds)
{
    struct Case
    {
        LRESULT (*act)(HWND);
        LRESULT expected;
        const char* outcome;
    };
    const Case cases[] = {
        {[](HWND h) { return LRESULT{DestroyWindow(h)} + 6; }, 7, "went on"},
        {[](HWND) -> LRESULT { throw std::runtime_error("no"); }, 0, "threw"},
        {[](HWND) -> LRESULT { pthread_exit(nullptr); }, 0, "ended"},
    };
    for (const Case& c : cases) {
        std::binary_semaphore made{0};
        HWND hWnd = nullptr;
        std::string outcome = "ended";
        const Handler handler = [&](HWND h, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            return nMsg == kAsk ? c.act(h) : DefWindowProcA(h, nMsg, wParam, lParam);
        };
        std::thread owner([&] {
            hWnd = Make(&handler);
            made.release();
            MSG msg;
            try {
                EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), 0);
                outcome = "went on";
            } catch (const std::runtime_error&) {
                outcome = "threw";
            }
        });
        made.acquire();
        const DWORD dwOwner = GetWindowThreadProcessId(hWnd, nullptr);
        EXPECT_EQ(SendMessageA(hWnd, kAsk, 0, 0), c.expected);
        PostThreadMessageA(dwOwner, WM_QUIT, 0, 0);
        owner.join();
        EXPECT_EQ(outcome, c.outcome);
        EXPECT_FALSE(IsWindow(hWnd));
    }
}

TEST(Send, LeftByAnExceptionIsTakenBack)
{
    test::InThread([] {
        int asked = 0;
        const Handler count = [&](HWND h, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            asked += nMsg == kAsk;
            return DefWindowProcA(h, nMsg, wParam, lParam);
        };
        const Handler fail = [](HWND h, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            if (nMsg == kAsk) throw std::runtime_error("no");
            return DefWindowProcA(h, nMsg, wParam, lParam);
        };
        const HWND hWnd = Make(&count);
        HWND hFailing = nullptr;
        std::binary_semaphore made{0};
        std::thread sender([&] {
            hFailing = Make(&fail);
            made.release();
            EXPECT_THROW(SendMessageA(hWnd, kAsk, 0, 0), std::runtime_error);
        });
        made.acquire();
        test::InThread([&] { EXPECT_EQ(SendMessageA(hFailing, kAsk, 0, 0), 0); });
        sender.join();
        MSG msg;
        EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(asked, 0);
    });
}

struct AtEnd
{
    std::function<void()> action;
    ~AtEnd()
    {
        if (action) action();
    }
};
thread_local AtEnd t_atEnd;

// A thread's own objects may be destroyed after its queue.
TEST(Send, WorksWhenTheThreadsQueueIsGone)
{
    const WindowThread other;
    bool bDone = false;
    test::InThread([&] {
        t_atEnd.action = [&] {
            MSG msg;
            EXPECT_EQ(SendMessageA(other.Window(), WM_NCCREATE, 0, 0), 1);
            EXPECT_TRUE(PostMessage(other.Window(), WM_USER, 0, 0));
            EXPECT_EQ(Make(), nullptr);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_THREAD_ID);
            EXPECT_FALSE(PostMessage(nullptr, WM_USER, 0, 0));
            EXPECT_FALSE(PostThreadMessageA(GetCurrentThreadId(), WM_USER, 0, 0));
            PostQuitMessage(0);
            EXPECT_EQ(GetMessageA(&msg, nullptr, 0, 0), -1);
            EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
            bDone = true;
        };
        EXPECT_NE(Make(), nullptr);
    });
    EXPECT_TRUE(bDone);
}

// Threads that make and end windows, send and post to any of them, and end while others still send to them.
TEST(Send, ManyThreadsAtOnce)
{
    std::array<std::atomic<HWND>, 8> windows{};
    std::atomic<int> asked{0}, answers{0};
    const auto live = [&](unsigned seed) {
        std::mt19937 random(seed);
        const auto pick = [&]() -> std::atomic<HWND>& { return windows[random() % windows.size()]; };
        const auto ask = [&](WPARAM depth) {
            const LRESULT lResult = SendMessageA(pick(), kAsk, depth, 0);
            EXPECT_TRUE(lResult == 0 || lResult == 1);
            answers += lResult == 1;
        };
        const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) -> LRESULT {
            EXPECT_EQ(GetWindowThreadProcessId(hWnd, nullptr), GetCurrentThreadId());
            if (nMsg != kAsk) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
            ++asked;
            if (wParam > 0) ask(wParam - 1);
            if (random() % 8 == 0) DestroyWindow(hWnd);
            return 1;
        };
        MSG msg;
        for (int step = 0; step < 400; ++step) {
            switch (random() % 4) {
            case 0:
                pick() = Make(&handler);
                break;
            case 1:
                PostMessage(pick(), kAsk, 0, 0);
                break;
            case 2:
                ask(3);
                break;
            default:
                while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
                    DispatchMessageA(&msg);
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed)
        threads.emplace_back(live, seed);
    for (auto& thread : threads)
        thread.join();
    EXPECT_GT(answers, 0);
    EXPECT_GE(asked, answers);
    for (const auto& hWnd : windows)
        EXPECT_FALSE(IsWindow(hWnd));
}

} // namespace
