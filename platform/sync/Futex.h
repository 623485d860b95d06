#pragma once

#include <atomic>
#include <climits>
#include <cstdint>
#include <ctime>

// Sleeping on a 32-bit word until another thread changes it. A wait also returns early for reasons of its
// own, so callers look at the word again. A wake uses the word's address only: what it stands in may be gone
// by then. errno stays as it was.

namespace kx::sync {

using Word = std::atomic<std::uint32_t>;

inline constexpr std::uint32_t kAnySleeper = 0xFFFFFFFF;

// Sleeps while the word holds `seen`. A mask lets a waker choose among the sleepers.
void FutexWait(const Word& word, std::uint32_t seen, std::uint32_t mask = kAnySleeper) noexcept;
// The same up to a moment of the system's monotonic time.
void FutexWaitUntil(const Word& word, std::uint32_t seen, const std::timespec& end) noexcept;

// Wakes up to that many sleepers whose mask shares a bit with this one, the longest asleep first.
void FutexWake(const Word& word, int nCount = INT_MAX, std::uint32_t mask = kAnySleeper) noexcept;

} // namespace kx::sync
