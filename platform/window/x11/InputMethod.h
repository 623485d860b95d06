#pragma once

#include "include/platform/Geometry.h"
#include "platform/window/x11/Connection.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <xcb-imdkit/imclient.h>

namespace kx::window::x11 {

// The user's input method (the one that XMODIFIERS names), which makes characters of keys: pinyin of letters,
// say. It is another program: what it is given may come back later, changed or not at all. Without one all
// calls are harmless.
class InputMethod
{
public:
    explicit InputMethod(const Connection& connection);
    InputMethod(const InputMethod&) = delete;
    InputMethod& operator=(const InputMethod&) = delete;
    ~InputMethod();

    // Whether there may be one, to which all events are to be shown.
    bool IsThere() const noexcept { return m_method != nullptr; }
    // Whether an event was the input method's own affair.
    bool Filter(xcb_generic_event_t& event);
    // Gives it a key of the window that has the focus; false if it wants none.
    bool Offer(xcb_key_press_event_t event);
    // Tells which window has the keyboard; 0 for none.
    void Focus(xcb_window_t window);
    // Tells where in the window, in the server's pixels, text is being written.
    void SetCaret(xcb_window_t window, POINT place);

    // A result for the focused window: characters in UTF-8, or a key that the method had no use for.
    struct Gift
    {
        xcb_window_t window;
        std::string text;
        std::optional<xcb_key_press_event_t> key;
    };
    std::vector<Gift> Take() { return std::exchange(m_gifts, {}); }

private:
    struct Destroy
    {
        void operator()(xcb_xim_t* method) const noexcept { xcb_xim_destroy(method); }
    };
    void Open();
    void MakeContext();
    void TellCaret();

    std::unique_ptr<xcb_xim_t, Destroy> m_method;
    bool m_open = false;
    bool m_making = false; // a context has been asked for
    xcb_xic_t m_context = 0;
    std::uint32_t m_wanted = 0; // the events that it takes
    xcb_window_t m_focus = 0;
    xcb_window_t m_caretWindow = 0;
    POINT m_caret{};
    std::vector<Gift> m_gifts;
};

} // namespace kx::window::x11
