#include "platform/crash/Filtering.h"

#include "platform/sync/Futex.h"

#include <pthread.h>
#include <unistd.h>

namespace kx::crash {

namespace {

constinit sync::Word g_owner{0}; // the thread's number, 0 for none

// A forked child has none of its parent's threads.
[[maybe_unused]] const int g_atFork = pthread_atfork(nullptr, nullptr, [] { g_owner.store(0); });

std::uint32_t Self() noexcept
{
    return static_cast<std::uint32_t>(gettid());
}

} // namespace

bool InFilter() noexcept
{
    const std::uint32_t owner = g_owner.load(std::memory_order_relaxed);
    return owner != 0 && owner == Self();
}

bool EnterFilter() noexcept
{
    const std::uint32_t self = Self();
    for (;;) {
        std::uint32_t owner = 0;
        if (g_owner.compare_exchange_strong(owner, self, std::memory_order_acquire)) return true;
        if (owner == self) return false;
        sync::FutexWait(g_owner, owner);
    }
}

void LeaveFilter() noexcept
{
    g_owner.store(0, std::memory_order_release);
    sync::FutexWake(g_owner);
}

} // namespace kx::crash
