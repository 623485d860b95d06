#pragma once

#include "platform/sync/IntrusiveList.h"
#include "platform/sync/Mutex.h"
#include "platform/window/x11/Connection.h"

#include <chrono>
#include <condition_variable>
#include <thread>

namespace kx::window::x11 {

// Ends the connection to a server that has stopped answering, so that it holds up no thread for longer than a
// limit. Its own thread sleeps while nobody uses the connection.
class Watch
{
    using Clock = std::chrono::steady_clock; // the server's time, never a test's

public:
    Watch(Connection& connection, std::chrono::milliseconds limit);
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch();

    // A scope in which the connection is used.
    class Use : private sync::ListLink<Use>
    {
    public:
        explicit Use(Watch& watch) noexcept;
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();

    private:
        friend Watch;
        friend sync::IntrusiveList<Use>;
        Watch& m_watch;
        const Clock::time_point m_since = Clock::now();
    };

private:
    void Run();

    Connection& m_connection;
    const std::chrono::milliseconds m_limit;
    sync::Mutex m_lock;
    std::condition_variable_any m_changed;
    sync::IntrusiveList<Use> m_uses KX_GUARDED_BY(m_lock); // that go on, the oldest first
    bool m_sleeps KX_GUARDED_BY(m_lock) = false;
    bool m_ends KX_GUARDED_BY(m_lock) = false;
    std::thread m_thread;
};

} // namespace kx::window::x11
