#include "platform/window/x11/Events.h"

#include "include/platform/Input.h"
#include "platform/screen/Screen.h"
#include "platform/text/Conversion.h"
#include "platform/window/Input.h"
#include "platform/window/WindowState.h"
#include "platform/window/WindowTable.h"

#include <new>

namespace kx::window::x11 {

namespace {

// Without the mark of those that a client sent.
constexpr int KindOf(const xcb_generic_event_t& event) noexcept
{
    return event.response_type & 0x7F;
}

template <class T>
const T& As(const xcb_generic_event_t& event) noexcept
{
    return reinterpret_cast<const T&>(event);
}

UINT HeldOf(std::uint16_t state) noexcept
{
    UINT held = 0;
    if (state & XCB_KEY_BUT_MASK_BUTTON_1) held |= MK_LBUTTON;
    if (state & XCB_KEY_BUT_MASK_BUTTON_2) held |= MK_MBUTTON;
    if (state & XCB_KEY_BUT_MASK_BUTTON_3) held |= MK_RBUTTON;
    if (state & XCB_KEY_BUT_MASK_SHIFT) held |= MK_SHIFT;
    if (state & XCB_KEY_BUT_MASK_CONTROL) held |= MK_CONTROL;
    return held;
}

struct Button
{
    xcb_button_t number;
    UINT held;
    UINT down;
    UINT up;
};
constexpr Button kButtons[] = {{1, MK_LBUTTON, WM_LBUTTONDOWN, WM_LBUTTONUP},
                               {2, MK_MBUTTON, WM_MBUTTONDOWN, WM_MBUTTONUP},
                               {3, MK_RBUTTON, WM_RBUTTONDOWN, WM_RBUTTONUP}};
// To the server each notch of the wheel is a press and a release of one of these.
constexpr xcb_button_t kWheelUp = 4;
constexpr xcb_button_t kWheelDown = 5;

} // namespace

Events::Events(std::shared_ptr<Session> session)
    : m_session(std::move(session)), m_keyboard(m_session->connection->Get())
{
    m_session->Ask([this] {
        m_keyboard.Begin();
        if (InputMethod::IsWanted()) m_method.emplace(*m_session->connection);
    });
}

void Events::Run()
{
    while (const Event event = Next()) {
        try {
            Handle(*event);
        } catch (const std::bad_alloc&) {
            // One event less is the least harm.
        }
    }
}

Events::Event Events::Next()
{
    if (m_next) return std::move(m_next);
    xcb_flush(m_session->connection->Get()); // what the input method is told
    return TakeReply(xcb_wait_for_event(m_session->connection->Get()));
}

const xcb_generic_event_t* Events::Peek()
{
    if (!m_next) m_next = TakeReply(xcb_poll_for_queued_event(m_session->connection->Get()));
    return m_next.get();
}

void Events::Handle(xcb_generic_event_t& event)
{
    if (m_method && IsTaken(event)) return;
    switch (KindOf(event)) {
    case XCB_EXPOSE:
        return OnExpose(As<xcb_expose_event_t>(event));
    case XCB_CONFIGURE_NOTIFY:
        return OnConfigure(As<xcb_configure_notify_event_t>(event), event.full_sequence);
    case XCB_REPARENT_NOTIFY: {
        const auto& reparent = As<xcb_reparent_notify_event_t>(event);
        return Access(m_session)->own.LearnParent(reparent.window, reparent.parent);
    }
    case XCB_MAP_NOTIFY:
        return Access(m_session)->own.LearnShown(As<xcb_map_notify_event_t>(event).window);
    case XCB_DESTROY_NOTIFY:
        return OnDestroy(As<xcb_destroy_notify_event_t>(event));
    case XCB_CLIENT_MESSAGE:
        return OnClientMessage(As<xcb_client_message_event_t>(event));
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return OnFocus(As<xcb_focus_in_event_t>(event), event.full_sequence, KindOf(event) == XCB_FOCUS_IN);
    case XCB_MOTION_NOTIFY:
        return OnMotion(As<xcb_motion_notify_event_t>(event));
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
        return OnButton(As<xcb_button_press_event_t>(event), KindOf(event) == XCB_BUTTON_PRESS);
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
        return OnKey(As<xcb_key_press_event_t>(event));
    case XCB_LEAVE_NOTIFY:
        return OnLeave(As<xcb_leave_notify_event_t>(event));
    default: // what else comes is errors of requests, whose windows had ended meanwhile
        if (m_session->connection->IsMonitorChange(event)) OnView();
        if (m_keyboard.IsChange(event)) OnKeyboardChange();
    }
}

// Whether an event was the input method's own affair.
bool Events::IsTaken(xcb_generic_event_t& event)
{
    const bool bTaken = m_session->Ask([&] { return m_method->Filter(event); });
    for (const auto& gift : m_method->Take()) {
        const HWND hWnd = HandleOf(gift.window);
        if (!hWnd) continue;
        if (gift.key) HearKey(hWnd, *gift.key);
        HearText(hWnd, gift.text, WM_CHAR, 1);
    }
    return bTaken;
}

HWND Events::HandleOf(xcb_window_t id)
{
    return Access(m_session)->own.HandleOf(id);
}

// The window's kept pixels are put there again; the client isn't troubled.
void Events::OnExpose(const xcb_expose_event_t& event)
{
    const View view = m_session->connection->GetView();
    const RECT rect{view.Floor(event.x), view.Floor(event.y), view.Part(event.x + event.width),
                    view.Part(event.y + event.height)};
    if (const auto window = WindowTable::Instance().Find(HandleOf(event.window)))
        Access(m_session)->Put(*window, rect);
}

void Events::OnConfigure(const xcb_configure_notify_event_t& event, std::uint32_t sequence)
{
    if (event.window == m_session->connection->Root()) return OnView();
    const HWND hWnd = HandleOf(event.window);
    const auto window = WindowTable::Instance().Find(hWnd);
    if (!window) return;
    std::optional<OwnWindows::Change> change;
    {
        const Access server(m_session); // nobody places the window between both
        change = server->own.Learn(event, sequence, window->Rect());
        if (change) window->SetRect(change->rect);
    }
    if (change)
        PostChore(hWnd, Chore::Place, (change->moved ? kMoved : 0) | (change->resized ? kResized : 0));
}

// The desktop has another size, or lies elsewhere on the screen, and its windows with it.
void Events::OnView()
{
    if (!m_session->Ask([this] { return m_session->connection->LearnView(); })) return;
    {
        const sync::MutexLock lock(screen::pixelLock);
        screen::Screen::Instance().Forget();
    }
    const SIZE size = m_session->connection->GetView().monitor;
    for (const HWND hWnd : Access(m_session)->own.Handles()) {
        const auto window = WindowTable::Instance().Find(hWnd);
        if (!window) continue;
        const auto place = Access(m_session)->own.PlaceOf(hWnd);
        if (place && (place->left != window->Rect().left || place->top != window->Rect().top)) {
            window->SetRect(*place);
            PostChore(hWnd, Chore::Place, kMoved);
        }
        PostMessage(hWnd, WM_DISPLAYCHANGE, 32, PlaceOf({size.cx, size.cy}));
    }
}

void Events::OnDestroy(const xcb_destroy_notify_event_t& event)
{
    if (const HWND hWnd = HandleOf(event.window)) return PostChore(hWnd, Chore::Destroy);
    Access(m_session)->foreign.Forget(event.window);
}

void Events::OnClientMessage(const xcb_client_message_event_t& event)
{
    const Atoms& atoms = m_session->connection->atoms;
    const bool bClose = event.type == atoms.wmProtocols && event.data.data32[0] == atoms.wmDeleteWindow;
    const HWND hWnd = HandleOf(event.window);
    if (bClose && hWnd) PostInput(hWnd, WM_CLOSE, 0, 0);
}

// Changes come in flocks.
void Events::OnKeyboardChange()
{
    while (Peek() && m_keyboard.IsChange(*Peek()))
        m_next.reset();
    m_session->Ask([this] { m_keyboard.Reload(); });
}

// A manager's keys grab the keyboard for a moment, which moves no focus; nor does the pointer's place.
void Events::OnFocus(const xcb_focus_in_event_t& event, std::uint32_t sequence, bool bHas)
{
    if (event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB) return;
    if (event.detail >= XCB_NOTIFY_DETAIL_POINTER) return;
    const HWND hWnd = HandleOf(event.event);
    const bool bNews = Access(m_session)->own.LearnFocus(event.event, bHas, sequence);
    if (bHas) m_held.reset(); // what went up elsewhere wasn't told here
    if (m_method) m_session->Ask([&] { m_method->Focus(bHas ? event.event : 0); });
    if (bNews && hWnd) PostChore(hWnd, bHas ? Chore::GainFocus : Chore::LoseFocus);
}

bool Events::IsOvertaken(const xcb_motion_notify_event_t& event)
{
    const auto* next = Peek();
    if (!next || KindOf(*next) != XCB_MOTION_NOTIFY) return false;
    const auto& other = As<xcb_motion_notify_event_t>(*next);
    return other.event == event.event && other.state == event.state;
}

LPARAM Events::PlaceWithin(int x, int y) const
{
    const View view = m_session->connection->GetView();
    return PlaceOf({view.Floor(x), view.Floor(y)});
}

// A grab takes the mouse away for a moment, without moving it.
void Events::OnLeave(const xcb_leave_notify_event_t& event)
{
    const HWND hWnd = HandleOf(event.event);
    if (hWnd && event.mode == XCB_NOTIFY_MODE_NORMAL) PostInput(hWnd, WM_MOUSELEAVE, 0, 0);
}

void Events::OnMotion(const xcb_motion_notify_event_t& event)
{
    if (IsOvertaken(event)) return;
    if (const HWND hWnd = HandleOf(event.event))
        PostInput(hWnd, WM_MOUSEMOVE, HeldOf(event.state), PlaceWithin(event.event_x, event.event_y), true);
}

void Events::OnButton(const xcb_button_press_event_t& event, bool bDown)
{
    const HWND hWnd = HandleOf(event.event);
    if (bDown && hWnd && (event.detail == kWheelUp || event.detail == kWheelDown)) {
        const int nTurn = event.detail == kWheelUp ? WHEEL_DELTA : -WHEEL_DELTA;
        const UINT turn = static_cast<WORD>(nTurn);
        PostInput(hWnd, WM_MOUSEWHEEL, HeldOf(event.state) | turn << 16,
                  PlaceOf(m_session->connection->GetView().ToDesktop(event.root_x, event.root_y)));
    }
    for (const Button& button : kButtons) {
        if (!hWnd || button.number != event.detail) continue;
        // The event tells what was held before it.
        const UINT held = bDown ? HeldOf(event.state) | button.held : HeldOf(event.state) & ~button.held;
        PostInput(hWnd, bDown ? button.down : button.up, held, PlaceWithin(event.event_x, event.event_y));
    }
}

void Events::OnKey(const xcb_key_press_event_t& event)
{
    const HWND hWnd = HandleOf(event.event);
    if (!hWnd) return;
    const POINT caret = Access(m_session)->own.CaretOf(hWnd);
    if (m_method && m_session->Ask([&] { return m_method->Offer(event, caret); })) return;
    HearKey(hWnd, event);
}

void Events::HearKey(HWND hWnd, const xcb_key_press_event_t& event)
{
    constexpr LPARAM withAlt = LPARAM{1} << 29;
    constexpr LPARAM wasDown = LPARAM{1} << 30;
    constexpr LPARAM goesUp = LPARAM{1} << 31;
    const bool bDown = (event.response_type & 0x7F) == XCB_KEY_PRESS;
    const Keyboard::Key key = m_keyboard.Read(event.detail, event.state, bDown);
    LPARAM lParam = 1 | (key.alt ? withAlt : 0) | (m_held[event.detail] ? wasDown : 0);
    if (!bDown) lParam |= wasDown | goesUp;
    m_held[event.detail] = bDown;
    const UINT down = key.alt ? WM_SYSKEYDOWN : WM_KEYDOWN;
    const UINT up = key.alt ? WM_SYSKEYUP : WM_KEYUP;
    if (key.number) PostInput(hWnd, bDown ? down : up, key.number, lParam);
    if (bDown) HearText(hWnd, key.text, key.alt ? WM_SYSCHAR : WM_CHAR, lParam);
}

// A byte each, in the process's code page.
void Events::HearText(HWND hWnd, const std::string& text, UINT nMsg, LPARAM lParam)
{
    for (const char ch : text::FromUtf8Lossy(text))
        PostInput(hWnd, nMsg, static_cast<BYTE>(ch), lParam);
}

} // namespace kx::window::x11
