#pragma once

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

// Sleeping on a 32-bit word until another thread changes it. A wait also returns early for reasons of its
// own, so callers look at the word again. A wake uses the word's address only: what it stands in may be gone
// by then. errno stays as it was.

namespace kx::sync {

using Word = std::atomic<std::uint32_t>;
static_assert(sizeof(Word) == sizeof(std::uint32_t) && Word::is_always_lock_free);

inline constexpr std::uint32_t kAnySleeper = 0xFFFFFFFF;

inline void Futex(const Word& word, int nOperation, std::uint32_t value, const std::timespec* pEnd,
                  std::uint32_t mask) noexcept
{
    const int nSaved = errno;
    syscall(SYS_futex, &word, nOperation | FUTEX_PRIVATE_FLAG, value, pEnd, nullptr, mask);
    errno = nSaved;
}

// Sleeps while the word holds `seen`, or up to a moment of the system's monotonic time. A mask lets a waker
// choose among the sleepers.
inline void FutexWait(const Word& word, std::uint32_t seen, std::uint32_t mask = kAnySleeper,
                      const std::timespec* pEnd = nullptr) noexcept
{
    Futex(word, FUTEX_WAIT_BITSET, seen, pEnd, mask);
}

// Wakes up to that many sleepers whose mask shares a bit with this one, the longest asleep first.
inline void FutexWake(const Word& word, int nCount = INT_MAX, std::uint32_t mask = kAnySleeper) noexcept
{
    Futex(word, FUTEX_WAKE_BITSET, static_cast<std::uint32_t>(nCount), nullptr, mask);
}

} // namespace kx::sync
