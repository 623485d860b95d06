#include "include/platform/Sync.h"
#include "tests/support/Test.h"

namespace {

struct Section : CRITICAL_SECTION
{
    Section() { InitializeCriticalSection(this); }
    ~Section() { DeleteCriticalSection(this); }
    bool IsFree() const { return state == 0; }
};

TEST(CriticalSection, OwnerTakesItAgainAndLeavesItAsOften)
{
    Section section;
    EnterCriticalSection(&section);
    EnterCriticalSection(&section);
    std::thread([&] { LeaveCriticalSection(&section); }).join(); // no owner
    for (int i = 0; i < 4; ++i) {                                // twice too often
        EXPECT_EQ(section.IsFree(), i >= 2) << i;
        LeaveCriticalSection(&section);
    }
    LeaveCriticalSection(nullptr);
    EnterCriticalSection(nullptr);
}

TEST(CriticalSection, ExcludesManyThreads)
{
    constexpr int kThreads = 6, kRounds = 2000;
    Section section;
    long nCount = 0; // no atomic: the lock alone keeps it
    test::RunThreads(kThreads, [&](int) {
        for (int i = 0; i < kRounds; ++i) {
            EnterCriticalSection(&section);
            EnterCriticalSection(&section);
            const long nSeen = nCount;
            if (i % 64 == 0) std::this_thread::yield(); // lets others run into the lock and fall asleep
            nCount = nSeen + 1;
            LeaveCriticalSection(&section);
            LeaveCriticalSection(&section);
        }
    });
    EXPECT_EQ(nCount, kThreads * kRounds);
}

// Threads that hold the lock nearly always, and take it again at once, let the others have it too.
TEST(CriticalSection, NobodyStarves)
{
    constexpr int kMeek = 3, kRounds = 20;
    Section section;
    std::atomic<int> nServed{0};
    test::RunThreads(2 * kMeek, [&](int t) {
        const bool bMeek = t < kMeek;
        for (int nRound = 0; bMeek ? nRound < kRounds : nServed < kMeek * kRounds; ++nRound) {
            EnterCriticalSection(&section);
            if (bMeek) ++nServed;
            for (int i = 0; !bMeek && i < 20000 && nServed < kMeek * kRounds; ++i) {
            }
            LeaveCriticalSection(&section);
        }
    });
    EXPECT_EQ(nServed, kMeek * kRounds);
}

TEST(Interlocked, CountsAcrossThreads)
{
    volatile long nValue = 41;
    EXPECT_EQ(InterlockedIncrement(&nValue), 42);
    test::RunThreads(3, [&](int) {
        for (int i = 0; i < 10000; ++i)
            InterlockedIncrement(&nValue);
    });
    EXPECT_EQ(nValue, 30042);
}

} // namespace
