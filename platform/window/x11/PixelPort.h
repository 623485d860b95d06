#pragma once

#include "include/platform/Geometry.h"
#include "platform/gdi/Surface.h"
#include "platform/window/x11/SharedMemory.h"

#include <optional>
#include <vector>

namespace kx::window::x11 {

// Carries pixels to the server's windows and from its screen, through shared memory where it can.
class PixelPort
{
public:
    explicit PixelPort(const Connection& connection);
    PixelPort(const PixelPort&) = delete;
    PixelPort& operator=(const PixelPort&) = delete;
    ~PixelPort();

    // Shows a rectangle of a window's pixels, cut to them. With `below` only so much of them is seen, of 255,
    // over those of that surface.
    void Put(xcb_window_t window, const gdi::Surface& pixels, const RECT& rect,
             const gdi::Surface* below = nullptr, BYTE opacity = 255);
    // Reads a rectangle of the desktop, cut to what the screen holds of it, into the pixels from their top
    // left on, or from the same place on; false if it can't be read.
    bool Get(const RECT& rect, gdi::Surface& pixels, POINT at);

private:
    using Sync = xcb_get_input_focus_cookie_t; // any request with an answer

    // Memory for so many pixels at least, which the server has done with; null where none can be shared.
    SharedMemory* Memory(std::size_t nPixels);
    void AwaitServer();
    struct Picture;
    bool Share(xcb_window_t window, const Picture& picture, const RECT& strip);
    bool Send(xcb_window_t window, const Picture& picture, const RECT& strip);
    bool GetStrip(const RECT& strip, const View& view, gdi::Surface& pixels, POINT at);

    const Connection& m_connection;
    const xcb_gcontext_t m_gc;
    bool m_bShares;
    std::optional<SharedMemory> m_memory;
    std::optional<Sync> m_pending; // the memory is being read
    std::vector<std::uint32_t> m_rows;
};

} // namespace kx::window::x11
