#include "include/platform/Sync.h"

#include "platform/sync/AlternateStack.h"
#include "platform/sync/Futex.h"

#include <chrono>

namespace {

using kx::sync::FutexWait;
using kx::sync::FutexWake;

// The bits of `state`. After kStarving has been set, the section can only be taken by a thread that has
// waited too long; such threads sleep under a mask of their own, so that the wake finds one of them.
constexpr std::uint32_t kTaken = 1;
constexpr std::uint32_t kSleepers = 2;
constexpr std::uint32_t kStarving = 4;

constexpr std::uint32_t kPatientMask = 1;
constexpr std::uint32_t kStarvingMask = 2;

constexpr std::chrono::milliseconds kPatience{1};
constexpr int kLongestSpin = 64;

// Its address is the thread's name in `owner`: unlike the system's thread number it survives a fork.
[[gnu::tls_model("initial-exec")]] constinit thread_local char t_self = 0;

void Pause() noexcept
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

std::uintptr_t Self() noexcept
{
    return reinterpret_cast<std::uintptr_t>(&t_self);
}

bool IsOwner(const CRITICAL_SECTION& section) noexcept
{
    return section.owner.load(std::memory_order_relaxed) == Self();
}

bool TryTake(CRITICAL_SECTION& section) noexcept
{
    std::uint32_t free = 0;
    return section.state.compare_exchange_strong(free, kTaken, std::memory_order_acquire,
                                                 std::memory_order_relaxed);
}

// Looks ever more rarely, which leaves the owner its cache line: two threads that only lock and unlock get
// three times as far as with a look after every pause.
bool SpinTake(CRITICAL_SECTION& section) noexcept
{
    for (int nPauses = 1; nPauses <= kLongestSpin; nPauses *= 2) {
        for (int i = 0; i < nPauses; ++i)
            Pause();
        if (section.state.load(std::memory_order_relaxed) == 0 && TryTake(section)) return true;
    }
    return false;
}

// A thread that takes the section here leaves kSleepers set, as others may still sleep.
void SleepTake(CRITICAL_SECTION& section) noexcept
{
    const auto patienceEnds = std::chrono::steady_clock::now() + kPatience;
    bool bStarving = false;
    std::uint32_t seen = section.state.load(std::memory_order_relaxed);
    for (;;) {
        if (!(seen & kTaken) && (bStarving || !(seen & kStarving))) {
            if (section.state.compare_exchange_weak(seen, kTaken | kSleepers, std::memory_order_acquire,
                                                    std::memory_order_relaxed))
                return;
            continue;
        }
        const std::uint32_t marked = seen | kSleepers | (bStarving ? kStarving : 0);
        if (seen != marked && !section.state.compare_exchange_weak(seen, marked, std::memory_order_relaxed))
            continue;
        FutexWait(section.state, marked, bStarving ? kStarvingMask : kPatientMask);
        bStarving = bStarving || std::chrono::steady_clock::now() >= patienceEnds;
        seen = section.state.load(std::memory_order_relaxed);
    }
}

// Wakes one sleeper, which marks the section again if there are more. The section may be gone once it is
// free.
void FreeAndWake(CRITICAL_SECTION& section, std::uint32_t seen) noexcept
{
    std::uint32_t next;
    do
        next = seen & kStarving ? kStarving | kSleepers : 0;
    while (!section.state.compare_exchange_weak(seen, next, std::memory_order_release,
                                                std::memory_order_relaxed));
    if (seen & kStarving)
        FutexWake(section.state, 1, kStarvingMask);
    else if (seen & kSleepers)
        FutexWake(section.state, 1);
}

} // namespace

void InitializeCriticalSection(CRITICAL_SECTION* pSection) noexcept
{
    if (!pSection) return;
    pSection->owner.store(0, std::memory_order_relaxed);
    pSection->recursion = 0;
    pSection->state.store(0, std::memory_order_release);
}

void DeleteCriticalSection(CRITICAL_SECTION* pSection) noexcept
{
    InitializeCriticalSection(pSection);
}

void EnterCriticalSection(CRITICAL_SECTION* pSection) noexcept
{
    if (!pSection) return;
    kx::sync::GuardCaller();
    CRITICAL_SECTION& section = *pSection;
    if (!TryTake(section)) {
        if (IsOwner(section)) {
            ++section.recursion;
            return;
        }
        if (!SpinTake(section)) SleepTake(section);
    }
    section.owner.store(Self(), std::memory_order_relaxed);
}

void LeaveCriticalSection(CRITICAL_SECTION* pSection) noexcept
{
    if (!pSection || !IsOwner(*pSection)) return;
    CRITICAL_SECTION& section = *pSection;
    if (section.recursion > 0) {
        --section.recursion;
        return;
    }
    section.owner.store(0, std::memory_order_relaxed);
    std::uint32_t seen = kTaken;
    if (!section.state.compare_exchange_strong(seen, 0, std::memory_order_release, std::memory_order_relaxed))
        FreeAndWake(section, seen);
}

long InterlockedIncrement(volatile long* pValue) noexcept
{
    return __atomic_add_fetch(pValue, 1, __ATOMIC_SEQ_CST);
}
