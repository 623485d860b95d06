#include "platform/window/x11/Connection.h"

#include "platform/gdi/Rect.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <utility>
#include <xcb/randr.h>
#include <xcb/shape.h>

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
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth)) {
        const std::span visuals(xcb_depth_visuals(depth.data), depth.data->visuals_len);
        const auto it = std::ranges::find(visuals, screen.root_visual, &xcb_visualtype_t::visual_id);
        if (it != visuals.end()) return &*it;
    }
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

bool IsOffered(xcb_connection_t* connection, std::string_view name)
{
    const auto cookie = xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = TakeReply(xcb_query_extension_reply(connection, cookie, nullptr));
    return reply && reply->present;
}

// One on Wayland says so by an extension, or if it is older by the names of its outputs.
bool IsGuestServer(xcb_connection_t* connection, xcb_window_t root)
{
    if (IsOffered(connection, "XWAYLAND")) return true;
    if (!IsOffered(connection, "RANDR")) return false;
    const auto resources = TakeReply(xcb_randr_get_screen_resources_current_reply(
        connection, xcb_randr_get_screen_resources_current(connection, root), nullptr));
    if (!resources) return false;
    const std::span outputs(xcb_randr_get_screen_resources_current_outputs(resources.get()),
                            resources->num_outputs);
    return std::ranges::any_of(outputs, [connection](xcb_randr_output_t one) {
        const auto output = TakeReply(xcb_randr_get_output_info_reply(
            connection, xcb_randr_get_output_info(connection, one, XCB_CURRENT_TIME), nullptr));
        if (!output) return false;
        const auto* name = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(output.get()));
        return std::string_view(name, output->name_len).starts_with("XWAYLAND");
    });
}

// The primary monitor; without one the first, and without any the whole screen.
RECT Primary(xcb_connection_t* connection, xcb_window_t root, SIZE screen)
{
    RECT found{0, 0, screen.cx, screen.cy};
    const auto reply = TakeReply(
        xcb_randr_get_monitors_reply(connection, xcb_randr_get_monitors(connection, root, 1), nullptr));
    if (!reply) return found;
    bool bFirst = true;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        const auto& info = *it.data;
        const RECT monitor{info.x, info.y, info.x + info.width, info.y + info.height};
        if (!gdi::IsEmpty(monitor) && (bFirst || info.primary)) found = monitor;
        bFirst = false;
        if (info.primary) break;
    }
    return found;
}

// The environment's word, else what the desktop's settings say of the dots of an inch, of which 96 are usual.
int ScaleOf(xcb_connection_t* connection, xcb_window_t root)
{
    constexpr std::uint32_t nMostWords = 16'384;
    constexpr std::string_view key = "Xft.dpi:";
    double scale = 1;
    if (const char* pszScale = std::getenv("KX_SCALE"); pszScale && *pszScale) {
        scale = std::atof(pszScale);
    } else {
        const auto reply = TakeReply(xcb_get_property_reply(
            connection,
            xcb_get_property(connection, 0, root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0, nMostWords),
            nullptr));
        if (!reply || reply->format != 8) return 1;
        const std::string settings(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                   static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
        const std::size_t at = settings.starts_with(key) ? 0 : settings.find("\n" + std::string(key));
        if (at == std::string::npos) return 1;
        scale = std::atof(settings.c_str() + settings.find(':', at) + 1) / 96;
    }
    return scale >= 1 ? static_cast<int>(std::min(std::lround(scale), 3L)) : 1;
}

} // namespace

Atoms::Atoms(xcb_connection_t* connection, int nScreen)
{
    const std::string selection = "_NET_WM_CM_S" + std::to_string(nScreen);
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
        Name{&netWmIcon, "_NET_WM_ICON"},
        Name{&netWmStateModal, "_NET_WM_STATE_MODAL"},
        Name{&netWmWindowType, "_NET_WM_WINDOW_TYPE"},
        Name{&netWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG"},
        Name{&compositor, selection},
    };
    // All are asked for before the first answer is awaited.
    for (Name& entry : names)
        entry.cookie =
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(entry.name.size()), entry.name.data());
    for (const Name& entry : names)
        if (const auto reply = TakeReply(xcb_intern_atom_reply(connection, entry.cookie, nullptr)))
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
    auto opened =
        std::unique_ptr<Connection>(new Connection(std::move(connection), nScreen, *setup, *screen));
    return opened->IsLost() ? nullptr : std::move(opened);
}

Connection::Connection(Handle connection, int nScreen, const xcb_setup_t& setup, const xcb_screen_t& screen)
    : atoms(connection.get(), nScreen),
      m_connection(std::move(connection)),
      m_nScreen(nScreen),
      m_screen(screen),
      m_bOurPixels(SeesOurPixels(setup, screen)),
      m_bGuest(IsGuestServer(Get(), screen.root)),
      m_idBase(setup.resource_id_base),
      m_idMask(setup.resource_id_mask)
{
    // The screen may be given another size.
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(Get(), Root(), XCB_CW_EVENT_MASK, &events);
    const auto* monitors = xcb_get_extension_data(Get(), &xcb_randr_id);
    if (monitors && monitors->present) {
        m_firstMonitorEvent = monitors->first_event;
        TakeReply(xcb_randr_query_version_reply(Get(), xcb_randr_query_version(Get(), 1, 5), nullptr));
        xcb_randr_select_input(Get(), Root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
    xcb_get_extension_data(Get(), &xcb_shape_id); // asked for now, both are known without waiting later
    xcb_get_maximum_request_length(Get());
    m_view.scale = ScaleOf(Get(), Root());
    LearnView();
}

View Connection::GetView() const
{
    const sync::MutexLock lock(m_lock);
    return m_view;
}

bool Connection::LearnView()
{
    View view = GetView();
    const auto size = TakeReply(xcb_get_geometry_reply(Get(), xcb_get_geometry(Get(), Root()), nullptr));
    if (!size) return false;
    const RECT monitor = m_firstMonitorEvent ? Primary(Get(), Root(), {size->width, size->height})
                                             : RECT{0, 0, size->width, size->height};
    view.origin = {monitor.left, monitor.top};
    view.monitor = {view.Part(monitor.right - monitor.left), view.Part(monitor.bottom - monitor.top)};
    view.whole = {(size->width - monitor.left) / view.scale, (size->height - monitor.top) / view.scale};
    view.reach = {view.Part(size->width - monitor.left), view.Part(size->height - monitor.top)};
    const sync::MutexLock lock(m_lock);
    return std::exchange(m_view, view) != view;
}

bool Connection::IsMonitorChange(const xcb_generic_event_t& event) const noexcept
{
    const int kind = event.response_type & 0x7F;
    return m_firstMonitorEvent && (kind == m_firstMonitorEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                                   kind == m_firstMonitorEvent + XCB_RANDR_NOTIFY);
}

bool Connection::HasCompositor() const noexcept
{
    const auto owner = Wait([&] {
        return TakeReply(
            xcb_get_selection_owner_reply(Get(), xcb_get_selection_owner(Get(), atoms.compositor), nullptr));
    });
    return owner && owner->owner != XCB_NONE;
}

// The server counts words, and those of the request's head with them.
std::size_t Connection::MostRequestBytes() const noexcept
{
    constexpr std::size_t nHead = 64;
    const std::size_t nMost = std::size_t{xcb_get_maximum_request_length(Get())} * 4;
    return std::max(nMost, nHead) - nHead;
}

void Connection::Shut() noexcept
{
    shutdown(xcb_get_file_descriptor(Get()), SHUT_RDWR);
}

} // namespace kx::window::x11
