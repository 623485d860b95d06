#pragma once

#include "include/platform/Geometry.h"
#include "platform/gdi/Surface.h"
#include "platform/window/Window.h"
#include "platform/window/x11/Connection.h"

#include <list>
#include <map>
#include <optional>
#include <vector>
#include <xcb/shm.h>

namespace kx::window::x11 {

// Memory that the server sees as well.
class SharedMemory
{
public:
    // Empty where the server is elsewhere, can't share, or there is no memory.
    SharedMemory(const Connection& connection, std::size_t nSize);
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;
    ~SharedMemory();

    xcb_shm_seg_t Id() const noexcept { return m_id; }
    std::uint32_t* Pixels() const noexcept { return m_pixels; } // null for an empty one
    std::size_t Size() const noexcept { return m_nSize; }       // in bytes

    // The server has been asked to read it: the next AwaitServer returns once it has.
    void SetReading() noexcept { m_reading = xcb_get_input_focus(m_connection.Get()); }
    void AwaitServer();

    static bool IsOffered(const Connection& connection);

private:
    bool Attach(int fd);

    const Connection& m_connection;
    const std::size_t m_nSize;
    xcb_shm_seg_t m_id = 0;
    std::uint32_t* m_pixels = nullptr;
    std::optional<xcb_get_input_focus_cookie_t> m_reading; // any request with an answer
};

// Carries pixels to the server's windows and from its screen, through shared memory where it can.
class PixelPort
{
public:
    explicit PixelPort(const Connection& connection);

    // Shows a rectangle of a window's pixels as they are now, if there is something to see of it.
    void Put(xcb_window_t id, const Window& window, const RECT& rect);
    // Reads a rectangle of the desktop, cut to what the screen holds of it, into pixels of its size; false if
    // it can't be read.
    bool Get(const RECT& rect, gdi::Surface& pixels);

    // From before a window is seen it is shown by that opacity, of 255, over what is seen there now; false
    // for one that didn't begin so.
    bool Fade(const Window& window, BYTE opacity);
    void EndFade(HWND hWnd) noexcept { m_fades.erase(hWnd); }

private:
    struct Faded
    {
        gdi::Surface below;
        BYTE opacity;
    };
    using Memory = std::list<SharedMemory>; // one, or none

    // Memory for so many pixels at least, which the server has done with; none where none can be shared.
    Memory TakeMemory(std::size_t nPixels);
    bool CopyOut(const Window& window, const RECT& rect, int nScale, std::uint32_t* to) const;
    bool Share(xcb_window_t id, const Window& window, const RECT& strip, int nScale);
    bool Send(xcb_window_t id, const Window& window, const RECT& strip, int nScale);
    bool GetStrip(const RECT& strip, const View& view, gdi::Surface& pixels, POINT at);

    const Connection& m_connection;
    const xcb_gcontext_t m_gc;
    bool m_bShares;
    Memory m_memory; // all that nobody uses
    std::map<HWND, Faded> m_fades;
    std::vector<std::uint32_t> m_rows;
};

} // namespace kx::window::x11
