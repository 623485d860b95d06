#include "platform/window/x11/Connection.h"

#include <array>
#include <bit>
#include <string_view>
#include <sys/socket.h>

namespace kx::window::x11 {

namespace {

const xcb_screen_t* FindScreen(const xcb_setup_t& setup, int nScreen)
{
    auto it = xcb_setup_roots_iterator(&setup);
    for (; it.rem > 0 && nScreen > 0; --nScreen)
        xcb_screen_next(&it);
    return it.rem > 0 ? it.data : nullptr;
}

bool HasOurMasks(const xcb_visualtype_t& visual) noexcept
{
    return visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xFF0000 &&
           visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF;
}

const xcb_visualtype_t* FindVisual(const xcb_screen_t& screen)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth))
        for (auto it = xcb_depth_visuals_iterator(depth.data); it.rem > 0; xcb_visualtype_next(&it))
            if (it.data->visual_id == screen.root_visual) return it.data;
    return nullptr;
}

int BitsOfPixel(const xcb_setup_t& setup, int nDepth)
{
    for (auto it = xcb_setup_pixmap_formats_iterator(&setup); it.rem > 0; xcb_format_next(&it))
        if (it.data->depth == nDepth) return it.data->bits_per_pixel;
    return 0;
}

bool SeesOurPixels(const xcb_setup_t& setup, const xcb_screen_t& screen)
{
    constexpr auto order =
        std::endian::native == std::endian::little ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
    const xcb_visualtype_t* visual = FindVisual(screen);
    return visual && HasOurMasks(*visual) && screen.root_depth >= 24 && setup.image_byte_order == order &&
           BitsOfPixel(setup, screen.root_depth) == 32;
}

} // namespace

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

std::unique_ptr<Connection> Connection::Open(const char* pszDisplay)
{
    int nScreen = 0;
    Handle connection(xcb_connect(pszDisplay, &nScreen));
    if (xcb_connection_has_error(connection.get())) return nullptr;
    const xcb_setup_t* setup = xcb_get_setup(connection.get());
    const xcb_screen_t* screen = setup ? FindScreen(*setup, nScreen) : nullptr;
    if (!screen) return nullptr;
    auto opened = std::unique_ptr<Connection>(new Connection(std::move(connection), *setup, *screen));
    return opened->IsLost() ? nullptr : std::move(opened);
}

Connection::Connection(Handle connection, const xcb_setup_t& setup, const xcb_screen_t& screen)
    : atoms(connection.get()),
      size(ScreenSize{{screen.width_in_pixels, screen.height_in_pixels}}),
      m_connection(std::move(connection)),
      m_screen(screen),
      m_bOurPixels(SeesOurPixels(setup, screen)),
      m_idBase(setup.resource_id_base),
      m_idMask(setup.resource_id_mask)
{
    // The screen may be given another size.
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(Get(), Root(), XCB_CW_EVENT_MASK, &events);
}

bool Connection::IsLocal() const noexcept
{
    sockaddr_storage peer{};
    socklen_t length = sizeof peer;
    const int fd = xcb_get_file_descriptor(Get());
    return getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &length) == 0 && peer.ss_family == AF_UNIX;
}

// The server counts words, and those of the request's head with them.
std::size_t Connection::MostRequestBytes() const noexcept
{
    constexpr std::size_t nHead = 64;
    const std::size_t nMost = std::size_t{xcb_get_maximum_request_length(Get())} * 4;
    return nMost > nHead ? nMost - nHead : 0;
}

void Connection::Shut() noexcept
{
    shutdown(xcb_get_file_descriptor(Get()), SHUT_RDWR);
}

} // namespace kx::window::x11
