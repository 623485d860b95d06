#pragma once

#include "include/platform/Geometry.h"
#include "platform/sync/Mutex.h"

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace kx::window::x11 {

struct Free
{
    void operator()(void* p) const noexcept { std::free(p); }
};

// An answer of the server: a block of xcb's, null where the answer is an error or the server is lost.
template <class T>
using Reply = std::unique_ptr<T, Free>;

template <class T>
Reply<T> TakeReply(T* reply) noexcept
{
    return Reply<T>(reply);
}

// The server's numbers of the names that are used here; 0 for all once the server is lost.
struct Atoms
{
    Atoms(xcb_connection_t* connection, int nScreen);

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
    xcb_atom_t netWmIcon = 0;
    xcb_atom_t netWmStateModal = 0;
    xcb_atom_t netWmWindowType = 0;
    xcb_atom_t netWmWindowTypeDialog = 0;
    xcb_atom_t compositor = 0; // the selection that one owns
};

// How the desktop lies on the server's screen: its origin is the primary monitor's top left, and each of its
// pixels is a square of `scale` pixels of the server's.
struct View
{
    int scale = 1;
    POINT origin{}; // in pixels of the server's
    SIZE monitor{}; // the primary one
    SIZE reach{};   // from the origin to the screen's right and bottom end
    SIZE whole{};   // the same, but for a pixel that ends beyond

    // The pixel of the desktop that a pixel of the server's lies in, as all the following.
    POINT ToDesktop(int x, int y) const noexcept { return {Floor(x - origin.x), Floor(y - origin.y)}; }
    RECT ToDesktop(const RECT& place) const noexcept
    {
        const POINT at = ToDesktop(place.left, place.top);
        return {at.x, at.y, at.x + Part(place.right - place.left), at.y + Part(place.bottom - place.top)};
    }
    // Within a window.
    int Floor(int n) const noexcept { return n >= 0 ? n / scale : -((scale - 1 - n) / scale); }
    // How many pixels a length of the server's needs.
    int Part(int n) const noexcept { return (n + scale - 1) / scale; }

    bool operator==(const View&) const = default;
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
    // How many bytes of its own a request may carry.
    std::size_t MostRequestBytes() const noexcept;
    // Makes it lost, and lets go whoever waits for it. Any thread.
    void Shut() noexcept;

    int Number() const noexcept { return m_nScreen; }
    xcb_window_t Root() const noexcept { return m_screen.root; }
    const xcb_screen_t& Screen() const noexcept { return m_screen; }
    // Whether its pixels are those that windows keep: 32 bits, 0xXXRRGGBB in this machine's order.
    bool HasOurPixels() const noexcept { return m_bOurPixels; }
    // Whether a window of that number was made by this connection.
    bool IsOurs(xcb_window_t id) const noexcept { return (id & ~m_idMask) == m_idBase; }

    View GetView() const;
    // Asks the server for its monitors again; whether they have changed, or the screen has.
    bool LearnView();
    bool IsMonitorChange(const xcb_generic_event_t& event) const noexcept;
    // Whether the server is a guest on another desktop, of which it sees its own windows alone.
    bool IsGuest() const noexcept { return m_bGuest; }
    // Whether something shows windows by their opacity.
    bool HasCompositor() const noexcept;

    // Runs what waits for an answer, within an Access. Others may use the connection meanwhile, so that what
    // the lock guards may be another after it.
    template <class Call>
    auto Wait(Call call) const noexcept
    {
        useLock.AssertHeld();
        const sync::MutexUnlock others(useLock);
        const sync::MutexLock turn(turnLock);
        return call();
    }

    const Atoms atoms;
    mutable sync::Mutex useLock; // guards what stands on the connection (see Access)
    // Held while an answer is awaited, after the other has been let go: where the connection ends while two
    // threads wait, xcb searches its list of them without end.
    mutable sync::Mutex turnLock;

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t* connection) const noexcept { xcb_disconnect(connection); }
    };
    using Handle = std::unique_ptr<xcb_connection_t, Disconnect>;
    Connection(Handle connection, int nScreen, const xcb_setup_t& setup, const xcb_screen_t& screen);

    const Handle m_connection;
    const int m_nScreen;
    const xcb_screen_t m_screen;
    const bool m_bOurPixels;
    const bool m_bGuest;
    std::uint8_t m_firstMonitorEvent = 0; // 0 for a server that tells of none
    mutable sync::Mutex m_lock;
    View m_view KX_GUARDED_BY(m_lock);
    const std::uint32_t m_idBase;
    const std::uint32_t m_idMask;
};

} // namespace kx::window::x11
