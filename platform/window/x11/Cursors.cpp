#include "platform/window/x11/OwnWindows.h"

#include "include/platform/Input.h"

#include <algorithm>
#include <iterator>

namespace kx::window::x11 {

namespace {

struct Named
{
    const char* number;
    const char* name;
};

const Named kNames[] = {{IDC_ARROW, "left_ptr"},
                        {IDC_IBEAM, "xterm"},
                        {IDC_WAIT, "watch"},
                        {IDC_CROSS, "crosshair"},
                        {IDC_SIZENWSE, "bottom_right_corner"},
                        {IDC_SIZENESW, "bottom_left_corner"},
                        {IDC_SIZEWE, "sb_h_double_arrow"},
                        {IDC_SIZENS, "sb_v_double_arrow"},
                        {IDC_SIZEALL, "fleur"},
                        {IDC_NO, "X_cursor"},
                        {IDC_HAND, "hand2"},
                        {IDC_APPSTARTING, "left_ptr_watch"}};

} // namespace

xcb_cursor_t Cursors::Get(HCURSOR hCursor)
{
    const auto it = m_cursors.find(hCursor);
    if (it != m_cursors.end()) return it->second;
    const xcb_cursor_t cursor = hCursor ? Load(hCursor) : MakeEmpty();
    return m_cursors.try_emplace(hCursor, cursor).first->second;
}

// None, which is the parent's, for one that has no name.
xcb_cursor_t Cursors::Load(HCURSOR hCursor)
{
    if (!m_context) {
        auto screen = m_connection.Screen();
        std::unique_ptr<xcb_cursor_context_t, Free> made(m_connection.Wait([&] {
            xcb_cursor_context_t* context = nullptr;
            return xcb_cursor_context_new(m_connection.Get(), &screen, &context) < 0 ? nullptr : context;
        }));
        if (!m_context) m_context = std::move(made);
        if (!m_context) return XCB_NONE;
    }
    const auto it = std::ranges::find(kNames, reinterpret_cast<const char*>(hCursor), &Named::number);
    if (it == std::end(kNames)) return XCB_NONE;
    const xcb_cursor_t cursor = xcb_cursor_load_cursor(m_context.get(), it->name);
    // A theme may lack the arrow with the clock.
    return cursor || it->number != IDC_APPSTARTING ? cursor : Get(LoadCursorA(nullptr, IDC_WAIT));
}

xcb_cursor_t Cursors::MakeEmpty() const
{
    xcb_connection_t* const server = m_connection.Get();
    const xcb_pixmap_t nothing = xcb_generate_id(server);
    const xcb_gcontext_t gc = xcb_generate_id(server);
    const xcb_cursor_t cursor = xcb_generate_id(server);
    const std::uint32_t zero = 0;
    const xcb_rectangle_t pixel{0, 0, 1, 1};
    xcb_create_pixmap(server, 1, nothing, m_connection.Root(), 1, 1);
    xcb_create_gc(server, gc, nothing, XCB_GC_FOREGROUND, &zero);
    xcb_poly_fill_rectangle(server, nothing, gc, 1, &pixel);
    xcb_create_cursor(server, cursor, nothing, nothing, 0, 0, 0, 0, 0, 0, 0, 0);
    xcb_free_gc(server, gc);
    xcb_free_pixmap(server, nothing);
    return cursor;
}

} // namespace kx::window::x11
