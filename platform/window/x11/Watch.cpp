#include "platform/window/x11/Watch.h"

#include "platform/sync/AlternateStack.h"

namespace kx::window::x11 {

Watch::Watch(Connection& connection, std::chrono::milliseconds limit)
    : m_connection(connection), m_limit(limit), m_thread([this] { Run(); })
{
}

Watch::~Watch()
{
    {
        const sync::MutexLock lock(m_lock);
        m_ends = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void Watch::Wake() noexcept
{
    {
        const sync::MutexLock lock(m_lock);
        m_sleeps = false;
    }
    m_changed.notify_one();
}

// It looks once in a limit at most: a use that it sees has begun since the last look, and is awaited to the
// end of its own limit.
void Watch::Run()
{
    const sync::AlternateStack stack;
    sync::MutexLock lock(m_lock);
    Clock::rep awaited = 0; // the newest use that was waited for
    for (bool bIdle = true; !m_ends;) {
        if (bIdle) {
            m_sleeps = true;
            if (m_since == 0) m_changed.wait(lock, [&]() KX_NO_LOCK_ANALYSIS { return m_ends || !m_sleeps; });
            m_sleeps = false;
        }
        const Clock::rep since = m_since;
        const bool bNew = since && since != awaited;
        const auto due = (bNew ? Clock::time_point(Clock::duration(since)) : Clock::now()) + m_limit;
        awaited = since;
        if (m_changed.wait_until(lock, due, [&]() KX_NO_LOCK_ANALYSIS { return m_ends; })) return;
        // A program that was stopped itself gives the server another limit.
        const bool bStopped = Clock::now() - due > m_limit / 2 + std::chrono::seconds(1);
        if (since && m_since == since && !bStopped) return m_connection.Shut();
        bIdle = m_since == 0;
    }
}

} // namespace kx::window::x11
