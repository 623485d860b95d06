#include "platform/window/x11/Atoms.h"

#include "platform/window/x11/Reply.h"

#include <array>
#include <string_view>

namespace kx::window::x11 {

Atoms::Atoms(xcb_connection_t* connection)
{
    struct Name
    {
        xcb_atom_t* place;
        std::string_view name;
        xcb_intern_atom_cookie_t cookie{};
    };
    std::array names{
        Name{&utf8String, "UTF8_STRING"},
        Name{&wmProtocols, "WM_PROTOCOLS"},
        Name{&wmDeleteWindow, "WM_DELETE_WINDOW"},
        Name{&motifHints, "_MOTIF_WM_HINTS"},
        Name{&netWmName, "_NET_WM_NAME"},
        Name{&netWmPid, "_NET_WM_PID"},
        Name{&netWmState, "_NET_WM_STATE"},
        Name{&netWmStateAbove, "_NET_WM_STATE_ABOVE"},
        Name{&netWmOpacity, "_NET_WM_WINDOW_OPACITY"},
        Name{&netClientList, "_NET_CLIENT_LIST"},
    };
    // All are asked for before the first answer is awaited.
    for (Name& entry : names)
        entry.cookie =
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(entry.name.size()), entry.name.data());
    for (const Name& entry : names)
        if (const auto reply = Own(xcb_intern_atom_reply(connection, entry.cookie, nullptr)))
            *entry.place = reply->atom;
}

} // namespace kx::window::x11
