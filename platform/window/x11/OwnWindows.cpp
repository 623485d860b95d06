#include "platform/window/x11/OwnWindows.h"

#include "include/platform/Input.h"
#include "platform/window/Window.h"
#include "platform/window/x11/Properties.h"

#include <algorithm>
#include <array>

namespace kx::window::x11 {

namespace {

constexpr std::uint32_t kEvents =
    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_FOCUS_CHANGE |
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_LEAVE_WINDOW;

// The nearest place that a server can give: 16 bits, and a pixel at least.
RECT ToServer(const RECT& rect, const View& view) noexcept
{
    constexpr std::int64_t nMost = 0x7FFF;
    const auto within = [&](std::int64_t n, std::int64_t nLeast) {
        return static_cast<LONG>(std::clamp(n, nLeast, nMost));
    };
    const LONG x = within(std::int64_t{rect.left} * view.scale + view.origin.x, -nMost);
    const LONG y = within(std::int64_t{rect.top} * view.scale + view.origin.y, -nMost);
    return {x, y, x + within((std::int64_t{rect.right} - rect.left) * view.scale, 1),
            y + within((std::int64_t{rect.bottom} - rect.top) * view.scale, 1)};
}

std::uint16_t Side(LONG nFrom, LONG nTo) noexcept
{
    return static_cast<std::uint16_t>(nTo - nFrom);
}

} // namespace

// A window has no background of the server's: what isn't painted yet leaves the screen as it is.
bool OwnWindows::Create(HWND hWnd, const CREATESTRUCTA& create)
{
    if (m_connection.IsLost() || !m_connection.HasOurPixels()) return false;
    const RECT place = ToServer(RectOf(create.x, create.y, create.cx, create.cy), m_connection.GetView());
    const xcb_window_t id = xcb_generate_id(m_connection.Get());
    const OwnWindow entry{.id = id, .popup = (create.style & WS_POPUP) != 0, .place = place};
    const std::array<std::uint32_t, 4> values{XCB_BACK_PIXMAP_NONE, XCB_GRAVITY_NORTH_WEST, entry.popup,
                                              kEvents};
    xcb_create_window(m_connection.Get(), XCB_COPY_FROM_PARENT, id, m_connection.Root(),
                      static_cast<std::int16_t>(place.left), static_cast<std::int16_t>(place.top),
                      Side(place.left, place.right), Side(place.top, place.bottom), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values.data());
    Describe(m_connection, id, create.style);
    SetTitle(m_connection, id, create.lpszName ? create.lpszName : "");
    SetWantedPlace(m_connection, id, place);
    m_entries.emplace(hWnd, entry);
    m_handles.emplace(id, hWnd);
    m_stack.Add(hWnd);
    SetCursor(hWnd, LoadCursorA(nullptr, IDC_ARROW));
    return true;
}

void OwnWindows::Destroy(HWND hWnd) noexcept
{
    const auto entry = m_entries.extract(hWnd);
    if (!entry) return;
    xcb_destroy_window(m_connection.Get(), entry.mapped().id);
    m_handles.erase(entry.mapped().id);
    m_stack.Remove(hWnd);
}

// A manager is told of the hiding by an event of its own, since it may not have got to the showing yet.
void OwnWindows::Show(HWND hWnd, bool bVisible)
{
    OwnWindow* entry = Find(hWnd);
    if (!entry) return;
    entry->shown = bVisible;
    if (bVisible) {
        if (!entry->popup) SetStates(m_connection, entry->id, entry->topmost, entry->modal);
        xcb_map_window(m_connection.Get(), entry->id);
        return;
    }
    if (m_wantsFocus == entry->id) m_wantsFocus = 0;
    xcb_unmap_window(m_connection.Get(), entry->id);
    xcb_unmap_notify_event_t event{};
    event.response_type = XCB_UNMAP_NOTIFY;
    event.event = m_connection.Root();
    event.window = entry->id;
    if (!entry->popup)
        xcb_send_event(m_connection.Get(), 0, m_connection.Root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
}

void OwnWindows::Place(HWND hWnd, const RECT& rect)
{
    OwnWindow* entry = Find(hWnd);
    if (!entry) return;
    entry->place = ToServer(rect, m_connection.GetView());
    const RECT& place = entry->place;
    SetWantedPlace(m_connection, entry->id, place);
    const std::array<std::uint32_t, 4> values{static_cast<std::uint32_t>(place.left),
                                              static_cast<std::uint32_t>(place.top),
                                              Side(place.left, place.right), Side(place.top, place.bottom)};
    entry->placing = xcb_configure_window(m_connection.Get(), entry->id,
                                          XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                              XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                          values.data())
                         .sequence;
}

void OwnWindows::Raise(const OwnWindow& entry)
{
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.Get(), entry.id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

// The server knows no topmost windows: pop-ups that are follow each one that is raised.
void OwnWindows::Stack(HWND hWnd, Order order)
{
    OwnWindow* entry = Find(hWnd);
    if (!entry) return;
    m_stack.Move(hWnd, order);
    const bool bWas = entry->topmost;
    if (order != Order::Top) entry->topmost = order == Order::Topmost;
    if (!entry->popup && entry->shown && entry->topmost != bWas)
        AskAbove(m_connection, entry->id, entry->topmost);
    if (order == Order::Bottom) {
        const std::uint32_t below = XCB_STACK_MODE_BELOW;
        xcb_configure_window(m_connection.Get(), entry->id, XCB_CONFIG_WINDOW_STACK_MODE, &below);
        return;
    }
    Raise(*entry);
    if (entry->topmost) return;
    for (const HWND hOther : m_stack.Handles()) {
        const OwnWindow* other = Find(hOther);
        if (other->popup && other->topmost) Raise(*other);
    }
}

// Until it is shown a window can't have the keyboard. One of another process keeps it.
void OwnWindows::Focus(HWND hWnd)
{
    const xcb_window_t id = NumberOf(hWnd);
    if (hWnd ? !id : !m_focused) return;
    m_wantsFocus = id;
    constexpr xcb_window_t nobody = XCB_INPUT_FOCUS_POINTER_ROOT;
    m_focusing = xcb_set_input_focus(m_connection.Get(), XCB_INPUT_FOCUS_POINTER_ROOT, id ? id : nobody,
                                     XCB_CURRENT_TIME)
                     .sequence;
}

void OwnWindows::SetOwner(HWND hWnd, HWND hOwner)
{
    OwnWindow* entry = Find(hWnd);
    const xcb_window_t owner = NumberOf(hOwner);
    if (!entry || !owner) return;
    entry->modal = true;
    DescribeDialog(m_connection, entry->id, owner);
}

void OwnWindows::SetCursor(HWND hWnd, HCURSOR hCursor)
{
    OwnWindow* entry = Find(hWnd);
    if (!entry || entry->cursor == hCursor) return;
    entry->cursor = hCursor;
    const std::uint32_t cursor = m_cursors.Get(hCursor);
    xcb_change_window_attributes(m_connection.Get(), entry->id, XCB_CW_CURSOR, &cursor);
}

void OwnWindows::SetCaret(HWND hWnd, POINT place)
{
    if (OwnWindow* entry = Find(hWnd)) entry->caret = place;
}

POINT OwnWindows::CaretOf(HWND hWnd) const noexcept
{
    const auto it = m_entries.find(hWnd);
    if (it == m_entries.end()) return {};
    const int nScale = m_connection.GetView().scale;
    return {it->second.caret.x * nScale, it->second.caret.y * nScale};
}

xcb_window_t OwnWindows::NumberOf(HWND hWnd) const noexcept
{
    const auto it = m_entries.find(hWnd);
    return it == m_entries.end() ? 0 : it->second.id;
}

HWND OwnWindows::HandleOf(xcb_window_t id) const noexcept
{
    const auto it = m_handles.find(id);
    return it == m_handles.end() ? nullptr : it->second;
}

OwnWindows::OwnWindow* OwnWindows::Find(HWND hWnd) noexcept
{
    const auto it = m_entries.find(hWnd);
    return it == m_entries.end() ? nullptr : &it->second;
}

namespace {

constexpr std::uint8_t kSentByAClient = 0x80;

// Whether an event tells of the time before the server came to a request, which is forgotten once one
// doesn't: the numbers wrap.
bool IsBefore(std::uint32_t sequence, std::optional<std::uint32_t>& request) noexcept
{
    if (request && static_cast<std::int32_t>(sequence - *request) < 0) return true;
    request.reset();
    return false;
}

} // namespace

// A manager's own event tells the place within the screen; the server's the one within the manager's frame.
std::optional<POINT> OwnWindows::OriginOf(const OwnWindow& entry,
                                          const xcb_configure_notify_event_t& event) const
{
    if ((event.response_type & kSentByAClient) || !entry.framed) return POINT{event.x, event.y};
    const auto cookie = xcb_translate_coordinates(m_connection.Get(), entry.id, m_connection.Root(), 0, 0);
    const auto origin = m_connection.Wait(
        [&] { return TakeReply(xcb_translate_coordinates_reply(m_connection.Get(), cookie, nullptr)); });
    if (!origin) return std::nullopt;
    return POINT{origin->dst_x, origin->dst_y};
}

std::optional<OwnWindows::Change> OwnWindows::Learn(const xcb_configure_notify_event_t& event,
                                                    std::uint32_t sequence, const RECT& rect)
{
    OwnWindow* entry = FindNumber(event.window);
    const auto origin = entry ? OriginOf(*entry, event) : std::nullopt;
    entry = FindNumber(event.window); // it may have ended, or been placed, while the server was asked
    if (!entry || !origin || IsBefore(sequence, entry->placing)) return std::nullopt;
    const RECT old = entry->place;
    const RECT place = RectOf(origin->x, origin->y, event.width, event.height);
    if (place == old) return std::nullopt;
    const RECT now = m_connection.GetView().ToDesktop(place);
    entry->place = place;
    const bool bResized =
        place.right - place.left != old.right - old.left || place.bottom - place.top != old.bottom - old.top;
    const bool bMoved = place.left != old.left || place.top != old.top;
    // A size or place that the server couldn't give stays as long as it gives the same.
    const RECT& size = bResized ? now : rect;
    const int nWidth = size.right - size.left;
    const int nHeight = size.bottom - size.top;
    const RECT& at = bMoved ? now : rect;
    return Change{RectOf(at.left, at.top, nWidth, nHeight), bMoved, bResized};
}

std::optional<RECT> OwnWindows::PlaceOf(HWND hWnd) const noexcept
{
    const auto it = m_entries.find(hWnd);
    if (it == m_entries.end()) return std::nullopt;
    return m_connection.GetView().ToDesktop(it->second.place);
}

void OwnWindows::LearnParent(xcb_window_t id, xcb_window_t parent) noexcept
{
    if (OwnWindow* entry = FindNumber(id)) entry->framed = parent != m_connection.Root();
}

void OwnWindows::LearnShown(xcb_window_t id)
{
    if (id == m_wantsFocus) Focus(HandleOf(id));
}

bool OwnWindows::LearnFocus(xcb_window_t id, bool bHas, std::uint32_t sequence) noexcept
{
    if (bHas)
        m_focused = id;
    else if (m_focused == id)
        m_focused = 0;
    if (IsBefore(sequence, m_focusing)) return false;
    if (bHas) m_wantsFocus = 0;
    return true;
}

} // namespace kx::window::x11
