#pragma once

#include "platform/PipeSignal.h"
#include "platform/sync/Mutex.h"
#include "platform/window/Window.h"
#include "platform/window/x11/ForeignWindows.h"
#include "platform/window/x11/OwnWindows.h"
#include "platform/window/x11/PixelPort.h"
#include "platform/window/x11/Watch.h"

#include <atomic>
#include <memory>
#include <optional>

namespace kx::window::x11 {

// The state of one connection: its windows and the screen's pixels. Reached through Access alone.
struct SessionState
{
    explicit SessionState(Connection& used) : connection(used), own(used), foreign(used), pixels(used) {}

    // Shows a rectangle of a window's pixels, if there is something to see of it.
    void Put(const Window& window, const RECT& rect)
    {
        if (const xcb_window_t id = own.NumberOf(window.Handle())) pixels.Put(id, window, rect);
    }

    Connection& connection;
    OwnWindows own;
    ForeignWindows foreign;
    PixelPort pixels;
};

// All that works with one connection to a server.
class Session
{
public:
    Session(std::unique_ptr<Connection> opened, std::chrono::milliseconds limit)
        : connection(std::move(opened)), watch(*connection, limit), m_state(*connection)
    {
    }

    // Runs what waits for answers of the server, without an Access.
    template <class Call>
    auto Ask(Call call)
    {
        const Watch::Use use(watch);
        const sync::MutexLock lock(connection->turnLock);
        return call();
    }

    const std::unique_ptr<Connection> connection;
    std::atomic<bool> leaving{false}; // the end of the connection is wanted
    Watch watch;

private:
    friend class Access;
    SessionState m_state KX_GUARDED_BY(connection->useLock);
};

// A scope in which the session is used under the connection's lock, which is free only while an answer is
// awaited; what is asked for goes to the server at its end. gdi::pixelLock is taken within, never before.
// Null for a null session.
class Access
{
public:
    explicit Access(std::shared_ptr<Session> session) KX_NO_LOCK_ANALYSIS : m_session(std::move(session))
    {
        if (!m_session) return;
        m_use.emplace(m_session->watch);
        m_session->connection->useLock.lock();
    }
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;
    ~Access() KX_NO_LOCK_ANALYSIS
    {
        if (!m_session) return;
        xcb_flush(m_session->connection->Get());
        m_session->connection->useLock.unlock();
    }

    explicit operator bool() const noexcept { return m_session != nullptr; }
    SessionState* operator->() const noexcept KX_NO_LOCK_ANALYSIS { return &m_session->m_state; }

private:
    const std::shared_ptr<Session> m_session;
    std::optional<Watch::Use> m_use;
    const NoPipeSignal m_noSignal; // xcb writes to a server that may be gone
};

} // namespace kx::window::x11
