#include "include/platform/Error.h"
#include "include/platform/Sync.h"
#include "tests/platform/sync/Await.h"
#include "tests/support/Host.h"

#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

constexpr bool kManual = true, kAuto = false;

class Event
{
public:
    explicit Event(bool bManual, bool bSet = false) : m_handle(CreateEventA(nullptr, bManual, bSet, nullptr))
    {
    }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event() { CloseHandle(m_handle); }
    operator HANDLE() const { return m_handle; }
    bool Poll() const { return WaitForSingleObject(m_handle, 0) == WAIT_OBJECT_0; }

private:
    HANDLE m_handle;
};

// Threads that wait for an event with a time-out of a virtual clock, in the order of their numbers.
class Waiters
{
public:
    Waiters(HANDLE event, const std::vector<DWORD>& timeouts) : results(timeouts.size())
    {
        for (std::size_t i = 0; i < timeouts.size(); ++i) {
            results[i] = kWaiting;
            m_threads.emplace_back([=, this] { results[i] = WaitForSingleObject(event, timeouts[i]); });
            test::AwaitSleepers(static_cast<int>(i + 1));
        }
    }
    ~Waiters()
    {
        for (auto& thread : m_threads)
            thread.join();
    }
    void Expect(const std::vector<DWORD>& expected) const
    {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            test::Await([&] { return expected[i] == kWaiting || results[i] != kWaiting; });
            EXPECT_EQ(results[i], expected[i]) << i;
        }
    }

    static constexpr DWORD kWaiting = 12345;
    std::vector<std::atomic<DWORD>> results;

private:
    std::vector<std::thread> m_threads;
};
constexpr DWORD kWaiting = Waiters::kWaiting;

TEST(Event, PollsAndResets)
{
    for (const bool bManual : {kManual, kAuto}) {
        const Event event(bManual, true);
        EXPECT_TRUE(event.Poll());
        EXPECT_EQ(event.Poll(), bManual);
        EXPECT_TRUE(SetEvent(event));
        EXPECT_TRUE(SetEvent(event)); // with nobody waiting two signals are one
        EXPECT_TRUE(event.Poll());
        EXPECT_EQ(event.Poll(), bManual);
        EXPECT_TRUE(SetEvent(event));
        EXPECT_TRUE(ResetEvent(event));
        EXPECT_FALSE(event.Poll());
    }
}

TEST(Event, InvalidHandlesFailQuietly)
{
    const int nLive = KXHost::LiveHandles();
    for (const HANDLE handle : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        for (int (*pfn)(HANDLE) : {SetEvent, ResetEvent, CloseHandle}) {
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(pfn(handle), 0);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        }
        EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_FAILED);
    }
    EXPECT_EQ(KXHost::LiveHandles(), nLive);
    const HANDLE event = CreateEventA(nullptr, kAuto, 0, "ignored");
    EXPECT_EQ(KXHost::LiveHandles(), nLive + 1);
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_EQ(KXHost::LiveHandles(), nLive);
}

TEST(Event, AutomaticSignalsReleaseOneEachInTheOrderOfWaiting)
{
    const test::VirtualClock clock;
    const Event event(kAuto);
    Waiters waiters(event, {1000, 50, 1000, 1000});
    KXHost::AdvanceClock(50);
    waiters.Expect({kWaiting, WAIT_TIMEOUT, kWaiting, kWaiting});
    SetEvent(event);
    SetEvent(event); // at once behind the first: the second waiter's all the same
    EXPECT_FALSE(event.Poll());
    EXPECT_EQ(KXHost::ClockWaiters(), 1);
    waiters.Expect({WAIT_OBJECT_0, WAIT_TIMEOUT, WAIT_OBJECT_0, kWaiting});
    KXHost::AdvanceClock(949);
    EXPECT_EQ(KXHost::ClockWaiters(), 1);
    KXHost::AdvanceClock(1);
    waiters.Expect({WAIT_OBJECT_0, WAIT_TIMEOUT, WAIT_OBJECT_0, WAIT_TIMEOUT});
    SetEvent(event); // nobody is left: it stays for the next
    EXPECT_TRUE(event.Poll());
}

TEST(Event, ManualSignalReleasesAll)
{
    const test::VirtualClock clock;
    const Event event(kManual);
    Waiters waiters(event, {1000, 1000, 1000});
    SetEvent(event);
    ResetEvent(event);
    waiters.Expect({WAIT_OBJECT_0, WAIT_OBJECT_0, WAIT_OBJECT_0});
    EXPECT_FALSE(event.Poll());
}

// Signals and time-outs that meet: each signal ends exactly one wait.
TEST(Event, NoSignalIsLostOrCountedTwice)
{
    constexpr int kSignals = 1500;
    const test::VirtualClock clock;
    const Event event(kAuto);
    std::atomic<int> nTaken{0};
    std::atomic<bool> bStop{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([&] {
            while (!bStop)
                nTaken += WaitForSingleObject(event, 2) == WAIT_OBJECT_0;
        });
    threads.emplace_back([&] {
        for (; !bStop; std::this_thread::yield())
            KXHost::AdvanceClock(1);
    });
    for (int i = 1; i <= kSignals; ++i) {
        SetEvent(event);
        test::Await([&] { return nTaken >= i; });
        ASSERT_EQ(nTaken, i);
    }
    KXHost::UseRealClock(); // also frees whoever still sleeps
    bStop = true;
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(nTaken, kSignals);
}

// The waiter closes the event as soon as it is released, while SetEvent may still run.
TEST(Event, ReleasedThreadMayCloseIt)
{
    const int nLive = KXHost::LiveHandles();
    std::atomic<HANDLE> handed{nullptr};
    std::thread setter([&] {
        for (int i = 0; i < 3000; ++i) {
            HANDLE event = nullptr;
            test::Await([&] { return (event = handed.exchange(nullptr)) != nullptr; });
            if (i % 4) std::this_thread::yield(); // mostly the waiter sleeps by then
            SetEvent(event);
        }
    });
    for (int i = 0; i < 3000; ++i) {
        const HANDLE event = CreateEventA(nullptr, i % 2, 0, nullptr);
        handed = event;
        EXPECT_EQ(WaitForSingleObject(event, i % 3 ? INFINITE : 1'000'000), WAIT_OBJECT_0);
        CloseHandle(event);
    }
    setter.join();
    EXPECT_EQ(KXHost::LiveHandles(), nLive);
}

} // namespace
