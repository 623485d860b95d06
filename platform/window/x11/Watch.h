#pragma once

#include "platform/sync/Mutex.h"
#include "platform/window/x11/Connection.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <thread>

namespace kx::window::x11 {

// Ends the connection to a server that has stopped answering, so that it holds up no thread for longer than a
// limit. Its own thread sleeps while nobody uses the connection. One use at a time.
class Watch
{
public:
    Watch(Connection& connection, std::chrono::milliseconds limit);
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch();

    void Begin() noexcept
    {
        m_since = Clock::now().time_since_epoch().count();
        if (m_sleeps) Wake();
    }
    void End() noexcept { m_since = 0; }

private:
    using Clock = std::chrono::steady_clock; // the server's time, never a test's

    void Wake() noexcept;
    void Run() KX_NO_LOCK_ANALYSIS; // its waits let the lock go

    Connection& m_connection;
    const std::chrono::milliseconds m_limit;
    std::atomic<Clock::rep> m_since{0}; // when the use began; 0: there is none
    std::atomic<bool> m_sleeps{false};
    sync::Mutex m_lock;
    std::condition_variable_any m_changed;
    bool m_ends KX_GUARDED_BY(m_lock) = false;
    std::thread m_thread;
};

} // namespace kx::window::x11
