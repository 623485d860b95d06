#pragma once

#include "include/platform/Gdi.h"

#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace test {

// Another program on the same X server: it looks at the screen, handles windows from outside and moves the
// mouse and the keys.
class XClient
{
public:
    explicit XClient(const std::string& display);

    // The colour that is seen there.
    COLORREF Pixel(int x, int y);
    xcb_window_t Root() const { return m_screen.root; }
    // The top-level window of that title; 0 for none.
    xcb_window_t Find(const std::string& title);
    xcb_atom_t Atom(const char* name);
    // A property's bytes as they lie there; empty for none.
    std::string Property(xcb_window_t window, const char* name);
    bool IsPopup(xcb_window_t window);
    // Whether some program has a selection, which stands for a role.
    bool HasOwner(const char* selection);

    // A coloured window over all others, of another process of this machine if `process` isn't 0.
    xcb_window_t Cover(int x, int y, int width, int height, COLORREF color, unsigned process = 0);
    void Destroy(xcb_window_t window);
    void AskToClose(xcb_window_t window);
    void Focus(xcb_window_t window); // 0: none
    xcb_window_t Focused();
    void Place(xcb_window_t window, int x, int y, int width, int height);
    // Its place on the screen; empty for no such window.
    RECT PlaceOf(xcb_window_t window);
    // Lays it into another window, as a manager does.
    void Frame(xcb_window_t window, xcb_window_t frame);

    // A part of the screen that counts as a monitor of its own; `primary`: the main one.
    void AddMonitor(const char* name, int x, int y, int width, int height, bool primary);
    // Sets the resources that the user's desktop has.
    void SetResources(const std::string& text);

    void MoveMouse(int x, int y);
    void Button(int number, bool down);
    void Click(int number = 1);
    // Lets a spare key mean a character; gives its code.
    xcb_keycode_t Assign(xcb_keysym_t symbol);
    xcb_keycode_t KeyOf(xcb_keysym_t symbol);
    void Key(xcb_keycode_t code, bool down);
    void Type(xcb_keycode_t code);

private:
    // All that was asked has been done when it returns.
    void Finish();
    void Fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

    struct Disconnect
    {
        void operator()(xcb_connection_t* c) const { xcb_disconnect(c); }
    };
    const std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_connection_t* const m_c = m_connection.get();
    xcb_screen_t m_screen;
};

} // namespace test
