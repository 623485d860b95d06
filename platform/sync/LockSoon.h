#pragma once

#include <ctime>
#include <mutex>

namespace kx::sync {

// Locks a mutex that is only ever held for moments, or gives up after a tenth of a second or some more: for a
// process that has crashed, where the thread that holds it may be the one that asks. Nothing is locked then.
inline std::unique_lock<std::mutex> LockSoon(std::mutex& lock) noexcept
{
    constexpr timespec nap{0, 1'000'000};
    constexpr int kNaps = 100;
    std::unique_lock held(lock, std::try_to_lock);
    for (int n = 0; !held && n < kNaps; ++n) {
        nanosleep(&nap, nullptr);
        (void)held.try_lock();
    }
    return held;
}

} // namespace kx::sync
