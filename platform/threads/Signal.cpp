#include "platform/threads/Signal.h"

#include "platform/time/Alarm.h"

#include <utility>

namespace kx::threads {

// What the released see of the object, they see after the lock is free again.
void Signal::Set() noexcept
{
    sync::IntrusiveList<Waiter> released;
    {
        const sync::MutexLock lock(m_lock);
        if (m_bManual)
            released.Swap(m_queue);
        else if (Waiter* const longest = m_queue.TakeFirst())
            released.Append(*longest);
        if (m_bManual || released.IsEmpty()) m_bSet = true;
        for (Waiter* waiter = released.First(); waiter; waiter = waiter->next)
            waiter->bQueued = false;
    }
    while (Waiter* waiter = released.TakeFirst()) {
        sync::Word& word = waiter->word;
        word.fetch_or(kReleased, std::memory_order_release);
        sync::FutexWake(word);
    }
}

bool Signal::TryTake() noexcept
{
    const sync::MutexLock lock(m_lock);
    return Take();
}

bool Signal::Take() noexcept
{
    return m_bManual ? m_bSet : std::exchange(m_bSet, false);
}

bool Signal::WaitUntil(time::Moment deadline) noexcept
{
    Waiter self;
    {
        const sync::MutexLock lock(m_lock);
        if (Take()) return true;
        m_queue.Append(self);
        self.bQueued = true;
    }
    time::Alarm alarm(self.word, deadline);
    for (;;) {
        const std::uint32_t seen = self.word.load(std::memory_order_acquire);
        if (seen & kReleased) return true;
        if (!alarm.Wait(seen)) return !Leave(self);
    }
}

// Gives the wait up; false if it has been released after all.
bool Signal::Leave(Waiter& waiter) noexcept
{
    {
        const sync::MutexLock lock(m_lock);
        if (waiter.bQueued) {
            m_queue.Remove(waiter);
            return true;
        }
    }
    // Set has taken it off the queue and is about to touch it for the last time.
    for (std::uint32_t seen; !((seen = waiter.word.load(std::memory_order_acquire)) & kReleased);)
        sync::FutexWait(waiter.word, seen);
    return false;
}

} // namespace kx::threads
