// Events of the server about this process's windows.

#include "platform/window/x11/OwnWindows.h"

#include "platform/window/Window.h"
#include "platform/window/x11/Connection.h"

namespace kx::window::x11 {

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
std::optional<POINT> OwnWindows::OriginOf(const Entry& entry, const xcb_configure_notify_event_t& event) const
{
    if ((event.response_type & kSentByAClient) || !entry.framed) return POINT{event.x, event.y};
    const auto cookie = xcb_translate_coordinates(m_connection.Get(), entry.id, m_connection.Root(), 0, 0);
    const auto origin = m_connection.Wait(
        [&] { return Own(xcb_translate_coordinates_reply(m_connection.Get(), cookie, nullptr)); });
    if (!origin) return std::nullopt;
    return POINT{origin->dst_x, origin->dst_y};
}

std::optional<OwnWindows::Change> OwnWindows::Learn(const xcb_configure_notify_event_t& event,
                                                    std::uint32_t sequence, const RECT& rect)
{
    Entry* entry = FindNumber(event.window);
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
    if (Entry* entry = FindNumber(id)) entry->framed = parent != m_connection.Root();
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
