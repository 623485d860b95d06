#pragma once

#include "include/platform/Types.h"

#include <memory>
#include <optional>
#include <string>
#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

namespace kx::window::x11 {

// The meaning of the keys of the server's keyboard. One thread at a time.
class Keyboard
{
public:
    explicit Keyboard(xcb_connection_t* connection);
    // Asks the server for its keys; until then, and without an answer, no key means anything.
    void Begin();

    // Whether the event tells that keys have got other meanings.
    bool IsChange(const xcb_generic_event_t& event) const noexcept;
    // Asks again.
    void Reload();

    struct Key
    {
        UINT number = 0;  // a VK_..., 0 for none
        std::string text; // UTF-8
        bool alt = false; // held beside it, or the key itself
    };
    // A key that goes down or up, with what the event says is held beside it. A dead key has no text; the
    // next one that goes down has that of both.
    Key Read(xcb_keycode_t code, std::uint16_t held, bool bDown);

private:
    struct Unref
    {
        void operator()(xkb_compose_table* p) const noexcept { xkb_compose_table_unref(p); }
        void operator()(xkb_compose_state* p) const noexcept { xkb_compose_state_unref(p); }
        void operator()(xkb_context* p) const noexcept { xkb_context_unref(p); }
        void operator()(xkb_keymap* p) const noexcept { xkb_keymap_unref(p); }
        void operator()(xkb_state* p) const noexcept { xkb_state_unref(p); }
    };
    // The text that this key makes with those before it; nothing where it stands for itself.
    std::optional<std::string> Compose(xkb_keysym_t symbol);
    std::string TextOf(xcb_keycode_t code) const;
    UINT NumberOf(xcb_keycode_t code, xkb_layout_index_t layout) const;

    xcb_connection_t* const m_connection;
    std::uint8_t m_firstEvent = 0; // of those about keyboards; 0 for a server that has none
    std::unique_ptr<xkb_context, Unref> m_context;
    std::unique_ptr<xkb_compose_state, Unref> m_compose; // null where the system has no table of dead keys
    std::unique_ptr<xkb_keymap, Unref> m_keymap;         // null where the server tells none
    std::unique_ptr<xkb_state, Unref> m_state;
};

} // namespace kx::window::x11
