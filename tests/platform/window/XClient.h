#pragma once

#include "include/platform/Gdi.h"
#include "include/platform/Geometry.h"
#include "tests/support/Standard.h"

#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

namespace test {

// Another program on the same X server: it looks at the screen, handles windows from outside and moves the
// mouse and the keys.
class XClient
{
public:
    explicit XClient(const std::string& display)
        : m_connection(xcb_connect(display.c_str(), nullptr), xcb_disconnect)
    {
        if (xcb_connection_has_error(m_c)) throw std::runtime_error("no X server");
        m_screen = *xcb_setup_roots_iterator(xcb_get_setup(m_c)).data;
    }

    // The colour that is seen there.
    COLORREF Pixel(int x, int y)
    {
        const auto image =
            Answer(xcb_get_image_reply,
                   xcb_get_image(m_c, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen.root, static_cast<std::int16_t>(x),
                                 static_cast<std::int16_t>(y), 1, 1, ~0u));
        std::uint32_t pixel = 0;
        if (image) std::memcpy(&pixel, xcb_get_image_data(image.get()), sizeof pixel);
        return Swap(pixel);
    }
    // The top-level window of that title; 0 for none.
    xcb_window_t Find(const std::string& title)
    {
        const auto tree = Answer(xcb_query_tree_reply, xcb_query_tree(m_c, m_screen.root));
        for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i)
            for (const char* name : {"_NET_WM_NAME", "WM_NAME"})
                if (Property(xcb_query_tree_children(tree.get())[i], name) == title)
                    return xcb_query_tree_children(tree.get())[i];
        return 0;
    }
    xcb_atom_t Atom(const char* name)
    {
        const auto length = static_cast<std::uint16_t>(std::strlen(name));
        const auto reply = Answer(xcb_intern_atom_reply, xcb_intern_atom(m_c, 0, length, name));
        return reply ? reply->atom : 0;
    }
    // A property's bytes as they lie there; empty for none.
    std::string Property(xcb_window_t window, const char* name)
    {
        const auto reply =
            Answer(xcb_get_property_reply,
                   xcb_get_property(m_c, 0, window, Atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 100));
        if (!reply) return {};
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }
    bool IsPopup(xcb_window_t window)
    {
        const auto reply = Answer(xcb_get_window_attributes_reply, xcb_get_window_attributes(m_c, window));
        return reply && reply->override_redirect;
    }
    // The picture of the cursor, as its size and its pixels lie there.
    std::string Cursor()
    {
        Answer(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(m_c, 1, 0));
        const auto reply = Answer(xcb_xfixes_get_cursor_image_reply, xcb_xfixes_get_cursor_image(m_c));
        if (!reply) return {};
        const auto* pixels =
            reinterpret_cast<const char*>(xcb_xfixes_get_cursor_image_cursor_image(reply.get()));
        return {pixels,
                4 * static_cast<std::size_t>(xcb_xfixes_get_cursor_image_cursor_image_length(reply.get()))};
    }
    // Whether some program has a selection, which stands for a role.
    bool HasOwner(const char* selection)
    {
        const auto reply =
            Answer(xcb_get_selection_owner_reply, xcb_get_selection_owner(m_c, Atom(selection)));
        return reply && reply->owner;
    }

    // A coloured window over all others, of another process of this machine if `process` isn't 0, and with
    // the number of one that has ended if that is given.
    xcb_window_t Cover(int x, int y, int width, int height, COLORREF color, unsigned process = 0,
                       xcb_window_t id = 0)
    {
        if (!id) id = xcb_generate_id(m_c);
        const std::array<std::uint32_t, 2> values{Swap(color), 1};
        xcb_create_window(m_c, XCB_COPY_FROM_PARENT, id, m_screen.root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());
        Place(id, x, y, width, height);
        std::array<char, 256> machine{};
        gethostname(machine.data(), machine.size() - 1);
        SetProperty(id, "WM_CLIENT_MACHINE", XCB_ATOM_STRING, 8, std::strlen(machine.data()), machine.data());
        if (process) SetProperty(id, "_NET_WM_PID", XCB_ATOM_CARDINAL, 32, 1, &process);
        Finish(xcb_map_window(m_c, id));
        return id;
    }
    void Destroy(xcb_window_t window) { Finish(xcb_destroy_window(m_c, window)); }
    void AskToClose(xcb_window_t window)
    {
        xcb_client_message_event_t event{XCB_CLIENT_MESSAGE, 32, 0, window, Atom("WM_PROTOCOLS"), {}};
        event.data.data32[0] = Atom("WM_DELETE_WINDOW");
        Finish(xcb_send_event(m_c, 0, window, 0, reinterpret_cast<const char*>(&event)));
    }
    // Hears what windows ask of a manager.
    void HearRequests()
    {
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        Finish(xcb_change_window_attributes(m_c, m_screen.root, XCB_CW_EVENT_MASK, &mask));
    }
    // The numbers of the next, or the window of one that is hidden; none if none has come.
    std::vector<std::uint32_t> TakeRequest()
    {
        const std::unique_ptr<xcb_generic_event_t, void (*)(void*)> event(xcb_poll_for_event(m_c), std::free);
        if (!event) return {};
        constexpr int kSent = 0x80;
        const auto* hidden = reinterpret_cast<xcb_unmap_notify_event_t*>(event.get());
        if (event->response_type == (kSent | XCB_UNMAP_NOTIFY) && hidden->event == m_screen.root)
            return {hidden->window};
        if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) return {};
        const auto* numbers = reinterpret_cast<xcb_client_message_event_t*>(event.get())->data.data32;
        return {numbers, numbers + 5};
    }
    void Focus(xcb_window_t window) // 0: none
    {
        Finish(xcb_set_input_focus(m_c, XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME));
    }
    xcb_window_t Focused()
    {
        const auto reply = Answer(xcb_get_input_focus_reply, xcb_get_input_focus(m_c));
        return reply ? reply->focus : 0;
    }
    void Place(xcb_window_t window, int x, int y, int width, int height)
    {
        const std::array values{x, y, width, height};
        constexpr auto mask =
            XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
        Finish(xcb_configure_window(m_c, window, mask, values.data()));
    }
    // Its place on the screen; empty for no such window.
    RECT PlaceOf(xcb_window_t window)
    {
        const auto size = Answer(xcb_get_geometry_reply, xcb_get_geometry(m_c, window));
        const auto place = Answer(xcb_translate_coordinates_reply,
                                  xcb_translate_coordinates(m_c, window, m_screen.root, 0, 0));
        if (!size || !place) return {};
        return {place->dst_x, place->dst_y, place->dst_x + size->width, place->dst_y + size->height};
    }
    // Lists the windows that a manager manages.
    void SetManaged(const std::vector<xcb_window_t>& windows)
    {
        SetProperty(m_screen.root, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, 32, windows.size(), windows.data());
    }
    // Lays it into another window, as a manager does.
    void Frame(xcb_window_t window, xcb_window_t frame)
    {
        Finish(xcb_reparent_window(m_c, window, frame, 0, 0));
    }

    // A part of the screen that counts as a monitor of its own; `primary`: the main one. libxcb's own
    // xcb_randr_set_monitor (1.15) sends four parts of which it fills three: the fourth is of whatever lies
    // on the stack.
    void AddMonitor(const char* name, std::int16_t x, std::int16_t y, std::uint16_t width,
                    std::uint16_t height, bool primary)
    {
        struct
        {
            xcb_randr_set_monitor_request_t head;
            xcb_randr_monitor_info_t info;
        } request{{0, 0, 0, m_screen.root}, {Atom(name), primary, 0, 0, x, y, width, height, 0, 0}};
        Answer(xcb_randr_query_version_reply, xcb_randr_query_version(m_c, 1, 5));
        xcb_randr_delete_monitor(m_c, m_screen.root, request.info.name);
        const xcb_protocol_request_t kind{1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
        std::array<iovec, 3> parts{}; // the library puts what it needs into the first two
        parts[2] = {&request, sizeof request};
        xcb_send_request(m_c, 0, &parts[2], &kind);
        // The server tells of a real monitor's change, but not of such a one: another change has it speak.
        static std::uint32_t millimetres = 100;
        ++millimetres;
        Finish(xcb_randr_set_screen_size(m_c, m_screen.root, m_screen.width_in_pixels,
                                         m_screen.height_in_pixels, millimetres, millimetres));
    }
    // Leaves the screen without a monitor.
    void TurnOffMonitors()
    {
        const auto resources =
            Answer(xcb_randr_get_screen_resources_reply, xcb_randr_get_screen_resources(m_c, m_screen.root));
        for (int i = 0; resources && i < resources->num_crtcs; ++i)
            Answer(xcb_randr_set_crtc_config_reply,
                   xcb_randr_set_crtc_config(m_c, xcb_randr_get_screen_resources_crtcs(resources.get())[i],
                                             XCB_CURRENT_TIME, resources->config_timestamp, 0, 0, XCB_NONE,
                                             XCB_RANDR_ROTATION_ROTATE_0, 0, nullptr));
    }
    // Sets the resources that the user's desktop has.
    void SetResources(const std::string& text)
    {
        SetProperty(m_screen.root, "RESOURCE_MANAGER", XCB_ATOM_STRING, 8, text.size(), text.data());
    }

    // Keeps the server for itself: others are answered only when this client has ended.
    void Grab() { Finish(xcb_grab_server(m_c)); }

    void MoveMouse(int x, int y) { Fake(XCB_MOTION_NOTIFY, 0, x, y); }
    void Button(int number, bool down)
    {
        Fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(number));
    }
    void Click(int number = 1)
    {
        Button(number, true);
        Button(number, false);
    }
    void ClickAt(int x, int y)
    {
        MoveMouse(x, y);
        Click();
    }
    // Lets a key, by default a spare one, mean a character, or two in each layout: without and with Shift.
    // Gives its code.
    xcb_keycode_t Assign(std::vector<xcb_keysym_t> symbols, xcb_keycode_t key = 0)
    {
        if (!key) key = KeyOf(XCB_NO_SYMBOL);
        Finish(xcb_change_keyboard_mapping(m_c, 1, key, static_cast<std::uint8_t>(symbols.size()),
                                           symbols.data()));
        return key;
    }
    xcb_keycode_t KeyOf(xcb_keysym_t symbol)
    {
        const xcb_setup_t* setup = xcb_get_setup(m_c);
        const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
        const auto reply =
            Answer(xcb_get_keyboard_mapping_reply, xcb_get_keyboard_mapping(m_c, setup->min_keycode, count));
        if (!reply) return 0;
        const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
        for (int i = 0; i < count; ++i)
            if (symbols[i * reply->keysyms_per_keycode] == symbol)
                return static_cast<xcb_keycode_t>(setup->min_keycode + i);
        return 0;
    }
    void Key(xcb_keycode_t code, bool down) { Fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code); }
    void Type(xcb_keycode_t code)
    {
        Key(code, true);
        Key(code, false);
    }
    void TypeSymbol(xcb_keysym_t symbol) { Type(KeyOf(symbol)); }

private:
    template <class Cookie, class Reply>
    std::unique_ptr<Reply, void (*)(void*)>
    Answer(Reply* (*take)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie)
    {
        return {take(m_c, cookie, nullptr), std::free};
    }
    static constexpr std::uint32_t Swap(COLORREF color)
    {
        return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
    }
    void SetProperty(xcb_window_t window, const char* name, xcb_atom_t type, std::uint8_t bits,
                     std::size_t count, const void* values)
    {
        Finish(xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, window, Atom(name), type, bits,
                                   static_cast<std::uint32_t>(count), values));
    }
    // This request, and all before it, has been done when it returns.
    void Finish(xcb_void_cookie_t) { Answer(xcb_get_input_focus_reply, xcb_get_input_focus(m_c)); }
    void Fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0)
    {
        Finish(xcb_test_fake_input(m_c, type, detail, XCB_CURRENT_TIME, m_screen.root,
                                   static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0));
    }

    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection;
    xcb_connection_t* const m_c = m_connection.get();
    xcb_screen_t m_screen;
};

} // namespace test
