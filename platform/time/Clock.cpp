#include "platform/time/Clock.h"

#include "include/platform/Clock.h"
#include "include/platform/Host.h"
#include "include/platform/Sync.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"
#include "platform/time/Alarm.h"

#include <algorithm>
#include <atomic>
#include <sched.h>

namespace kx::time {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

// The virtual clock stops here, so that every deadline of a wait lies below kNever.
constexpr Moment kLatest = kNever - std::chrono::hours(24 * 365 * 100);

struct VirtualState
{
    Moment now{};
    Moment begin{};              // when it read `wall`
    std::int64_t wall = 0;       // seconds since 1970
    bool sleepersMoveIt = false; // VirtualSleep::Advances
};

constinit std::atomic<bool> g_bVirtual{false};
// The time that the real clock is ahead of the system's, from the virtual times before.
constinit std::atomic<std::int64_t> g_ahead{0};
constinit sync::Mutex g_lock; // also guards changes of the two above
constinit VirtualState g_virtual KX_GUARDED_BY(g_lock);
[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Clock, []() -> sync::Mutex& { return g_lock; });

nanoseconds SystemNow() noexcept
{
    std::timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return seconds(now.tv_sec) + nanoseconds(now.tv_nsec);
}

Moment RealNow() noexcept
{
    return Moment(SystemNow() + nanoseconds(g_ahead.load(std::memory_order_relaxed)));
}

std::int64_t SaturatingAdd(std::int64_t a, std::int64_t b) noexcept
{
    std::int64_t sum;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    return a < 0 ? INT64_MIN : INT64_MAX;
}

std::timespec VirtualWall(const VirtualState& state) noexcept
{
    const nanoseconds passed = state.now - state.begin;
    const auto whole = std::chrono::floor<seconds>(passed);
    return {SaturatingAdd(state.wall, whole.count()), (passed - whole).count()};
}

// Returns the new time.
Moment Move(std::uint64_t nMilliseconds) noexcept KX_REQUIRES(g_lock)
{
    const auto room = std::chrono::floor<milliseconds>(kLatest - g_virtual.now).count();
    const auto step = std::min<std::uint64_t>(nMilliseconds, static_cast<std::uint64_t>(room));
    g_virtual.now += milliseconds(static_cast<std::int64_t>(step));
    return g_virtual.now;
}

} // namespace

Moment Monotonic::now() noexcept
{
    if (!IsVirtual()) {
        const Moment now = RealNow();
        if (!IsVirtual()) return now; // taken before any change to a virtual clock, which begins no earlier
    }
    const sync::MutexLock lock(g_lock);
    return IsVirtual() ? g_virtual.now : RealNow();
}

Moment DeadlineAfter(DWORD dwMilliseconds) noexcept
{
    return dwMilliseconds == INFINITE ? kNever : Now() + milliseconds(dwMilliseconds);
}

std::int64_t WallSeconds() noexcept
{
    return IsVirtual() ? WallTime().tv_sec : std::time(nullptr);
}

std::timespec WallTime() noexcept
{
    if (IsVirtual()) {
        const sync::MutexLock lock(g_lock);
        if (IsVirtual()) return VirtualWall(g_virtual);
    }
    std::timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

bool IsVirtual() noexcept
{
    return g_bVirtual.load(std::memory_order_acquire);
}

std::timespec ToSystem(Moment moment) noexcept
{
    const auto time = std::max(nanoseconds(0), moment.time_since_epoch() -
                                                   nanoseconds(g_ahead.load(std::memory_order_relaxed)));
    const auto whole = std::chrono::floor<seconds>(time);
    return {whole.count(), (time - whole).count()};
}

bool SkipSleep(DWORD dwMilliseconds)
{
    if (!IsVirtual()) return false;
    Moment now;
    {
        const sync::MutexLock lock(g_lock);
        if (!IsVirtual() || !g_virtual.sleepersMoveIt) return false;
        now = Move(dwMilliseconds);
    }
    Alarm::RingDue(now);
    return true;
}

} // namespace kx::time

DWORD GetTickCount() noexcept
{
    const auto since = kx::time::Now().time_since_epoch();
    return static_cast<DWORD>(std::chrono::floor<std::chrono::milliseconds>(since).count());
}

void Sleep(DWORD dwMilliseconds)
{
    if (dwMilliseconds == 0) {
        sched_yield();
        return;
    }
    if (dwMilliseconds != INFINITE && kx::time::SkipSleep(dwMilliseconds)) return;
    kx::sync::Word word{0};
    kx::time::Alarm alarm(word, kx::time::DeadlineAfter(dwMilliseconds));
    while (alarm.Wait(word.load(std::memory_order_acquire))) {
    }
}

void KXHost::UseVirtualClock(std::int64_t nWallSeconds, VirtualSleep sleep)
{
    using namespace kx::time;
    // A thread that sleeps for the real clock may go on: AdvanceClock wakes it, and if the real time comes
    // first it looks at the clock again.
    const kx::sync::MutexLock lock(g_lock);
    const bool bAlready = g_bVirtual.exchange(true);
    const Moment now = bAlready ? g_virtual.now : std::min(RealNow(), kLatest);
    g_virtual = {now, now, nWallSeconds, sleep == VirtualSleep::Advances};
}

void KXHost::AdvanceClock(std::uint64_t nMilliseconds)
{
    using namespace kx::time;
    Moment now;
    {
        const kx::sync::MutexLock lock(g_lock);
        if (!IsVirtual()) return;
        now = Move(nMilliseconds);
    }
    Alarm::RingDue(now);
}

void KXHost::UseRealClock()
{
    using namespace kx::time;
    {
        const kx::sync::MutexLock lock(g_lock);
        if (!IsVirtual()) return;
        g_ahead.store((g_virtual.now.time_since_epoch() - SystemNow()).count(), std::memory_order_relaxed);
        g_bVirtual.store(false, std::memory_order_release);
    }
    Alarm::RingAll();
}

int KXHost::ClockWaiters()
{
    return kx::time::Alarm::CountWaiting();
}
