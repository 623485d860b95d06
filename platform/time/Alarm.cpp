#include "platform/time/Alarm.h"

#include <mutex>

namespace kx::clock {

namespace {

constinit std::mutex g_lock;
constinit sync::IntrusiveList<Alarm> g_alarms; // guarded by g_lock

} // namespace

Alarm::~Alarm()
{
    if (!m_bListed) return;
    std::lock_guard lock(g_lock);
    g_alarms.Remove(*this);
}

void Alarm::Announce(std::uint32_t seen) noexcept
{
    std::lock_guard lock(g_lock);
    m_seen = seen;
    if (!m_bListed) g_alarms.Append(*this);
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
    if (IsVirtual())
        sync::FutexWait(m_word, seen);
    else
        sync::FutexWaitUntil(m_word, seen, ToSystem(m_deadline));
    return true;
}

void Alarm::RingDue(Moment now) noexcept
{
    std::lock_guard lock(g_lock);
    for (Alarm* alarm = g_alarms.First(); alarm; alarm = alarm->next) {
        if (alarm->m_deadline > now) continue;
        alarm->m_word.fetch_add(kRing, std::memory_order_release);
        sync::FutexWake(alarm->m_word);
    }
}

int Alarm::CountWaiting() noexcept
{
    const Moment now = Now();
    std::lock_guard lock(g_lock);
    int nCount = 0;
    for (const Alarm* alarm = g_alarms.First(); alarm; alarm = alarm->next)
        nCount += alarm->m_deadline > now && alarm->m_word.load(std::memory_order_relaxed) == alarm->m_seen;
    return nCount;
}

} // namespace kx::clock
