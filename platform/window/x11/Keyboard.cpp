#include "platform/window/x11/Keyboard.h"

#include "include/platform/Input.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <utility>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

// A header for C, with a member of that name.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#endif
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

namespace kx::window::x11 {

namespace {

// Keys whose symbols and numbers both come in a row.
constexpr struct
{
    xkb_keysym_t first;
    xkb_keysym_t last;
    UINT number; // of the first
} kRanges[] = {{XKB_KEY_a, XKB_KEY_z, 'A'},
               {XKB_KEY_0, XKB_KEY_9, '0'},
               {XKB_KEY_F1, XKB_KEY_F24, VK_F1},
               {XKB_KEY_KP_Multiply, XKB_KEY_KP_Divide, VK_MULTIPLY},
               {XKB_KEY_Home, XKB_KEY_Down, VK_HOME},
               {XKB_KEY_Prior, XKB_KEY_End, VK_PRIOR},
               {XKB_KEY_comma, XKB_KEY_slash, VK_OEM_COMMA},
               {XKB_KEY_bracketleft, XKB_KEY_bracketright, VK_OEM_4}};

constexpr struct
{
    xkb_keysym_t symbol;
    UINT number;
} kNamed[] = {{XKB_KEY_BackSpace, VK_BACK},    {XKB_KEY_Tab, VK_TAB},
              {XKB_KEY_ISO_Left_Tab, VK_TAB},  {XKB_KEY_Return, VK_RETURN},
              {XKB_KEY_KP_Enter, VK_RETURN},   {XKB_KEY_Shift_L, VK_SHIFT},
              {XKB_KEY_Shift_R, VK_SHIFT},     {XKB_KEY_Control_L, VK_CONTROL},
              {XKB_KEY_Control_R, VK_CONTROL}, {XKB_KEY_Alt_L, VK_MENU},
              {XKB_KEY_Alt_R, VK_MENU},        {XKB_KEY_Escape, VK_ESCAPE},
              {XKB_KEY_space, VK_SPACE},       {XKB_KEY_Delete, VK_DELETE},
              {XKB_KEY_KP_Insert, VK_INSERT},  {XKB_KEY_KP_Delete, VK_DELETE},
              {XKB_KEY_Insert, VK_INSERT},     {XKB_KEY_Pause, VK_PAUSE},
              {XKB_KEY_Print, VK_SNAPSHOT},    {XKB_KEY_Caps_Lock, VK_CAPITAL},
              {XKB_KEY_Num_Lock, VK_NUMLOCK},  {XKB_KEY_Scroll_Lock, VK_SCROLL},
              {XKB_KEY_Super_L, VK_LWIN},      {XKB_KEY_Super_R, VK_RWIN},
              {XKB_KEY_Menu, VK_APPS},         {XKB_KEY_ISO_Level3_Shift, VK_MENU},
              {XKB_KEY_semicolon, VK_OEM_1},   {XKB_KEY_equal, VK_OEM_PLUS},
              {XKB_KEY_plus, VK_OEM_PLUS},     {XKB_KEY_grave, VK_OEM_3},
              {XKB_KEY_apostrophe, VK_OEM_7}};

// The keys of digits and punctuation by where they lie, as every server on Linux numbers them.
constexpr struct
{
    xcb_keycode_t code;
    UINT number;
} kPlaces[] = {{10, '1'},          {11, '2'},         {12, '3'},      {13, '4'},          {14, '5'},
               {15, '6'},          {16, '7'},         {17, '8'},      {18, '9'},          {19, '0'},
               {20, VK_OEM_MINUS}, {21, VK_OEM_PLUS}, {34, VK_OEM_4}, {35, VK_OEM_6},     {47, VK_OEM_1},
               {48, VK_OEM_7},     {49, VK_OEM_3},    {51, VK_OEM_5}, {59, VK_OEM_COMMA}, {60, VK_OEM_PERIOD},
               {61, VK_OEM_2},     {94, VK_OEM_102}};

UINT NumberOfPlace(xcb_keycode_t code) noexcept
{
    const auto it = std::ranges::find(kPlaces, code, [](const auto& place) { return place.code; });
    return it == std::end(kPlaces) ? 0 : it->number;
}

UINT NumberOfSymbol(xkb_keysym_t symbol) noexcept
{
    // The keypad's moves come in the order of the others.
    if (symbol >= XKB_KEY_KP_Home && symbol <= XKB_KEY_KP_End) symbol -= XKB_KEY_KP_Home - XKB_KEY_Home;
    for (const auto& range : kRanges)
        if (symbol >= range.first && symbol <= range.last) return symbol - range.first + range.number;
    const auto it = std::ranges::find(kNamed, symbol, [](const auto& named) { return named.symbol; });
    return it == std::end(kNamed) ? 0 : it->number;
}

// The user's own table, or that of the system's most usual locale. Its texts are UTF-8 in any case.
xkb_compose_table* DeadKeys(xkb_context* context)
{
    const char* pszLocale = nullptr;
    for (const char* pszName : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (!pszLocale || !*pszLocale) pszLocale = std::getenv(pszName);
    xkb_compose_table* table = nullptr;
    if (pszLocale && *pszLocale)
        table = xkb_compose_table_new_from_locale(context, pszLocale, XKB_COMPOSE_COMPILE_NO_FLAGS);
    return table ? table
                 : xkb_compose_table_new_from_locale(context, "en_US.UTF-8", XKB_COMPOSE_COMPILE_NO_FLAGS);
}

// The parts of a key event's state.
constexpr xkb_mod_mask_t HeldKeys(std::uint16_t held) noexcept
{
    return held & 0xFF;
}
constexpr xkb_layout_index_t Layout(std::uint16_t held) noexcept
{
    return held >> 13 & 3;
}

} // namespace

Keyboard::Keyboard(xcb_connection_t* connection)
    : m_connection(connection), m_context(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
{
    if (m_context)
        xkb_context_set_log_level(m_context.get(), XKB_LOG_LEVEL_CRITICAL); // a lost server is no news
    const std::unique_ptr<xkb_compose_table, Unref> deadKeys(m_context ? DeadKeys(m_context.get()) : nullptr);
    if (deadKeys) m_compose.reset(xkb_compose_state_new(deadKeys.get(), XKB_COMPOSE_STATE_NO_FLAGS));
}

void Keyboard::Begin()
{
    xkb_x11_setup_xkb_extension(m_connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &m_firstEvent,
                                nullptr);
    if (!m_firstEvent) return; // a request of an extension that isn't there would end the connection
    // From here on the server tells of changes by events of the extension alone, and only if asked.
    constexpr std::uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t allParts = 0xFF;
    xcb_xkb_select_events(m_connection, XCB_XKB_ID_USE_CORE_KBD, events, 0, events, allParts, allParts,
                          nullptr);
    // A held key repeats as presses alone, without releases in between.
    constexpr std::uint32_t repeats = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    xcb_discard_reply(
        m_connection,
        xcb_xkb_per_client_flags(m_connection, XCB_XKB_ID_USE_CORE_KBD, repeats, repeats, 0, 0, 0).sequence);
    Reload();
}

bool Keyboard::IsChange(const xcb_generic_event_t& event) const noexcept
{
    if (event.response_type == XCB_MAPPING_NOTIFY) return true;
    return m_firstEvent && event.response_type == m_firstEvent; // no others were asked for
}

void Keyboard::Reload()
{
    if (!m_context || !m_firstEvent) return;
    const std::int32_t nDevice = xkb_x11_get_core_keyboard_device_id(m_connection);
    if (nDevice < 0) return;
    m_keymap.reset(
        xkb_x11_keymap_new_from_device(m_context.get(), m_connection, nDevice, XKB_KEYMAP_COMPILE_NO_FLAGS));
    m_state.reset(m_keymap ? xkb_state_new(m_keymap.get()) : nullptr);
}

// By what the key is without others held, in its layout or else the first that has a number for it: a
// letter's key keeps its number in a layout of other letters.
UINT Keyboard::NumberOf(xcb_keycode_t code, xkb_layout_index_t layout) const
{
    const auto inLayout = [&](xkb_layout_index_t which) {
        const xkb_keysym_t* symbols = nullptr;
        const int nSymbols = xkb_keymap_key_get_syms_by_level(m_keymap.get(), code, which, 0, &symbols);
        return nSymbols == 1 ? NumberOfSymbol(symbols[0]) : 0;
    };
    UINT number = inLayout(layout);
    const auto nLayouts = xkb_keymap_num_layouts_for_key(m_keymap.get(), code);
    for (xkb_layout_index_t which = 0; number == 0 && which < nLayouts; ++which)
        number = inLayout(which);
    return number ? number : NumberOfPlace(code);
}

std::optional<std::string> Keyboard::Compose(xkb_keysym_t symbol)
{
    if (!m_compose || xkb_compose_state_feed(m_compose.get(), symbol) == XKB_COMPOSE_FEED_IGNORED)
        return std::nullopt;
    const xkb_compose_status status = xkb_compose_state_get_status(m_compose.get());
    if (status == XKB_COMPOSE_NOTHING) return std::nullopt;
    std::string text;
    if (status == XKB_COMPOSE_COMPOSED) {
        text.resize(
            static_cast<std::size_t>(std::max(xkb_compose_state_get_utf8(m_compose.get(), nullptr, 0), 0)));
        xkb_compose_state_get_utf8(m_compose.get(), text.data(), text.size() + 1);
    }
    if (status != XKB_COMPOSE_COMPOSING) xkb_compose_state_reset(m_compose.get());
    return text;
}

Keyboard::Key Keyboard::Read(xcb_keycode_t code, std::uint16_t held, bool bDown)
{
    if (!m_state) return {};
    xkb_state_update_mask(m_state.get(), HeldKeys(held), 0, 0, 0, 0, Layout(held));
    // The number block's keys mean digits or moves by what is held.
    Key key{NumberOf(code, Layout(held)), {}};
    const xkb_keysym_t symbol = xkb_state_key_get_one_sym(m_state.get(), code);
    if (symbol >= XKB_KEY_KP_0 && symbol <= XKB_KEY_KP_9) key.number = symbol - XKB_KEY_KP_0 + VK_NUMPAD0;
    if (symbol == XKB_KEY_KP_Decimal || symbol == XKB_KEY_KP_Separator) key.number = VK_DECIMAL;
    const bool bAlt =
        xkb_state_mod_name_is_active(m_state.get(), XKB_MOD_NAME_ALT, XKB_STATE_MODS_EFFECTIVE) > 0;
    key.alt = bAlt || symbol == XKB_KEY_Alt_L || symbol == XKB_KEY_Alt_R;
    if (!bDown || key.number == VK_DELETE) return key;
    auto composed = bAlt ? std::nullopt : Compose(symbol);
    key.text = composed ? std::move(*composed) : TextOf(code);
    return key;
}

// The text of the key by itself, with the modifiers that are held.
std::string Keyboard::TextOf(xcb_keycode_t code) const
{
    std::string text;
    text.resize(
        static_cast<std::size_t>(std::max(xkb_state_key_get_utf8(m_state.get(), code, nullptr, 0), 0)));
    xkb_state_key_get_utf8(m_state.get(), code, text.data(), text.size() + 1);
    return text;
}

} // namespace kx::window::x11
