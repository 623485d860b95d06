#pragma once

#include "platform/window/x11/Connection.h"

#include <optional>
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

} // namespace kx::window::x11
