#pragma once

#include "platform/sync/Futex.h"
#include "platform/sync/IntrusiveList.h"
#include "platform/sync/Mutex.h"
#include "platform/time/Clock.h"

namespace kx::threads {

// Threads wait for this: a flag that stays set (manual), or a signal that releases one wait
// (automatic). With threads waiting, an automatic signal goes straight to the one that waits longest: signals
// given in a row each release another, and nobody who comes later takes one away.
//
// Setting it with nobody waiting, and looking at it, take no lock and make no system call. A released thread
// may end the object: Set doesn't touch it after its first release.
class Signal
{
public:
    enum class Reset
    {
        Manual,
        Automatic,
    };

    Signal(Reset reset, bool bSet) noexcept : m_bManual(reset == Reset::Manual), m_state(bSet ? kSet : 0) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void Set() noexcept;
    // True when it is set; takes an automatic signal.
    bool TryTake() noexcept;
    // Waits for it; false when the deadline came first.
    bool WaitUntil(time::Moment deadline) noexcept;

private:
    struct Waiter : sync::ListLink<Waiter>
    {
        sync::Word word{0}; // holds kTaken off the queue, and kReleased at the end
    };

    static constexpr std::uint32_t kSet = 1;
    static constexpr std::uint32_t kQueued = 2; // m_queue isn't empty; never together with kSet
    static constexpr std::uint32_t kReleased = 1;
    static constexpr std::uint32_t kTaken = 2;

    bool TakeOrQueue(Waiter& waiter) noexcept;
    bool GiveUp(Waiter& waiter) noexcept;
    bool Release() noexcept;

    const bool m_bManual;
    sync::Word m_state;
    sync::Mutex m_lock; // also held for changes of kQueued and kTaken
    sync::IntrusiveList<Waiter> m_queue KX_GUARDED_BY(m_lock);
};

} // namespace kx::threads
