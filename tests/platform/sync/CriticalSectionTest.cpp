#include "include/platform/Sync.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

struct Section : CRITICAL_SECTION
{
    Section() { InitializeCriticalSection(this); }
    ~Section() { DeleteCriticalSection(this); }
    // Whether another thread could take it now; it gives it back.
    bool IsFree()
    {
        bool bTaken = false;
        std::thread([&] {
            bTaken = TryEnterCriticalSection(this);
            LeaveCriticalSection(this); // of another's, changes nothing
        }).join();
        return bTaken;
    }
};

TEST(CriticalSection, OwnerTakesItAgainAndLeavesItAsOften)
{
    Section section;
    EXPECT_TRUE(section.IsFree());
    EnterCriticalSection(&section);
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(section.IsFree()) << i;
        LeaveCriticalSection(&section);
    }
    EXPECT_TRUE(section.IsFree());
    LeaveCriticalSection(&section); // once too often
    EXPECT_TRUE(section.IsFree());
}

TEST(CriticalSection, NullIsLeftAlone)
{
    InitializeCriticalSection(nullptr);
    EnterCriticalSection(nullptr);
    EXPECT_FALSE(TryEnterCriticalSection(nullptr));
    LeaveCriticalSection(nullptr);
    DeleteCriticalSection(nullptr);
}

TEST(CriticalSection, ExcludesManyThreads)
{
    constexpr int kThreads = 6, kRounds = 5000;
    Section section;
    long nCount = 0; // no atomic: the lock alone keeps it
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRounds; ++i) {
                if ((i + t) % 3 == 0)
                    while (!TryEnterCriticalSection(&section))
                        std::this_thread::yield();
                else
                    EnterCriticalSection(&section);
                EnterCriticalSection(&section);
                const long nSeen = nCount;
                if (i % 64 == 0) std::this_thread::yield(); // lets others run into the lock and fall asleep
                nCount = nSeen + 1;
                LeaveCriticalSection(&section);
                LeaveCriticalSection(&section);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(nCount, kThreads * kRounds);
}

// Threads that hold the lock nearly always, and take it again at once, let the others have it too.
TEST(CriticalSection, NobodyStarves)
{
    Section section;
    std::atomic<int> nServed{0};
    std::vector<std::thread> threads;
    for (int hog = 0; hog < 3; ++hog)
        threads.emplace_back([&] {
            while (nServed < 3 * 20) {
                EnterCriticalSection(&section);
                for (int i = 0; i < 20000 && nServed < 3 * 20; ++i)
                    std::atomic_signal_fence(std::memory_order_seq_cst);
                LeaveCriticalSection(&section);
            }
        });
    for (int meek = 0; meek < 3; ++meek)
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) {
                EnterCriticalSection(&section);
                ++nServed;
                LeaveCriticalSection(&section);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(nServed, 60);
}

} // namespace
