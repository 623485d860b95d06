#pragma once

#include "platform/PipeSignal.h"
#include "platform/window/x11/ForeignWindows.h"
#include "platform/window/x11/OwnWindows.h"
#include "platform/window/x11/PixelPort.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace kx::window::x11 {

// All that works with one connection to a server. But for the connection it is used under the lock (see
// Access).
struct Session
{
    explicit Session(std::unique_ptr<Connection> opened)
        : connection(std::move(opened)), own(*connection), foreign(*connection), pixels(*connection)
    {
    }

    const std::unique_ptr<Connection> connection;
    std::atomic<bool> leaving{false}; // the end of the connection is wanted
    std::mutex lock;
    OwnWindows own;
    ForeignWindows foreign;
    PixelPort pixels;
};

// A scope in which the session is used; what is asked for goes to the server at its end. The lock of the
// desktop's pixels is taken before, never within. Null for a null session.
class Access
{
public:
    explicit Access(std::shared_ptr<Session> session) : m_session(std::move(session))
    {
        if (m_session) m_lock = std::unique_lock(m_session->lock);
    }
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;
    ~Access()
    {
        if (m_session) xcb_flush(m_session->connection->Get());
    }

    explicit operator bool() const noexcept { return m_session != nullptr; }
    Session* operator->() const noexcept { return m_session.get(); }

private:
    const std::shared_ptr<Session> m_session; // ends after the lock
    std::unique_lock<std::mutex> m_lock;
    const NoPipeSignal m_noSignal; // xcb writes to a server that may be gone
};

} // namespace kx::window::x11
