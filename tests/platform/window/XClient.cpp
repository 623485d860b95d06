#include "tests/platform/window/XClient.h"

#include "include/platform/Geometry.h"

#include <array>
#include <cstring>
#include <stdexcept>
#include <sys/uio.h>
#include <unistd.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>
#include <xcb/xtest.h>

namespace test {

namespace {

template <class Cookie, class Reply>
std::unique_ptr<Reply, void (*)(void*)>
Answer(Reply* (*take)(xcb_connection_t*, Cookie, xcb_generic_error_t**), xcb_connection_t* c, Cookie cookie)
{
    return {take(c, cookie, nullptr), std::free};
}

constexpr std::uint32_t Swap(COLORREF color)
{
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

} // namespace

XClient::XClient(const std::string& display) : m_connection(xcb_connect(display.c_str(), nullptr))
{
    if (xcb_connection_has_error(m_c)) throw std::runtime_error("no X server");
    m_screen = *xcb_setup_roots_iterator(xcb_get_setup(m_c)).data;
}

void XClient::Finish()
{
    Answer(xcb_get_input_focus_reply, m_c, xcb_get_input_focus(m_c));
}

xcb_atom_t XClient::Atom(const char* name)
{
    const auto reply = Answer(xcb_intern_atom_reply, m_c,
                              xcb_intern_atom(m_c, 0, static_cast<std::uint16_t>(std::strlen(name)), name));
    return reply ? reply->atom : 0;
}

COLORREF XClient::Pixel(int x, int y)
{
    const auto image =
        Answer(xcb_get_image_reply, m_c,
               xcb_get_image(m_c, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen.root, static_cast<std::int16_t>(x),
                             static_cast<std::int16_t>(y), 1, 1, ~0u));
    std::uint32_t pixel = 0;
    if (image) std::memcpy(&pixel, xcb_get_image_data(image.get()), sizeof pixel);
    return Swap(pixel);
}

xcb_window_t XClient::Find(const std::string& title)
{
    const auto tree = Answer(xcb_query_tree_reply, m_c, xcb_query_tree(m_c, m_screen.root));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i)
        for (const char* name : {"_NET_WM_NAME", "WM_NAME"})
            if (Property(xcb_query_tree_children(tree.get())[i], name) == title)
                return xcb_query_tree_children(tree.get())[i];
    return 0;
}

std::string XClient::Property(xcb_window_t window, const char* name)
{
    const auto reply =
        Answer(xcb_get_property_reply, m_c,
               xcb_get_property(m_c, 0, window, Atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 100));
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool XClient::IsPopup(xcb_window_t window)
{
    const auto reply = Answer(xcb_get_window_attributes_reply, m_c, xcb_get_window_attributes(m_c, window));
    return reply && reply->override_redirect;
}

bool XClient::HasOwner(const char* selection)
{
    const auto reply =
        Answer(xcb_get_selection_owner_reply, m_c, xcb_get_selection_owner(m_c, Atom(selection)));
    return reply && reply->owner;
}

xcb_window_t XClient::Cover(int x, int y, int width, int height, COLORREF color, unsigned process)
{
    const xcb_window_t id = xcb_generate_id(m_c);
    const std::array<std::uint32_t, 2> values{Swap(color), 1};
    xcb_create_window(m_c, XCB_COPY_FROM_PARENT, id, m_screen.root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());
    std::array<char, 256> machine{};
    gethostname(machine.data(), machine.size() - 1);
    xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(std::strlen(machine.data())), machine.data());
    if (process)
        xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, id, Atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1,
                            &process);
    xcb_map_window(m_c, id);
    Finish();
    return id;
}

void XClient::Destroy(xcb_window_t window)
{
    xcb_destroy_window(m_c, window);
    Finish();
}

void XClient::Focus(xcb_window_t window)
{
    xcb_set_input_focus(m_c, XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
    Finish();
}

xcb_window_t XClient::Focused()
{
    const auto reply = Answer(xcb_get_input_focus_reply, m_c, xcb_get_input_focus(m_c));
    return reply ? reply->focus : 0;
}

void XClient::AskToClose(xcb_window_t window)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = Atom("WM_PROTOCOLS");
    event.data.data32[0] = Atom("WM_DELETE_WINDOW");
    xcb_send_event(m_c, 0, window, 0, reinterpret_cast<const char*>(&event));
    Finish();
}

void XClient::Place(xcb_window_t window, int x, int y, int width, int height)
{
    const std::array values{x, y, width, height};
    xcb_configure_window(m_c, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    Finish();
}

RECT XClient::PlaceOf(xcb_window_t window)
{
    const auto size = Answer(xcb_get_geometry_reply, m_c, xcb_get_geometry(m_c, window));
    const auto place = Answer(xcb_translate_coordinates_reply, m_c,
                              xcb_translate_coordinates(m_c, window, m_screen.root, 0, 0));
    if (!size || !place) return {};
    return {place->dst_x, place->dst_y, place->dst_x + size->width, place->dst_y + size->height};
}

void XClient::Frame(xcb_window_t window, xcb_window_t frame)
{
    xcb_reparent_window(m_c, window, frame, 0, 0);
    Finish();
}

void XClient::Fake(std::uint8_t type, std::uint8_t detail, int x, int y)
{
    xcb_test_fake_input(m_c, type, detail, XCB_CURRENT_TIME, m_screen.root, static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
    Finish();
}

// libxcb's own xcb_randr_set_monitor (1.15) sends four parts of which it fills three: the fourth is of
// whatever lies on the stack.
void XClient::AddMonitor(const char* name, int x, int y, int width, int height, bool primary)
{
    struct
    {
        xcb_randr_set_monitor_request_t head{};
        xcb_randr_monitor_info_t info{};
    } request;
    request.head.window = m_screen.root;
    request.info.name = Atom(name);
    request.info.primary = primary;
    request.info.x = static_cast<std::int16_t>(x);
    request.info.y = static_cast<std::int16_t>(y);
    request.info.width = static_cast<std::uint16_t>(width);
    request.info.height = static_cast<std::uint16_t>(height);
    Answer(xcb_randr_query_version_reply, m_c, xcb_randr_query_version(m_c, 1, 5));
    xcb_randr_delete_monitor(m_c, m_screen.root, request.info.name);
    const xcb_protocol_request_t kind{1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    std::array<iovec, 3> parts{}; // the library puts what it needs into the first two
    parts[2] = {&request, sizeof request};
    xcb_send_request(m_c, 0, &parts[2], &kind);
    // The server tells of a real monitor's change, but not of such a one: another change has it speak.
    static std::uint32_t millimetres = 100;
    ++millimetres;
    xcb_randr_set_screen_size(m_c, m_screen.root, m_screen.width_in_pixels, m_screen.height_in_pixels,
                              millimetres, millimetres);
    Finish();
}

void XClient::SetResources(const std::string& text)
{
    xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, m_screen.root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING,
                        8, static_cast<std::uint32_t>(text.size()), text.data());
    Finish();
}

void XClient::MoveMouse(int x, int y)
{
    Fake(XCB_MOTION_NOTIFY, 0, x, y);
}

void XClient::Button(int number, bool down)
{
    Fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(number));
}

void XClient::Click(int number)
{
    Button(number, true);
    Button(number, false);
}

void XClient::Type(xcb_keycode_t code)
{
    Key(code, true);
    Key(code, false);
}

void XClient::Key(xcb_keycode_t code, bool down)
{
    Fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code);
}

xcb_keycode_t XClient::KeyOf(xcb_keysym_t symbol)
{
    const xcb_setup_t* setup = xcb_get_setup(m_c);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto reply =
        Answer(xcb_get_keyboard_mapping_reply, m_c, xcb_get_keyboard_mapping(m_c, setup->min_keycode, count));
    if (!reply) return 0;
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    for (int i = 0; i < count; ++i)
        if (symbols[i * reply->keysyms_per_keycode] == symbol)
            return static_cast<xcb_keycode_t>(setup->min_keycode + i);
    return 0;
}

xcb_keycode_t XClient::Assign(xcb_keysym_t symbol)
{
    const xcb_keycode_t spare = KeyOf(XCB_NO_SYMBOL);
    xcb_change_keyboard_mapping(m_c, 1, spare, 1, &symbol);
    Finish();
    return spare;
}

} // namespace test
