#include "include/platform/Clock.h"
#include "include/platform/Sync.h"
#include "include/platform/Time.h"
#include "tests/support/Test.h"

namespace {

using KXHost::AdvanceClock;
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

// Each step of the clock ends one sleep, however near to its beginning the step comes.
TEST(Clock, EachStepWakesItsSleeper)
{
    const VirtualClock clock;
    test::RunThreads(2, [](int t) {
        for (int i = 0; i < 300; ++i) {
            if (t == 0)
                Sleep(1);
            else
                test::AwaitSleepers(1), AdvanceClock(1);
        }
    });
}

TEST(Clock, SleepCanMoveTheClock)
{
    const VirtualClock clock(1000, KXHost::VirtualSleep::Advances);
    const DWORD tick = GetTickCount();
    const HANDLE event = CreateEventA(nullptr, 0, 0, nullptr);
    std::jthread waiter([=] { EXPECT_EQ(WaitForSingleObject(event, 3000), WAIT_TIMEOUT); });
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
    const std::jthread sleeper([] { Sleep(3'600'000); });
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
    const VirtualClock clock;
    const auto nLeft = 3'600'000 - (GetTickCount() - tick);
    AdvanceClock(nLeft - 20); // the last few milliseconds pass by themselves, on the real clock
}

TEST(Clock, ChangesInAStormOfWaits)
{
    constexpr int kThreads = 3;
    const HANDLE event = CreateEventA(nullptr, 0, 0, nullptr);
    std::atomic<int> nRunning{kThreads};
    test::RunThreads(kThreads + 1, [&](int t) {
        if (t == kThreads) {
            for (; nRunning > 0; std::this_thread::yield()) {
                KXHost::UseVirtualClock(0);
                AdvanceClock(1);
                KXHost::UseRealClock();
            }
            return;
        }
        DWORD last = GetTickCount();
        for (int i = 0; i < 200; ++i) {
            if (t == 0)
                Sleep(1);
            else
                WaitForSingleObject(event, 1);
            const DWORD now = GetTickCount();
            EXPECT_GE(static_cast<std::int32_t>(now - last), 1) << "too short, or the clock went back";
            last = now;
        }
        --nRunning;
    });
    CloseHandle(event);
}

} // namespace
