#include "platform/threads/Signal.h"

#include "platform/time/Alarm.h"

namespace kx::threads {

void Signal::Set() noexcept
{
    std::uint32_t state = m_state.load(std::memory_order_relaxed);
    for (;;) {
        if (state & kQueued) {
            if (Release()) return;
            state = m_state.load(std::memory_order_relaxed);
        } else if (m_state.compare_exchange_weak(state, state | kSet, std::memory_order_release,
                                                 std::memory_order_relaxed)) {
            return;
        }
    }
}

bool Signal::TryTake() noexcept
{
    std::uint32_t state = m_state.load(std::memory_order_acquire);
    if (m_bManual) return state & kSet;
    while (state & kSet)
        if (m_state.compare_exchange_weak(state, state & ~kSet, std::memory_order_acquire,
                                          std::memory_order_relaxed))
            return true;
    return false;
}

bool Signal::WaitUntil(time::Moment deadline) noexcept
{
    Waiter self;
    if (TakeOrQueue(self)) return true;
    time::Alarm alarm(self.word, deadline);
    for (;;) {
        const std::uint32_t seen = self.word.load(std::memory_order_acquire);
        if (seen & kReleased) return true;
        if (!alarm.Wait(seen)) return !GiveUp(self);
    }
}

// Takes what is set already, or else puts the caller into the queue.
bool Signal::TakeOrQueue(Waiter& waiter) noexcept
{
    const sync::MutexLock lock(m_lock);
    std::uint32_t state = m_state.load(std::memory_order_relaxed);
    std::uint32_t next;
    do {
        if (state & kSet)
            next = m_bManual ? state : state & ~kSet;
        else
            next = state | kQueued;
    } while (
        !m_state.compare_exchange_weak(state, next, std::memory_order_acquire, std::memory_order_relaxed));
    if (state & kSet) return true;
    m_queue.Append(waiter);
    return false;
}

// Gives the wait up; false if it has been released after all.
bool Signal::GiveUp(Waiter& waiter) noexcept
{
    {
        const sync::MutexLock lock(m_lock);
        if (!(waiter.word.load(std::memory_order_relaxed) & kTaken)) {
            m_queue.Remove(waiter);
            if (m_queue.IsEmpty()) m_state.fetch_and(~kQueued, std::memory_order_relaxed);
            return true;
        }
    }
    // Set has taken it off the queue and is about to touch it for the last time.
    for (std::uint32_t seen; !((seen = waiter.word.load(std::memory_order_acquire)) & kReleased);)
        sync::FutexWait(waiter.word, seen);
    return false;
}

// Releases who waits; false if the last of them has just given up. What the released see of the object, they
// see after the lock is free again.
bool Signal::Release() noexcept
{
    sync::IntrusiveList<Waiter> released;
    {
        const sync::MutexLock lock(m_lock);
        if (m_queue.IsEmpty()) return false;
        if (m_bManual) {
            released.Swap(m_queue);
            m_state.store(kSet, std::memory_order_release);
        } else {
            released.Append(*m_queue.TakeFirst());
            if (m_queue.IsEmpty()) m_state.fetch_and(~kQueued, std::memory_order_relaxed);
        }
        for (Waiter* waiter = released.First(); waiter; waiter = waiter->next)
            waiter->word.fetch_or(kTaken, std::memory_order_relaxed);
    }
    while (Waiter* waiter = released.TakeFirst()) {
        sync::Word& word = waiter->word;
        word.fetch_or(kReleased, std::memory_order_release);
        sync::FutexWake(word);
    }
    return true;
}

} // namespace kx::threads
