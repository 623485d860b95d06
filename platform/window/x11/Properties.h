#pragma once

#include "include/platform/Window.h"
#include "platform/gdi/PixelRegion.h"
#include "platform/gdi/Surface.h"
#include "platform/window/x11/Connection.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>

// Properties that tell other programs about a window: managers, compositors, and programs that look for it.

namespace kx::window::x11 {

// All that is fixed from the window's beginning.
void Describe(const Connection& connection, xcb_window_t window, DWORD dwStyle);
// A dialog of another window, which is kept above that and takes its input.
void DescribeDialog(const Connection& connection, xcb_window_t window, xcb_window_t owner);
// Pixels of 0xAARRGGBB, by which the manager shows the window; null for none.
void SetIcon(const Connection& connection, xcb_window_t window, const gdi::Surface* pixels);
// A text in the process's code page.
void SetTitle(const Connection& connection, xcb_window_t window, const char* pszText);
// Sets the place of a window without its frame; the manager puts the frame around that.
void SetWantedPlace(const Connection& connection, xcb_window_t window, const RECT& rect);
void SetOpacityOf(const Connection& connection, xcb_window_t window, BYTE opacity);
// Whether the manager is to keep the window above all others, and whether it takes the input of its owner,
// from when it is shown next.
void SetStates(const Connection& connection, xcb_window_t window, bool bAbove, bool bModal);
// The first of a window that is shown, whose state is the manager's.
void AskAbove(const Connection& connection, xcb_window_t window, bool bAbove);
// Cuts a window to a region of its own coordinates, or with null to its rectangle again. Nothing happens on a
// server that knows rectangles alone.
void SetShape(const Connection& connection, xcb_window_t window, const gdi::PixelRegion* region);

// The values that came with an answer, which may be fewer than it says; none of an error or of other sizes.
template <class T>
std::span<const T> ValuesOf(const xcb_get_property_reply_t* reply)
{
    if (!reply || reply->format != sizeof(T) * 8) return {};
    const std::size_t nCame = std::size_t{reply->length} * 4 / sizeof(T);
    return {static_cast<const T*>(xcb_get_property_value(reply)),
            std::min<std::size_t>(reply->value_len, nCame)};
}
// A property's text of at most 1,000 bytes, or a number; of an answer, which may be an error.
std::string TextOf(const xcb_get_property_reply_t* reply);
std::optional<std::uint32_t> NumberOf(const xcb_get_property_reply_t* reply);
xcb_get_property_cookie_t AskFor(const Connection& connection, xcb_window_t window, xcb_atom_t property);

// This machine's name, as windows tell it.
std::string MachineName();

} // namespace kx::window::x11
