#pragma once

#include "include/platform/Types.h"
#include "platform/window/x11/Connection.h"

#include <map>
#include <memory>
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

} // namespace kx::window::x11
