#include "include/platform/Clock.h"

#include "include/platform/Sync.h"
#include "include/platform/Time.h"
#include "tests/platform/sync/Await.h"
#include "tests/support/Host.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

using KXHost::AdvanceClock;
using KXHost::VirtualSleep;
using test::VirtualClock;

std::int64_t WallNow()
{
    return CTime::GetCurrentTime().GetTime();
}

TEST(Clock, RealOneIsTheSystems)
{
    const auto before = std::time(nullptr);
    const std::int64_t wall = WallNow();
    EXPECT_GE(wall, before);
    EXPECT_LE(wall, std::time(nullptr));
    const DWORD tick = GetTickCount();
    AdvanceClock(1'000'000); // moves a virtual clock only
    EXPECT_LT(GetTickCount() - tick, 900'000u);
    const auto begin = std::chrono::steady_clock::now();
    Sleep(0);
    Sleep(2);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(2));
    EXPECT_GE(GetTickCount() - tick, 2u);
}

TEST(Clock, VirtualOneStandsUntilMoved)
{
    const VirtualClock clock(1'000'000'000);
    const DWORD tick = GetTickCount();
    EXPECT_EQ(WallNow(), 1'000'000'000);
    AdvanceClock(999);
    EXPECT_EQ(WallNow(), 1'000'000'000);
    EXPECT_EQ(GetTickCount() - tick, 999u);
    AdvanceClock(1);
    EXPECT_EQ(WallNow(), 1'000'000'001);
    AdvanceClock(0x100000000ull - 1000); // the tick count wraps, the wall clock doesn't
    EXPECT_EQ(GetTickCount(), tick);
    EXPECT_EQ(WallNow(), 1'000'000'000 + 0x100000000 / 1000);
    KXHost::UseVirtualClock(-5);
    EXPECT_EQ(WallNow(), -5);
    EXPECT_EQ(GetTickCount(), tick);
}

// In a process of its own: the tick count never goes back, so nothing could move it further afterwards.
TEST(ClockDeathTest, ExtremesStayInRange)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto run = [] {
        KXHost::UseVirtualClock(INT64_MAX);
        AdvanceClock(UINT64_MAX);
        AdvanceClock(UINT64_MAX);
        const HANDLE event = CreateEventA(nullptr, 0, 0, nullptr);
        DWORD dwResult = WAIT_FAILED;
        std::thread late([&] { dwResult = WaitForSingleObject(event, INFINITE - 1); });
        test::AwaitSleepers(1);
        SetEvent(event);
        late.join();
        std::_Exit(WallNow() == INT64_MAX && dwResult == WAIT_OBJECT_0 ? 0 : 1);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST(Clock, SleepersWakeWhenTheirTimeHasCome)
{
    const VirtualClock clock;
    std::atomic<int> nAwake{0};
    std::vector<std::thread> threads;
    for (const DWORD ms : {100u, 300u, 300u, 301u})
        threads.emplace_back([&nAwake, ms] {
            Sleep(ms);
            ++nAwake;
        });
    struct
    {
        std::uint64_t nStep;
        int nAwake;
    } const steps[] = {{99, 0}, {1, 1}, {199, 1}, {1, 3}, {1000, 4}};
    for (const auto& step : steps) {
        test::AwaitSleepers(4 - nAwake);
        AdvanceClock(step.nStep);
        EXPECT_EQ(KXHost::ClockWaiters(), 4 - step.nAwake);
        test::Await([&] { return nAwake == step.nAwake; });
    }
    for (auto& thread : threads)
        thread.join();
}

TEST(Clock, SleepCanMoveTheClock)
{
    const VirtualClock clock(1000, VirtualSleep::Advances);
    const DWORD tick = GetTickCount();
    const HANDLE event = CreateEventA(nullptr, 0, 0, nullptr);
    std::thread waiter([&] { EXPECT_EQ(WaitForSingleObject(event, 3000), WAIT_TIMEOUT); });
    test::AwaitSleepers(1);
    Sleep(2999);
    EXPECT_EQ(KXHost::ClockWaiters(), 1);
    Sleep(27'001);
    waiter.join();
    EXPECT_EQ(GetTickCount() - tick, 30'000u);
    EXPECT_EQ(WallNow(), 1030);
    CloseHandle(event);
}

// A wait keeps what is left of it when the clock changes under it.
TEST(Clock, ChangesUnderAWait)
{
    std::atomic<bool> bAwake{false};
    std::thread sleeper([&] {
        Sleep(3'600'000);
        bAwake = true;
    });
    test::AwaitSleepers(1);
    const DWORD tick = GetTickCount();
    {
        const VirtualClock clock;
        test::AwaitSleepers(1);
        AdvanceClock(1'800'000);
        EXPECT_EQ(KXHost::ClockWaiters(), 1);
    }
    EXPECT_GE(GetTickCount() - tick, 1'800'000u); // the real clock goes on from there
    test::AwaitSleepers(1);
    EXPECT_FALSE(bAwake);
    KXHost::UseVirtualClock(0);
    test::AwaitSleepers(1);
    AdvanceClock(1'799'999);
    KXHost::UseRealClock(); // the last millisecond passes by itself
    sleeper.join();
    EXPECT_TRUE(bAwake);
}

TEST(Clock, ChangesInAStormOfWaits)
{
    const HANDLE event = CreateEventA(nullptr, 0, 0, nullptr);
    std::atomic<int> nRunning{3};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([&, t] {
            DWORD last = GetTickCount();
            for (int i = 0; i < 200; ++i) {
                if (t == 0)
                    Sleep(1);
                else
                    WaitForSingleObject(event, 1);
                const DWORD now = GetTickCount();
                EXPECT_GE(static_cast<std::int32_t>(now - last), 1) << "the clock went back";
                last = now;
            }
            --nRunning;
        });
    while (nRunning > 0) {
        KXHost::UseVirtualClock(0);
        AdvanceClock(1);
        KXHost::UseRealClock();
        std::this_thread::yield();
    }
    for (auto& thread : threads)
        thread.join();
    CloseHandle(event);
}

} // namespace
