#pragma once

#include "platform/window/x11/Connection.h"

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

    static bool IsOffered(const Connection& connection);

private:
    bool Attach(int fd);

    const Connection& m_connection;
    const std::size_t m_nSize;
    xcb_shm_seg_t m_id = 0;
    std::uint32_t* m_pixels = nullptr;
};

} // namespace kx::window::x11
