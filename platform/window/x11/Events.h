#pragma once

#include "platform/window/x11/Connection.h"
#include "platform/window/x11/InputMethod.h"
#include "platform/window/x11/Keyboard.h"
#include "platform/window/x11/Session.h"

#include <bitset>
#include <optional>

namespace kx::window::x11 {

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
