#include "platform/crash/Filtering.h"

#include "platform/module/Door.h"
#include "platform/sync/Futex.h"

#include <cstdlib>
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

// A filter that ends the process never leaves, and then the process ends here by its signal.
void AwaitFilter() noexcept
{
    for (std::uint32_t owner; (owner = g_owner.load(std::memory_order_acquire)) != 0 && owner != Self();)
        sync::FutexWait(g_owner, owner);
}

// The lowest number that a library may use runs last of its destructors.
[[gnu::destructor(101)]] void AwaitFilterLast() noexcept
{
    AwaitFilter();
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
        if (g_owner.compare_exchange_strong(owner, self, std::memory_order_acquire)) {
            module::ShutDoors(true);
            return true;
        }
        if (owner == self) return false;
        sync::FutexWait(g_owner, owner);
    }
}

void LeaveFilter() noexcept
{
    module::ShutDoors(false);
    g_owner.store(0, std::memory_order_release);
    sync::FutexWake(g_owner);
}

void HoldExits() noexcept
{
    [[maybe_unused]] static const int nRegistered = std::atexit(AwaitFilter);
}

} // namespace kx::crash
