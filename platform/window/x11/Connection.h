#pragma once

#include "include/platform/Geometry.h"

#include <atomic>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace kx::window::x11 {

struct Free
{
    void operator()(void* p) const noexcept { std::free(p); }
};

// What the server answered: a block of xcb's, null where the answer is an error or the server is lost.
template <class T>
using Reply = std::unique_ptr<T, Free>;

template <class T>
Reply<T> Own(T* reply) noexcept
{
    return Reply<T>(reply);
}

// The server's numbers of the names that are used here; 0 for all once the server is lost.
struct Atoms
{
    explicit Atoms(xcb_connection_t* connection);

    xcb_atom_t utf8String = 0;
    xcb_atom_t wmProtocols = 0;
    xcb_atom_t wmDeleteWindow = 0;
    xcb_atom_t motifHints = 0;
    xcb_atom_t netWmName = 0;
    xcb_atom_t netWmPid = 0;
    xcb_atom_t netWmState = 0;
    xcb_atom_t netWmStateAbove = 0;
    xcb_atom_t netWmOpacity = 0;
    xcb_atom_t netClientList = 0;
};

// Aligned so that any compiler reads and writes it in one step.
struct alignas(std::uint64_t) ScreenSize : SIZE
{
};

// A connection to a server, and what is known of its screen. Once the server is lost requests do nothing and
// answers are null.
class Connection
{
public:
    // Null for a server that refuses, and without end for one that says nothing. A null name is DISPLAY's.
    static std::unique_ptr<Connection> Open(const char* pszDisplay);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    xcb_connection_t* Get() const noexcept { return m_connection.get(); }
    bool IsLost() const noexcept { return xcb_connection_has_error(Get()) != 0; }
    // Whether it is on this machine, so that memory can be shared with it.
    bool IsLocal() const noexcept;
    // How many bytes of its own a request may carry.
    std::size_t MostRequestBytes() const noexcept;
    // Makes it lost, and lets go whoever waits for it. Any thread.
    void Shut() noexcept;

    xcb_window_t Root() const noexcept { return m_screen.root; }
    const xcb_screen_t& Screen() const noexcept { return m_screen; }
    // Whether its pixels are those that windows keep: 32 bits, 0xXXRRGGBB in this machine's order.
    bool HasOurPixels() const noexcept { return m_bOurPixels; }
    // Whether a window of that number was made by this connection.
    bool IsOurs(xcb_window_t id) const noexcept { return (id & ~m_idMask) == m_idBase; }

    const Atoms atoms;
    std::atomic<ScreenSize> size;

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t* connection) const noexcept { xcb_disconnect(connection); }
    };
    using Handle = std::unique_ptr<xcb_connection_t, Disconnect>;
    Connection(Handle connection, const xcb_setup_t& setup, const xcb_screen_t& screen);

    const Handle m_connection;
    const xcb_screen_t m_screen;
    const bool m_bOurPixels;
    const std::uint32_t m_idBase;
    const std::uint32_t m_idMask;
};

} // namespace kx::window::x11
