#include "include/platform/Error.h"
#include "include/platform/Sync.h"
#include "tests/platform/sync/Await.h"

#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

HANDLE Start(unsigned (*pfn)(void*), void* pArg, unsigned nStack = 0, unsigned* pId = nullptr)
{
    return reinterpret_cast<HANDLE>(_beginthreadex(nullptr, nStack, pfn, pArg, 0, pId));
}

struct Room
{
    HANDLE door = CreateEventA(nullptr, 1, 0, nullptr);
    std::atomic<DWORD> nInside{0};
    std::atomic<bool> bLeft{false};
    Room() = default;
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;
    ~Room() { CloseHandle(door); }
};

// Its end takes a while, as the end of a thread-local object may.
struct Guest
{
    Room* room = nullptr;
    Guest() = default;
    Guest(const Guest&) = delete;
    Guest& operator=(const Guest&) = delete;
    ~Guest()
    {
        for (int i = 0; i < 50; ++i)
            std::this_thread::yield();
        room->bLeft = true;
    }
};

unsigned Visit(void* pRoom)
{
    thread_local Guest guest;
    guest.room = static_cast<Room*>(pRoom);
    guest.room->nInside = GetCurrentThreadId();
    WaitForSingleObject(guest.room->door, INFINITE);
    return 7;
}

TEST(Thread, IsSignalledOnceItHasEndedWithItsThreadLocals)
{
    Room room;
    unsigned nId = 0;
    const HANDLE thread = Start(Visit, &room, 64 * 1024, &nId);
    ASSERT_NE(thread, nullptr);
    test::Await([&] { return room.nInside != 0; });
    EXPECT_EQ(nId, room.nInside);
    EXPECT_NE(nId, GetCurrentThreadId());
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
    EXPECT_FALSE(SetEvent(thread)); // no event
    EXPECT_FALSE(ResetEvent(thread));
    SetEvent(room.door);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(room.bLeft);
    }
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Thread, OutlivesItsHandle)
{
    const int nLive = KXHost::LiveHandles();
    {
        Room room;
        EXPECT_TRUE(CloseHandle(Start(Visit, &room)));
        EXPECT_EQ(KXHost::LiveHandles(), nLive + 1); // the door
        SetEvent(room.door);
        test::Await([&] { return room.bLeft.load(); });
    }
    EXPECT_EQ(KXHost::LiveHandles(), nLive);
}

TEST(Thread, IsAwaitedBySeveral)
{
    Room room;
    const HANDLE thread = Start(Visit, &room);
    std::atomic<int> nReleased{0};
    const auto wait = [&] {
        nReleased += WaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0 && room.bLeft;
    };
    std::thread first(wait), second(wait);
    SetEvent(room.door);
    first.join();
    second.join();
    EXPECT_EQ(nReleased, 2);
    CloseHandle(thread);
}

TEST(Thread, FailsToStartWithoutRoomForItsStack)
{
    unsigned long nPages = 0;
    std::FILE* file = std::fopen("/proc/self/statm", "r");
    ASSERT_EQ(std::fscanf(file, "%lu", &nPages), 1);
    std::fclose(file);
    const int nLive = KXHost::LiveHandles();
    rlimit old{};
    getrlimit(RLIMIT_AS, &old);
    const rlimit tight{nPages * static_cast<unsigned long>(getpagesize()) + (64ul << 20), old.rlim_max};
    setrlimit(RLIMIT_AS, &tight);
    Room room;
    const HANDLE thread = Start(Visit, &room, 1u << 30);
    setrlimit(RLIMIT_AS, &old);
    EXPECT_EQ(thread, nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(room.nInside, 0u);
    EXPECT_EQ(Start(nullptr, &room), nullptr);
    EXPECT_EQ(KXHost::LiveHandles(), nLive + 1); // the door
}

TEST(ThreadDeathTest, EscapingExceptionEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto start = [] {
        const HANDLE thread = Start([](void*) -> unsigned { throw 1; }, nullptr);
        WaitForSingleObject(thread, INFINITE);
    };
    EXPECT_EXIT(start(), testing::KilledBySignal(SIGABRT), "");
}

TEST(Thread, NumbersAreTheSystemsAlsoAfterAFork)
{
    EXPECT_EQ(GetCurrentThreadId(), static_cast<DWORD>(gettid()));
    EXPECT_EQ(GetCurrentProcessId(), static_cast<DWORD>(getpid()));
    const pid_t child = fork();
    if (child == 0) _exit(GetCurrentThreadId() == static_cast<DWORD>(getpid()) ? 0 : 1);
    int nStatus = -1;
    waitpid(child, &nStatus, 0);
    EXPECT_EQ(nStatus, 0);
}

TEST(Interlocked, CountsAcrossThreads)
{
    volatile long nValue = 41;
    EXPECT_EQ(InterlockedIncrement(&nValue), 42);
    EXPECT_EQ(InterlockedDecrement(&nValue), 41);
    EXPECT_EQ(InterlockedExchange(&nValue, 0), 41);
    const auto count = [&] {
        for (int i = 0; i < 10000; ++i)
            InterlockedIncrement(&nValue);
    };
    std::thread first(count), second(count);
    first.join();
    second.join();
    EXPECT_EQ(InterlockedExchange(&nValue, 5), 20000);
}

} // namespace
