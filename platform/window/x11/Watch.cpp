#include "platform/window/x11/Watch.h"

#include "platform/sync/AlternateStack.h"

#include <algorithm>
#include <utility>

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

Watch::Use::Use(Watch& watch) noexcept : m_watch(watch)
{
    const sync::MutexLock lock(watch.m_lock);
    watch.m_uses.Append(*this);
    if (std::exchange(watch.m_sleeps, false)) watch.m_changed.notify_one();
}

Watch::Use::~Use()
{
    const sync::MutexLock lock(m_watch.m_lock);
    m_watch.m_uses.Remove(*this);
}

// It looks at the oldest use, once in a limit at most, and awaits it to the end of its own limit.
void Watch::Run()
{
    const sync::AlternateStack stack;
    sync::MutexLock lock(m_lock);
    Clock::time_point least{}; // no end of a wait lies before it
    while (!m_ends) {
        if (m_uses.IsEmpty()) {
            m_sleeps = true;
            while (m_sleeps && !m_ends)
                m_changed.wait(lock);
            continue;
        }
        const Use* const awaited = m_uses.First();
        const auto since = awaited->m_since;
        const auto due = std::max(since + m_limit, least);
        while (!m_ends && m_changed.wait_until(lock, due) == std::cv_status::no_timeout) {
        }
        if (m_ends) return;
        // A program that was stopped itself gives the server another limit.
        const auto now = Clock::now();
        least = now - due > m_limit / 2 + std::chrono::seconds(1) ? now + m_limit : Clock::time_point{};
        if (m_uses.First() == awaited && awaited->m_since == since && least <= now)
            return m_connection.Shut();
    }
}

} // namespace kx::window::x11
