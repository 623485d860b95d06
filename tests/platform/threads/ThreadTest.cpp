#include "include/platform/Error.h"
#include "include/platform/Sync.h"
#include "tests/support/Test.h"

namespace {

constexpr DWORD kWaiting = 12345;

struct Event : test::Fixed
{
    explicit Event(bool bManual, bool bSet = false) : handle(CreateEventA(nullptr, bManual, bSet, nullptr)) {}
    ~Event() { CloseHandle(handle); }
    operator HANDLE() const { return handle; }
    bool Poll() const { return WaitForSingleObject(handle, 0) == WAIT_OBJECT_0; }

    const HANDLE handle;
};

// Threads that began to wait for an event in the order of their numbers, with a time-out of a virtual clock.
struct Waiters
{
    Waiters(HANDLE event, const std::vector<DWORD>& timeouts) : results(timeouts.size())
    {
        for (std::size_t i = 0; i < timeouts.size(); ++i) {
            results[i] = kWaiting;
            threads.emplace_back([=, this] { results[i] = WaitForSingleObject(event, timeouts[i]); });
            test::AwaitSleepers(static_cast<int>(i + 1));
        }
    }
    void Expect(const std::vector<DWORD>& expected) const
    {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            test::Await([&] { return expected[i] == kWaiting || results[i] != kWaiting; });
            EXPECT_EQ(results[i], expected[i]) << i;
        }
    }

    std::vector<std::atomic<DWORD>> results;
    std::vector<std::jthread> threads;
};

TEST(Event, KeepsItsSignalByItsKind)
{
    for (const bool bManual : {true, false}) {
        const Event event(bManual, true);
        EXPECT_TRUE(event.Poll());
        EXPECT_EQ(event.Poll(), bManual);
        EXPECT_TRUE(SetEvent(event));
        EXPECT_TRUE(SetEvent(event)); // with nobody waiting two signals are one
        EXPECT_TRUE(event.Poll());
        EXPECT_EQ(event.Poll(), bManual);
    }
}

// A later event may have the place in memory that the closed one had, but never its handle.
TEST(Event, InvalidAndClosedHandlesFailQuietly)
{
    const HANDLE closed = CreateEventA(nullptr, 1, 0, nullptr);
    CloseHandle(closed);
    const Event later(true);
    const test::NoLeak noLeak;
    int nInvented = 0;
    for (const HANDLE handle : {HANDLE{nullptr}, INVALID_HANDLE_VALUE, HANDLE{&nInvented}, closed}) {
        for (int (*pfn)(HANDLE) : {SetEvent, CloseHandle}) {
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(pfn(handle), 0);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        }
        EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_FAILED);
    }
    EXPECT_FALSE(later.Poll());
}

TEST(Event, AutomaticSignalsReleaseOneEachInTheOrderOfWaiting)
{
    const test::VirtualClock clock;
    const Event event(false);
    const Waiters waiters(event, {1000, 50, 1000, 1000});
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
    const Event event(true);
    const Waiters waiters(event, {1000, 1000, 1000});
    SetEvent(event);
    waiters.Expect({WAIT_OBJECT_0, WAIT_OBJECT_0, WAIT_OBJECT_0});
    EXPECT_TRUE(event.Poll());
}

// Signals and time-outs that meet: each signal ends exactly one wait.
TEST(Event, NoSignalIsLostOrCountedTwice)
{
    constexpr int kSignals = 400;
    const test::VirtualClock clock;
    const Event event(false);
    std::atomic<int> nTaken{0}, nWaiting{3};
    test::RunThreads(5, [&](int t) {
        if (t == 0)
            for (int i = 1; i <= kSignals; ++i) {
                SetEvent(event);
                test::Await([&] { return nTaken >= i; });
                EXPECT_EQ(nTaken, i);
            }
        else if (t == 1)
            for (; nWaiting > 0; std::this_thread::yield())
                KXHost::AdvanceClock(1);
        else {
            while (nTaken < kSignals)
                nTaken += WaitForSingleObject(event, 2) == WAIT_OBJECT_0;
            --nWaiting;
        }
    });
    EXPECT_EQ(nTaken, kSignals);
}

// The waiter closes the event as soon as it is released, while SetEvent may still run.
TEST(Event, ReleasedThreadMayCloseIt)
{
    constexpr int kRounds = 600;
    const test::NoLeak noLeak;
    std::atomic<HANDLE> handed{nullptr};
    test::RunThreads(2, [&](int t) {
        for (int i = 0; i < kRounds; ++i) {
            HANDLE event = t == 0 ? CreateEventA(nullptr, i % 2, 0, nullptr) : nullptr;
            if (t == 0) {
                handed = event;
                EXPECT_EQ(WaitForSingleObject(event, i % 3 ? INFINITE : 1'000'000), WAIT_OBJECT_0);
                CloseHandle(event);
            } else {
                test::Await([&] { return (event = handed.exchange(nullptr)) != nullptr; });
                if (i % 4) std::this_thread::yield(); // mostly the waiter sleeps by then
                SetEvent(event);
            }
        }
    });
}

// A thread that stays until the door opens, and whose thread-local object takes a while to end.
class Room : test::Fixed
{
public:
    explicit Room(unsigned nStack = 0)
        : handle(reinterpret_cast<HANDLE>(_beginthreadex(nullptr, nStack, Visit, this, 0, &nId)))
    {
    }
    ~Room() { CloseHandle(door); }

    const HANDLE door = CreateEventA(nullptr, 1, 0, nullptr);
    std::atomic<DWORD> nInside{0};
    std::atomic<bool> bLeft{false};
    unsigned nId = 0;
    const HANDLE handle;

private:
    struct Guest
    {
        Room* room = nullptr;
        ~Guest()
        {
            for (int i = 0; i < 50; ++i)
                std::this_thread::yield();
            room->bLeft = true;
        }
    };
    static unsigned Visit(void* pRoom)
    {
        thread_local Guest guest;
        guest.room = static_cast<Room*>(pRoom);
        guest.room->nInside = GetCurrentThreadId();
        WaitForSingleObject(guest.room->door, INFINITE);
        return 7;
    }
};

TEST(Thread, IsSignalledForAllOnceItHasEndedWithItsThreadLocals)
{
    Room room(64 * 1024);
    ASSERT_NE(room.handle, nullptr);
    test::Await([&] { return room.nInside != 0; });
    EXPECT_EQ(room.nId, room.nInside);
    EXPECT_NE(room.nId, GetCurrentThreadId());
    EXPECT_EQ(WaitForSingleObject(room.handle, 0), WAIT_TIMEOUT);
    EXPECT_FALSE(SetEvent(room.handle)); // no event
    test::RunThreads(3, [&](int t) {
        if (t == 0) SetEvent(room.door);
        EXPECT_EQ(WaitForSingleObject(room.handle, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(room.bLeft);
    });
    EXPECT_EQ(WaitForSingleObject(room.handle, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(room.handle));
}

TEST(Thread, OutlivesItsHandle)
{
    const int nLive = KXHost::LiveHandles();
    Room room;
    EXPECT_EQ(KXHost::LiveHandles(), nLive + 2); // with the door
    EXPECT_TRUE(CloseHandle(room.handle));
    EXPECT_EQ(KXHost::LiveHandles(), nLive + 1);
    SetEvent(room.door);
    test::Await([&] { return room.bLeft.load(); });
}

TEST(Thread, FailsToStartWithoutRoomForItsStack)
{
    rlim_t nPages = 0;
    std::ifstream("/proc/self/statm") >> nPages;
    rlimit old{};
    getrlimit(RLIMIT_AS, &old);
    const rlimit tight{nPages * static_cast<rlim_t>(getpagesize()) + (64u << 20), old.rlim_max};
    setrlimit(RLIMIT_AS, &tight);
    const Room room(1u << 30);
    setrlimit(RLIMIT_AS, &old);
    EXPECT_EQ(room.handle, nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(room.nInside, 0u);
    EXPECT_EQ(_beginthreadex(nullptr, 0, nullptr, nullptr, 0, nullptr), 0u);
}

TEST(ThreadDeathTest, EscapingExceptionEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    unsigned (*const pfnThrow)(void*) = [](void*) -> unsigned { throw 1; };
    EXPECT_EXIT(
        WaitForSingleObject(
            reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, pfnThrow, nullptr, 0, nullptr)), INFINITE),
        testing::KilledBySignal(SIGABRT), "");
}

TEST(Thread, NumbersAreTheSystemsAlsoAfterAFork)
{
    EXPECT_EQ(GetCurrentThreadId(), static_cast<DWORD>(gettid()));
    EXPECT_EQ(GetCurrentProcessId(), static_cast<DWORD>(getpid()));
    EXPECT_EQ(test::InFork([] { return GetCurrentThreadId() == static_cast<DWORD>(getpid()); }), 1);
}

} // namespace
