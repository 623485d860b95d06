#pragma once

#include "platform/PipeSignal.h"
#include "platform/sync/Mutex.h"
#include "platform/window/Window.h"
#include "platform/window/x11/Connection.h"
#include "platform/window/x11/ForeignWindows.h"
#include "platform/window/x11/InputMethod.h"
#include "platform/window/x11/Keyboard.h"
#include "platform/window/x11/OwnWindows.h"
#include "platform/window/x11/PixelPort.h"
#include "platform/window/x11/Watch.h"

#include <atomic>
#include <bitset>
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
// awaited; what is asked for goes to the server at its end. screen::pixelLock is taken within, never before.
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

// Makes messages and chores of what the server tells. One thread runs it, from the beginning to the end of
// the session's connection, and no client's code runs on it.
class Events
{
public:
    explicit Events(std::shared_ptr<Session> session);

    // Returns when the server is lost.
    void Run();

private:
    using Event = Reply<xcb_generic_event_t>;

    Event Next();
    // The next of those that have come already, which stays the next; null for none.
    const xcb_generic_event_t* Peek();
    void Handle(xcb_generic_event_t& event);
    bool IsTaken(xcb_generic_event_t& event);

    void OnExpose(const xcb_expose_event_t& event);
    void OnConfigure(const xcb_configure_notify_event_t& event, std::uint32_t sequence);
    void OnDestroy(const xcb_destroy_notify_event_t& event);
    void OnClientMessage(const xcb_client_message_event_t& event);
    void OnFocus(const xcb_focus_in_event_t& event, std::uint32_t sequence, bool bHas);
    void OnKeyboardChange();
    void OnView();
    void OnLeave(const xcb_leave_notify_event_t& event);
    void HearKey(HWND hWnd, const xcb_key_press_event_t& event);
    void HearText(HWND hWnd, const std::string& text, UINT nMsg, LPARAM lParam);
    void OnMotion(const xcb_motion_notify_event_t& event);
    void OnButton(const xcb_button_press_event_t& event, bool bDown);
    void OnKey(const xcb_key_press_event_t& event);

    HWND HandleOf(xcb_window_t id);
    LPARAM PlaceWithin(int x, int y) const;
    // Whether another motion within the same window follows.
    bool IsOvertaken(const xcb_motion_notify_event_t& event);

    const std::shared_ptr<Session> m_session;
    Keyboard m_keyboard;
    std::optional<InputMethod> m_method;
    Event m_next;
    std::bitset<256> m_held; // the keys that are down
};

} // namespace kx::window::x11
