#pragma once

#include "platform/window/Desktop.h"
#include "platform/window/x11/Connection.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kx::window::x11 {

// Top-level windows of other processes of this machine: those that the window manager lists, or without one
// those that lie on the screen, and tell whose they are. At most 1,000.
class ForeignWindows
{
public:
    explicit ForeignWindows(const Connection& connection);

    // Numbers those that are new; a window keeps its number as long as it lives.
    std::vector<HWND> List();
    std::optional<WindowFacts> Find(HWND hWnd) const noexcept;
    bool Has(HWND hWnd) const noexcept { return m_windows.contains(hWnd); }
    // It lives no longer.
    void Forget(xcb_window_t id) noexcept;

private:
    struct Questions
    {
        xcb_window_t id;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_property_cookie_t process;
        xcb_get_property_cookie_t machine;
    };
    Questions Ask(xcb_window_t id) const;
    std::optional<WindowFacts> Answer(const Questions& questions) const noexcept;
    std::vector<xcb_window_t> Candidates() const;
    // Numbers a window, unless it is numbered already.
    bool Add(xcb_window_t id);

    const Connection& m_connection;
    const std::string m_machine;
    std::map<xcb_window_t, HWND> m_handles;
    std::map<HWND, xcb_window_t> m_windows;
};

} // namespace kx::window::x11
