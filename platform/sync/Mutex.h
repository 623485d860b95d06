#pragma once

#include "include/platform/ThreadSafety.h"

#include <ctime>
#include <mutex>

// The library's lock, known to clang's thread-safety analysis: a member that a lock guards is declared with
// KX_GUARDED_BY, a function that needs the lock held with KX_REQUIRES, and -Wthread-safety finds what breaks
// that. docs/architecture.md lists the locks in the order in which they may be taken.

#define KX_TRY_ACQUIRE(...) KX_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define KX_RETURN_LOCK(lock) KX_THREAD_ATTRIBUTE(lock_returned(lock))
#define KX_ASSERT_HELD() KX_THREAD_ATTRIBUTE(assert_capability(this))

namespace kx::sync {

// Neither fair nor recursive. Its constructor is constexpr, so a static one needs no order of construction.
class KX_CAPABILITY("mutex") Mutex
{
public:
    constexpr Mutex() noexcept = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() noexcept KX_ACQUIRE() { m_mutex.lock(); }
    void unlock() noexcept KX_RELEASE() { m_mutex.unlock(); }
    bool try_lock() noexcept KX_TRY_ACQUIRE(true) { return m_mutex.try_lock(); }
    // Tells the analysis that this thread holds it, where the lock came in a way that it doesn't follow.
    void AssertHeld() const noexcept KX_ASSERT_HELD() {}

    // Tries for a tenth of a second or some more: for a process that has crashed, where the thread that holds
    // the lock may be the one that asks.
    bool TryLockBriefly() noexcept KX_TRY_ACQUIRE(true)
    {
        constexpr timespec kNap{0, 1'000'000};
        constexpr int kNaps = 100;
        for (int n = 0; n < kNaps; ++n) {
            if (m_mutex.try_lock()) return true;
            nanosleep(&kNap, nullptr);
        }
        return m_mutex.try_lock();
    }

private:
    std::mutex m_mutex;
};

// Holds a Mutex for its scope. It may be let go and taken again in between, as a queue does that waits.
class KX_SCOPED_CAPABILITY MutexLock
{
public:
    explicit MutexLock(Mutex& mutex) noexcept KX_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() KX_RELEASE()
    {
        if (m_bHeld) m_mutex.unlock();
    }

    void lock() noexcept KX_ACQUIRE()
    {
        m_mutex.lock();
        m_bHeld = true;
    }
    void unlock() noexcept KX_RELEASE()
    {
        m_bHeld = false;
        m_mutex.unlock();
    }

private:
    Mutex& m_mutex;
    bool m_bHeld = true;
};

// Lets a Mutex that this thread holds be free for its scope.
class KX_SCOPED_CAPABILITY MutexUnlock
{
public:
    explicit MutexUnlock(Mutex& mutex) noexcept KX_RELEASE(mutex) : m_mutex(mutex) { m_mutex.unlock(); }
    MutexUnlock(const MutexUnlock&) = delete;
    MutexUnlock& operator=(const MutexUnlock&) = delete;
    ~MutexUnlock() KX_RELEASE() { m_mutex.lock(); }

private:
    Mutex& m_mutex;
};

} // namespace kx::sync
