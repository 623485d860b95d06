#pragma once

#include "platform/sync/Futex.h"
#include "platform/sync/IntrusiveList.h"
#include "platform/sync/Mutex.h"
#include "platform/time/Clock.h"

namespace kx::time {

// One thread's wait on a word until the word changes or a deadline of the clock has come:
//
//     Alarm alarm(word, deadline);
//     for (;;) {
//         const auto seen = word.load(std::memory_order_acquire);
//         if (/* seen says that it came true */) return true;
//         if (!alarm.Wait(seen)) return false;
//     }
//
// Others wake the thread by changing the word and then FutexWake. The clock itself changes it by adding
// kRing, so the word's two lowest bits are the owner's and the others tell nothing. Several threads may wait
// on one word.
class Alarm : private sync::ListLink<Alarm>
{
public:
    static constexpr std::uint32_t kRing = 4;

    // The word must outlive the alarm.
    Alarm(sync::Word& word, Moment deadline) noexcept : m_word(word), m_deadline(deadline) {}
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;
    ~Alarm();

    // Sleeps while the word holds `seen`; false at once if the deadline has come. Also returns, with true,
    // for no reason.
    bool Wait(std::uint32_t seen) noexcept;

    // The clock has come to `now`: wakes whose deadline that is.
    static void RingDue(Moment now) noexcept;
    // The clock was changed: all look at it anew.
    static void RingAll() noexcept { RingDue(kNever); }
    // How many now sleep for a deadline: not those whose time has come or whose
    // word has changed.
    static int CountWaiting() noexcept;

private:
    friend class sync::IntrusiveList<Alarm>;

    static void BeforeFork() noexcept KX_ACQUIRE(s_lock);
    static void AfterFork(bool bChild) noexcept;

    void Announce(std::uint32_t seen) noexcept;

    static sync::Mutex s_lock;
    static sync::IntrusiveList<Alarm> s_alarms KX_GUARDED_BY(s_lock);
    static const bool s_atFork;

    sync::Word& m_word;
    const Moment m_deadline;
    std::uint32_t m_seen KX_GUARDED_BY(s_lock) = 0;
    bool m_bListed = false;
};

} // namespace kx::time
