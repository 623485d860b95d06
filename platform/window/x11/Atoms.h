#pragma once

#include <xcb/xcb.h>

namespace kx::window::x11 {

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

} // namespace kx::window::x11
