#include "platform/window/x11/InputMethod.h"

#include <cstdlib>
#include <cstring>
#include <utility>
#include <xcb-imdkit/encoding.h>

namespace kx::window::x11 {

namespace {

std::string ToUtf8(xcb_xim_t* method, const char* text, std::size_t nLength)
{
    if (xcb_xim_get_encoding(method) == XCB_XIM_UTF8_STRING) return {text, nLength};
    std::size_t nUtf8 = 0;
    const std::unique_ptr<char, Free> utf8(xcb_compound_text_to_utf8(text, nLength, &nUtf8));
    return utf8 ? std::string(utf8.get(), nUtf8) : std::string();
}

} // namespace

bool InputMethod::IsWanted() noexcept
{
    const char* pszModifiers = std::getenv("XMODIFIERS");
    const char* pszMethod = pszModifiers ? std::strstr(pszModifiers, "@im=") : nullptr;
    return pszMethod && std::strcmp(pszMethod, "@im=none") != 0 && pszMethod[4] != '\0';
}

// One that is started later, or again, is found too.
InputMethod::InputMethod(const Connection& connection)
{
    xcb_compound_text_init();
    m_method.reset(xcb_xim_create(connection.Get(), connection.Number(), nullptr));
    if (!m_method) return;
    xcb_xim_set_use_utf8_string(m_method.get(), true);
    xcb_xim_im_callback calls{};
    calls.set_event_mask = [](xcb_xim_t*, xcb_xic_t, std::uint32_t forward, std::uint32_t, void* self) {
        static_cast<InputMethod*>(self)->m_wanted = forward;
    };
    calls.forward_event = [](xcb_xim_t*, xcb_xic_t, xcb_key_press_event_t* event, void* self) {
        auto& method = *static_cast<InputMethod*>(self);
        method.m_gifts.push_back({method.m_served, {}, *event});
    };
    calls.commit_string = [](xcb_xim_t* im, xcb_xic_t, std::uint32_t, char* text, std::uint32_t length,
                             std::uint32_t*, std::size_t, void* self) {
        auto& method = *static_cast<InputMethod*>(self);
        method.m_gifts.push_back({method.m_served, ToUtf8(im, text, length), std::nullopt});
    };
    calls.disconnected = [](xcb_xim_t*, void* self) {
        auto& method = *static_cast<InputMethod*>(self);
        method.m_open = method.m_asked = false;
        method.m_context = 0;
    };
    xcb_xim_set_im_callback(m_method.get(), &calls, this);
    const auto opened = [](xcb_xim_t*, void* self) {
        auto& method = *static_cast<InputMethod*>(self);
        method.m_open = true;
        method.Serve(method.m_focus);
    };
    constexpr bool bAlways = true;
    xcb_xim_open(m_method.get(), opened, bAlways, this);
}

InputMethod::~InputMethod()
{
    if (m_method) xcb_xim_close(m_method.get());
}

bool InputMethod::Filter(xcb_generic_event_t& event)
{
    if (!m_method) return false;
    const bool bTaken = xcb_xim_filter_event(m_method.get(), &event);
    DoSteps();
    return bTaken;
}

void InputMethod::Do(std::function<void()> step)
{
    m_steps.push_back(std::move(step));
    DoSteps();
}

void InputMethod::DoSteps()
{
    while (!m_asked && !m_steps.empty()) {
        const auto step = std::move(m_steps.front());
        m_steps.pop_front();
        step();
    }
}

// The text's place is told before each press, since the window may have been moved meanwhile. While a context
// is still to be made the key waits for it; a method that has gone, or refuses one, leaves none to come.
bool InputMethod::Offer(xcb_key_press_event_t event, POINT caret)
{
    const bool bPress = (event.response_type & 0x7F) == XCB_KEY_PRESS;
    const std::uint32_t kind = bPress ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE;
    const bool bComes = m_context || m_asked || !m_steps.empty();
    if (!bComes || event.event != m_focus || !(m_wanted & kind)) return false;
    const auto tellCaret = [this, caret] {
        const xcb_point_t spot{static_cast<std::int16_t>(caret.x), static_cast<std::int16_t>(caret.y)};
        const auto nested =
            xcb_xim_create_nested_list(m_method.get(), XCB_XIM_XNSpotLocation, &spot, nullptr);
        m_asked = m_context && xcb_xim_set_ic_values(m_method.get(), m_context, HearAnswer, this,
                                                     XCB_XIM_XNPreeditAttributes, &nested, nullptr);
        std::free(nested.data);
    };
    if (bPress) Do(tellCaret);
    Do([this, event]() mutable {
        if (m_context)
            xcb_xim_forward_event(m_method.get(), m_context, &event);
        else
            m_gifts.push_back({event.event, {}, event});
    });
    return true;
}

void InputMethod::Focus(xcb_window_t window)
{
    if (!m_method || window == m_focus) return;
    m_focus = window;
    Serve(window);
    DoSteps();
}

// One context serves the windows in turn. To end it with a window's focus would be wrong: the method may just
// have given back a key, and takes no other one of any window before it has got the reply to that.
void InputMethod::Serve(xcb_window_t window)
{
    m_steps.emplace_back([this, window] {
        if (!m_open) return;
        if (m_context) xcb_xim_unset_ic_focus(m_method.get(), m_context);
        if (window && m_context)
            m_asked = xcb_xim_set_ic_values(m_method.get(), m_context, HearAnswer, this,
                                            XCB_XIM_XNFocusWindow, &window, nullptr);
        else if (window)
            MakeContext(window);
    });
    // A text that comes until then belongs to the window before.
    m_steps.emplace_back([this, window] {
        if (!window || !m_context) return;
        m_served = window;
        xcb_xim_set_ic_focus(m_method.get(), m_context);
    });
}

void InputMethod::MakeContext(xcb_window_t window)
{
    const auto made = [](xcb_xim_t*, xcb_xic_t context, void* self) {
        auto& method = *static_cast<InputMethod*>(self);
        method.m_asked = false;
        method.m_context = context;
    };
    // Until it says what it wants, which may be before the context is made.
    m_wanted = XCB_EVENT_MASK_KEY_PRESS;
    const std::uint32_t style = XCB_IM_PreeditPosition | XCB_IM_StatusNothing;
    m_asked = xcb_xim_create_ic(m_method.get(), made, this, XCB_XIM_XNInputStyle, &style,
                                XCB_XIM_XNClientWindow, &window, XCB_XIM_XNFocusWindow, &window, nullptr);
}

} // namespace kx::window::x11
