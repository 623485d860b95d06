#pragma once

#include "platform/sync/Mutex.h"
#include "platform/time/Alarm.h"

namespace kx::time {

// A condition variable whose waits end by the clock. It works with any lock that has lock() and unlock(); the
// state that is waited for changes under that lock, and the notice may be given inside or outside of it.
// It must outlive every wait on it.
class Condition
{
public:
    Condition() = default;
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    // No system call when nobody waits. One notice reaches one waiter at least.
    void NotifyOne() noexcept { Notify(1); }
    void NotifyAll() noexcept { Notify(INT_MAX); }

    // Gives the lock up, sleeps until a notice or the deadline, and takes it again. False if the deadline had
    // come; true may also mean nothing, so look at the state.
    template <class Lock>
    bool WaitUntil(Lock& lock, Moment deadline) KX_NO_LOCK_ANALYSIS
    {
        const std::uint32_t seen = Enter();
        lock.unlock();
        const bool bInTime = SleepUntil(seen, deadline);
        lock.lock();
        return bInTime;
    }

    // Waits until `ready()`, which is called under the lock, gives true; its result when the deadline has
    // come.
    template <class Lock, class Ready>
    bool WaitUntil(Lock& lock, Moment deadline, Ready ready) KX_NO_LOCK_ANALYSIS
    {
        while (!ready())
            if (!WaitUntil(lock, deadline)) return ready();
        return true;
    }

private:
    std::uint32_t Enter() noexcept
    {
        m_nWaiters.fetch_add(1);
        return m_sequence.load();
    }
    bool SleepUntil(std::uint32_t seen, Moment deadline) noexcept
    {
        const bool bInTime = Alarm(m_sequence, deadline).Wait(seen);
        m_nWaiters.fetch_sub(1);
        return bInTime;
    }
    // Both sides make their own mark before they look for the other's, so one of them sees it.
    void Notify(int nWaiters) noexcept
    {
        m_sequence.fetch_add(Alarm::kRing);
        if (m_nWaiters.load() != 0) sync::FutexWake(m_sequence, nWaiters);
    }

    sync::Word m_sequence{0};
    std::atomic<int> m_nWaiters{0};
};

} // namespace kx::time
