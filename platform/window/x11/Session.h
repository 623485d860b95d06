#pragma once

#include "platform/PipeSignal.h"
#include "platform/gdi/Surface.h"
#include "platform/sync/Mutex.h"
#include "platform/window/x11/ForeignWindows.h"
#include "platform/window/x11/InputMethod.h"
#include "platform/window/x11/OwnWindows.h"
#include "platform/window/x11/PixelPort.h"
#include "platform/window/x11/Watch.h"

#include <atomic>
#include <map>
#include <memory>

namespace kx::window::x11 {

// A window that is seen in part without a compositor's help.
struct Fade
{
    gdi::Surface below; // what the screen showed before the window did
    BYTE opacity;
};

// All that works with one connection to a server. But for the connection it is used under the lock (see
// Access).
struct Session
{
    Session(std::unique_ptr<Connection> opened, std::chrono::milliseconds limit)
        : connection(std::move(opened)),
          watch(*connection, limit),
          own(*connection),
          foreign(*connection),
          pixels(*connection),
          method(*connection)
    {
    }

    // Shows a rectangle of a window's pixels.
    void Put(HWND hWnd, const gdi::Surface& surface, const RECT& rect)
    {
        const xcb_window_t id = own.NumberOf(hWnd);
        const auto it = fades.find(hWnd);
        const bool bFades = it != fades.end() && it->second.opacity < 255;
        if (id)
            pixels.Put(id, surface, rect, bFades ? &it->second.below : nullptr,
                       bFades ? it->second.opacity : 255);
    }

    const std::unique_ptr<Connection> connection;
    std::atomic<bool> leaving{false}; // the end of the connection is wanted
    Watch watch;
    sync::Mutex lock;
    OwnWindows own;
    ForeignWindows foreign;
    PixelPort pixels;
    InputMethod method;
    std::map<HWND, Fade> fades;
};

// A scope in which the session is used; what is asked for goes to the server at its end. The lock of the
// desktop's pixels is taken before, never within. Null for a null session.
class Access
{
public:
    explicit Access(std::shared_ptr<Session> session) KX_NO_LOCK_ANALYSIS : m_session(std::move(session))
    {
        if (!m_session) return;
        m_session->lock.lock();
        m_session->watch.Begin();
    }
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;
    ~Access() KX_NO_LOCK_ANALYSIS
    {
        if (!m_session) return;
        xcb_flush(m_session->connection->Get());
        m_session->watch.End();
        m_session->lock.unlock();
    }

    explicit operator bool() const noexcept { return m_session != nullptr; }
    Session* operator->() const noexcept { return m_session.get(); }

private:
    const std::shared_ptr<Session> m_session;
    const NoPipeSignal m_noSignal; // xcb writes to a server that may be gone
};

} // namespace kx::window::x11
