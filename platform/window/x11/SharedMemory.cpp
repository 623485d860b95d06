#include "platform/window/x11/SharedMemory.h"

#include "platform/UniqueFd.h"
#include "platform/window/x11/Connection.h"

#include <fcntl.h>
#include <sys/mman.h>

namespace kx::window::x11 {

// The memory goes to the server as a file, which a connection to another machine can't carry.
bool SharedMemory::IsOffered(const Connection& connection)
{
    if (!connection.IsLocal()) return false;
    const auto* extension = xcb_get_extension_data(connection.Get(), &xcb_shm_id);
    if (!extension || !extension->present) return false;
    const auto cookie = xcb_shm_query_version(connection.Get());
    const auto version = Own(xcb_shm_query_version_reply(connection.Get(), cookie, nullptr));
    constexpr int nFirstWithFiles = 2;
    return version && (version->major_version > 1 || version->minor_version >= nFirstWithFiles);
}

SharedMemory::SharedMemory(const Connection& connection, std::size_t nSize)
    : m_connection(connection), m_nSize(nSize)
{
    UniqueFd file(memfd_create("kx-pixels", MFD_CLOEXEC));
    // Reserved now: a lack of memory later would be a signal.
    if (!file || posix_fallocate(file.Get(), 0, static_cast<off_t>(nSize)) != 0) return;
    void* memory = mmap(nullptr, nSize, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (memory == MAP_FAILED) return;
    if (Attach(file.Release()))
        m_pixels = static_cast<std::uint32_t*>(memory);
    else
        munmap(memory, nSize);
}

// Takes the file.
bool SharedMemory::Attach(int fd)
{
    m_id = xcb_generate_id(m_connection.Get());
    const auto cookie = xcb_shm_attach_fd_checked(m_connection.Get(), m_id, fd, 0);
    const auto error = m_connection.Wait([&] { return Own(xcb_request_check(m_connection.Get(), cookie)); });
    return !error && !m_connection.IsLost();
}

void SharedMemory::AwaitServer()
{
    if (!m_reading) return;
    m_connection.Wait(
        [&] { return Own(xcb_get_input_focus_reply(m_connection.Get(), *m_reading, nullptr)); });
    m_reading.reset();
}

SharedMemory::~SharedMemory()
{
    if (!m_pixels) return;
    xcb_shm_detach(m_connection.Get(), m_id);
    munmap(m_pixels, m_nSize);
}

} // namespace kx::window::x11
