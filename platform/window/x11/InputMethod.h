#pragma once

#include "include/platform/Geometry.h"
#include "platform/window/x11/Connection.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <xcb-imdkit/imclient.h>

namespace kx::window::x11 {

// The user's input method (the one that XMODIFIERS names), which makes characters of keys: pinyin of letters,
// say. It is another program: what it is given may come back later, changed or not at all. One thread at a
// time, which the library of input methods has wait for the server: on its turn.
class InputMethod
{
public:
    // Whether the user has one.
    static bool IsWanted() noexcept;
    explicit InputMethod(const Connection& connection);
    InputMethod(const InputMethod&) = delete;
    InputMethod& operator=(const InputMethod&) = delete;
    ~InputMethod();

    // Whether an event was its own affair; it is to be shown all.
    bool Filter(xcb_generic_event_t& event);
    // Gives it a key of the window that has the focus, and where text is being written there; false if it
    // wants none.
    bool Offer(xcb_key_press_event_t event, POINT caret);
    // Tells which window has the keyboard; 0 for none.
    void Focus(xcb_window_t window);

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
    static void HearAnswer(xcb_xim_t*, xcb_xic_t, void* self)
    {
        static_cast<InputMethod*>(self)->m_asked = false;
    }
    void Serve(xcb_window_t window);
    void MakeContext(xcb_window_t window);
    void Do(std::function<void()> step);
    void DoSteps();

    std::unique_ptr<xcb_xim_t, Destroy> m_method;
    bool m_open = false;
    xcb_xic_t m_context = 0;
    // Steps that are still to be asked and told, one after the other's answer: the library sends nothing that
    // it was given meanwhile before it is given something more.
    std::deque<std::function<void()>> m_steps;
    bool m_asked = false;       // an answer is awaited
    std::uint32_t m_wanted = 0; // the events that it takes
    xcb_window_t m_focus = 0;
    xcb_window_t m_served = 0; // the last that the context was given to
    std::vector<Gift> m_gifts;
};

} // namespace kx::window::x11
