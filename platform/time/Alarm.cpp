#include "platform/time/Alarm.h"

#include "platform/sync/Fork.h"

namespace kx::time {

constinit sync::Mutex Alarm::s_lock;
constinit sync::IntrusiveList<Alarm> Alarm::s_alarms;
const bool Alarm::s_atFork = sync::AtFork({sync::ForkOrder::Alarms, BeforeFork, AfterFork});

void Alarm::BeforeFork() noexcept
{
    s_lock.lock();
}

// The alarms of threads that a fork's child doesn't have lie on stacks that others will use.
void Alarm::AfterFork(bool bChild) noexcept
{
    s_lock.AssertHeld();
    sync::IntrusiveList<Alarm> none;
    if (bChild) s_alarms.Swap(none);
    s_lock.unlock();
}

Alarm::~Alarm()
{
    if (!m_bListed) return;
    const sync::MutexLock lock(s_lock);
    s_alarms.Remove(*this);
}

void Alarm::Announce(std::uint32_t seen) noexcept
{
    const sync::MutexLock lock(s_lock);
    m_seen = seen;
    if (!m_bListed) s_alarms.Append(*this);
    m_bListed = true;
}

bool Alarm::Wait(std::uint32_t seen) noexcept
{
    if (m_deadline == kNever) {
        sync::FutexWait(m_word, seen);
        return true;
    }
    // Listed before the clock is read: whoever moves the clock after this look changes the word after `seen`.
    Announce(seen);
    if (Now() >= m_deadline) return false;
    const std::timespec end = ToSystem(m_deadline);
    sync::FutexWait(m_word, seen, sync::kAnySleeper, IsVirtual() ? nullptr : &end);
    return true;
}

void Alarm::RingDue(Moment now) noexcept
{
    const sync::MutexLock lock(s_lock);
    for (Alarm* alarm = s_alarms.First(); alarm; alarm = alarm->next) {
        if (alarm->m_deadline > now) continue;
        alarm->m_word.fetch_add(kRing, std::memory_order_release);
        sync::FutexWake(alarm->m_word);
    }
}

int Alarm::CountWaiting() noexcept
{
    const Moment now = Now();
    const sync::MutexLock lock(s_lock);
    int nCount = 0;
    for (const Alarm* alarm = s_alarms.First(); alarm; alarm = alarm->next)
        nCount += alarm->m_deadline > now && alarm->m_word.load(std::memory_order_relaxed) == alarm->m_seen;
    return nCount;
}

} // namespace kx::time
