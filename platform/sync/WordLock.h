#pragma once

#include "platform/sync/Futex.h"

#include <sys/single_threaded.h>

namespace kx::sync {

// A mutex of one word, taken and let go in line while nobody waits: for what is locked so often and so
// shortly that the calls of another would be most of it. Neither fair nor recursive. In a process that has
// had no second thread its steps aren't atomic.
class WordLock
{
public:
    void lock() noexcept
    {
        std::uint32_t free = 0;
        if (__libc_single_threaded) return m_word.store(kTaken, std::memory_order_relaxed);
        if (m_word.compare_exchange_strong(free, kTaken, std::memory_order_acquire,
                                           std::memory_order_relaxed))
            return;
        while (m_word.exchange(kAwaited, std::memory_order_acquire) != 0)
            FutexWait(m_word, kAwaited);
    }
    void unlock() noexcept
    {
        if (__libc_single_threaded) return m_word.store(0, std::memory_order_relaxed);
        if (m_word.exchange(0, std::memory_order_release) == kAwaited) FutexWake(m_word, 1);
    }

private:
    static constexpr std::uint32_t kTaken = 1;
    static constexpr std::uint32_t kAwaited = 2; // taken, and others may sleep

    Word m_word{0};
};

} // namespace kx::sync
