#include "platform/time/Condition.h"

namespace kx::clock {

std::uint32_t Condition::Enter() noexcept
{
    m_nWaiters.fetch_add(1);
    return m_sequence.load();
}

bool Condition::SleepUntil(std::uint32_t seen, Moment deadline) noexcept
{
    bool bInTime = true;
    {
        Alarm alarm(m_sequence, deadline);
        bInTime = alarm.Wait(seen);
    }
    m_nWaiters.fetch_sub(1);
    return bInTime;
}

// Both sides make their own mark before they look for the other's, so one of them sees it.
void Condition::Notify(int nWaiters) noexcept
{
    m_sequence.fetch_add(Alarm::kRing);
    if (m_nWaiters.load() != 0) sync::FutexWake(m_sequence, nWaiters);
}

} // namespace kx::clock
