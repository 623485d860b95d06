#pragma once

#include "include/platform/Types.h"
#include "platform/window/Desktop.h"
#include "platform/window/WindowStack.h"
#include "platform/window/x11/Connection.h"

#include <map>
#include <memory>
#include <optional>
#include <xcb/xcb_cursor.h>

namespace kx::window::x11 {

// The system's cursors as the server's, from the user's theme; each is made when it is first asked for.
class Cursors
{
public:
    explicit Cursors(const Connection& connection) : m_connection(connection) {}
    Cursors(const Cursors&) = delete;
    Cursors& operator=(const Cursors&) = delete;

    // An empty one for null.
    xcb_cursor_t Get(HCURSOR hCursor);

private:
    struct Free
    {
        void operator()(xcb_cursor_context_t* context) const noexcept { xcb_cursor_context_free(context); }
    };
    xcb_cursor_t Load(HCURSOR hCursor);
    xcb_cursor_t MakeEmpty() const;

    const Connection& m_connection;
    std::unique_ptr<xcb_cursor_context_t, Free> m_context; // null until a cursor was asked for
    std::map<HCURSOR, xcb_cursor_t> m_cursors;             // they end with the connection
};

// This process's windows on the server. A handle or number that is none of them is harmless.
class OwnWindows
{
public:
    explicit OwnWindows(const Connection& connection) : m_connection(connection), m_cursors(connection) {}

    bool Create(HWND hWnd, const CREATESTRUCTA& create);
    void Destroy(HWND hWnd) noexcept;
    void Show(HWND hWnd, bool bVisible);
    void Place(HWND hWnd, const RECT& rect);
    void Stack(HWND hWnd, Order order);
    void Focus(HWND hWnd);
    // By what the server has told, and as long as it answered the last wish.
    bool HasFocus(HWND hWnd) const noexcept { return m_focused == NumberOf(hWnd) && !m_focusing; }
    void SetOwner(HWND hWnd, HWND hOwner);
    void SetCursor(HWND hWnd, HCURSOR hCursor);
    void SetCaret(HWND hWnd, POINT place);

    // Gives the place where text is being written in a window, in the server's pixels.
    POINT CaretOf(HWND hWnd) const noexcept;
    // Null or 0 for none.
    xcb_window_t NumberOf(HWND hWnd) const noexcept;
    HWND HandleOf(xcb_window_t id) const noexcept;
    std::vector<HWND> Handles() const { return m_stack.Handles(); }

    // ---- What the server tells

    // Reads an event of that sequence number about a window that had that rectangle. Gives the new rectangle
    // and what changed; nothing if the event says nothing new.
    struct Change
    {
        RECT rect;
        bool moved;
        bool resized;
    };
    std::optional<Change> Learn(const xcb_configure_notify_event_t& event, std::uint32_t sequence,
                                const RECT& rect);
    // The desktop lies elsewhere on the screen: the window's rectangle on it.
    std::optional<RECT> PlaceOf(HWND hWnd) const noexcept;
    void LearnParent(xcb_window_t id, xcb_window_t parent) noexcept;
    // It can be given the keyboard only from now on.
    void LearnShown(xcb_window_t id);
    // Whether it is news: what was so before the last wish of this process is old.
    bool LearnFocus(xcb_window_t id, bool bHas, std::uint32_t sequence) noexcept;

private:
    struct OwnWindow
    {
        xcb_window_t id;
        bool popup; // not the window manager's business
        bool shown = false;
        bool topmost = false;
        bool modal = false; // takes the input of its owner
        HCURSOR cursor = nullptr;
        POINT caret{};
        bool framed = false;                    // lies in a window of the manager's
        RECT place{};                           // as the server has it, or was told last
        std::optional<std::uint32_t> placing{}; // the request that told it, until the server has come to it
    };

    OwnWindow* Find(HWND hWnd) noexcept;
    OwnWindow* FindNumber(xcb_window_t id) noexcept { return Find(HandleOf(id)); }
    void Raise(const OwnWindow& entry);
    // The place within the screen that the event tells within the window's parent.
    std::optional<POINT> OriginOf(const OwnWindow& entry, const xcb_configure_notify_event_t& event) const;

    const Connection& m_connection;
    Cursors m_cursors;
    std::map<HWND, OwnWindow> m_entries;
    std::map<xcb_window_t, HWND> m_handles;
    WindowStack m_stack;
    xcb_window_t m_focused = 0;
    xcb_window_t m_wantsFocus = 0;           // not shown yet
    std::optional<std::uint32_t> m_focusing; // the request that asked last, likewise
};

} // namespace kx::window::x11
