#pragma once

#include "platform/sync/Mutex.h"

#include <cstdint>

// Steps of the library around a fork. Its locks that a child needs are taken before it, in their order, and
// are free behind it on both sides: so what they guard is whole in the child, which has the forking thread
// alone.

namespace kx::sync {

// In the order in which locks may be taken: who holds one takes only those behind it.
enum class ForkOrder : std::uint8_t
{
    Client, // what uses the platform: the log
    Filter,
    Profile,
    Executable,
    CurrentDirectory,
    Drives,
    Names,
    Text,
    Debug,
    Handles,
    Alarms,
    Clock,
    Zone,
};

struct ForkStep
{
    ForkOrder order;
    void (*pfnBefore)() noexcept;
    void (*pfnAfter)(bool bChild) noexcept;
};

// Adds a step to every later fork. True, so that a static object's initialisation can do it; false where
// there is no room for another.
bool AtFork(const ForkStep& step) noexcept;

// A step for a lock, which a lambda without captures gives.
template <class LockOf>
bool LockAtFork(ForkOrder order, LockOf) noexcept
{
    struct Step
    {
        static void Take() noexcept KX_ACQUIRE(LockOf()()) { LockOf()().lock(); }
        static void Give(bool) noexcept KX_RELEASE(LockOf()()) { LockOf()().unlock(); }
    };
    return AtFork({order, Step::Take, Step::Give});
}

} // namespace kx::sync
