#pragma once

#include "platform/sync/Futex.h"
#include "platform/sync/IntrusiveList.h"
#include "platform/sync/Mutex.h"
#include "platform/time/Clock.h"

namespace kx::threads {

// What threads wait for: a flag that stays set (manual), or a signal that releases one wait
// (automatic). With threads waiting, an automatic signal goes straight to the one that waits longest: signals
// given in a row each release another, and nobody who comes later takes one away.
//
// A released thread may end the object: Set doesn't touch it after its first release.
class Signal
{
public:
    enum class Reset
    {
        Manual,
        Automatic,
    };

    Signal(Reset reset, bool bSet) noexcept : m_bManual(reset == Reset::Manual), m_bSet(bSet) {}
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
        sync::Word word{0}; // kReleased once it is released
        bool bQueued = false;
    };

    static constexpr std::uint32_t kReleased = 1;

    bool Take() noexcept KX_REQUIRES(m_lock);
    bool Leave(Waiter& waiter) noexcept;

    const bool m_bManual;
    sync::Mutex m_lock; // also guards bQueued of the queue's elements
    bool m_bSet KX_GUARDED_BY(m_lock);
    sync::IntrusiveList<Waiter> m_queue KX_GUARDED_BY(m_lock); // empty while it is set
};

} // namespace kx::threads
