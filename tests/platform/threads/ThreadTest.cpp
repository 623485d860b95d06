#include "include/platform/Error.h"
#include "include/platform/Sync.h"
#include "tests/support/Test.h"

namespace {

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
