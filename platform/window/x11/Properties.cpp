#include "platform/window/x11/Properties.h"

#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <array>
#include <cerrno>
#include <span>
#include <string_view>
#include <unistd.h>
#include <vector>
#include <xcb/shape.h>

namespace kx::window::x11 {

namespace {

// A longer title would be seen by nobody, and a request has its bounds.
constexpr std::size_t kMostTitle = 1'000;

void SetText(const Connection& connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
             std::string_view text)
{
    xcb_change_property(connection.Get(), XCB_PROP_MODE_REPLACE, window, property, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

void SetNumbers(const Connection& connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                std::span<const std::uint32_t> numbers)
{
    xcb_change_property(connection.Get(), XCB_PROP_MODE_REPLACE, window, property, type, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
}

// The program's name, then that of its kind: here the same.
std::string ClassName()
{
    const std::string name = program_invocation_short_name;
    return name + '\0' + name + '\0';
}

std::string ToTitle(const char* pszText)
{
    const std::string text(text::CutAtChar(pszText, kMostTitle));
    if (auto utf8 = text::ToUtf8(text)) return *utf8;
    std::string readable = text;
    for (char& ch : readable)
        if (!text::IsAscii({&ch, 1})) ch = '?';
    return readable;
}

// Without decorations.
void RefuseFrame(const Connection& connection, xcb_window_t window)
{
    constexpr std::uint32_t decorationsCount = 2;
    const std::array<std::uint32_t, 5> hints{decorationsCount, 0, 0, 0, 0};
    SetNumbers(connection, window, connection.atoms.motifHints, connection.atoms.motifHints, hints);
}

// The keyboard is wanted, and is given by the manager.
void AcceptFocus(const Connection& connection, xcb_window_t window)
{
    constexpr std::uint32_t inputCounts = 1;
    const std::array<std::uint32_t, 9> hints{inputCounts, 1};
    SetNumbers(connection, window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, hints);
}

xcb_rectangle_t ToServer(const pixman_box32_t& box, int nScale)
{
    const auto within = [nScale](std::int64_t n) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(n * nScale, -0x7FFF, 0x7FFF));
    };
    const std::int32_t x = within(box.x1);
    const std::int32_t y = within(box.y1);
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
            static_cast<std::uint16_t>(within(box.x2) - x), static_cast<std::uint16_t>(within(box.y2) - y)};
}

} // namespace

void Describe(const Connection& connection, xcb_window_t window, DWORD dwStyle)
{
    const Atoms& atoms = connection.atoms;
    const std::array<std::uint32_t, 1> pid{static_cast<std::uint32_t>(getpid())};
    const std::array<std::uint32_t, 1> protocols{atoms.wmDeleteWindow};
    SetNumbers(connection, window, atoms.netWmPid, XCB_ATOM_CARDINAL, pid);
    SetNumbers(connection, window, atoms.wmProtocols, XCB_ATOM_ATOM, protocols);
    SetText(connection, window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, MachineName());
    SetText(connection, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, ClassName());
    AcceptFocus(connection, window);
    if ((dwStyle & WS_CAPTION) != WS_CAPTION) RefuseFrame(connection, window);
}

void DescribeDialog(const Connection& connection, xcb_window_t window, xcb_window_t owner)
{
    const Atoms& atoms = connection.atoms;
    SetNumbers(connection, window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, {{owner}});
    SetNumbers(connection, window, atoms.netWmWindowType, XCB_ATOM_ATOM, {{atoms.netWmWindowTypeDialog}});
}

void SetIcon(const Connection& connection, xcb_window_t window, const gdi::Surface* pixels)
{
    if (!pixels || connection.MostRequestBytes() / 4 <
                       std::size_t(pixels->Width()) * std::size_t(pixels->Height()) + 2) {
        xcb_delete_property(connection.Get(), window, connection.atoms.netWmIcon);
        return;
    }
    std::vector<std::uint32_t> numbers{static_cast<std::uint32_t>(pixels->Width()),
                                       static_cast<std::uint32_t>(pixels->Height())};
    for (int y = 0; y < pixels->Height(); ++y)
        numbers.insert(numbers.end(), pixels->Row(y), pixels->Row(y) + pixels->Width());
    SetNumbers(connection, window, connection.atoms.netWmIcon, XCB_ATOM_CARDINAL, numbers);
}

void SetTitle(const Connection& connection, xcb_window_t window, const char* pszText)
{
    const std::string title = ToTitle(pszText);
    SetText(connection, window, XCB_ATOM_WM_NAME, connection.atoms.utf8String, title);
    SetText(connection, window, connection.atoms.netWmName, connection.atoms.utf8String, title);
}

void SetWantedPlace(const Connection& connection, xcb_window_t window, const RECT& rect)
{
    constexpr std::uint32_t placeAndSizeAndGravity = 1 | 4 | 2 | 8 | 512;
    std::array<std::uint32_t, 18> hints{placeAndSizeAndGravity, static_cast<std::uint32_t>(rect.left),
                                        static_cast<std::uint32_t>(rect.top),
                                        static_cast<std::uint32_t>(rect.right - rect.left),
                                        static_cast<std::uint32_t>(rect.bottom - rect.top)};
    hints.back() = XCB_GRAVITY_STATIC;
    SetNumbers(connection, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints);
}

void SetOpacityOf(const Connection& connection, xcb_window_t window, BYTE opacity)
{
    const std::array<std::uint32_t, 1> share{opacity * 0x01010101u};
    if (opacity == 255)
        xcb_delete_property(connection.Get(), window, connection.atoms.netWmOpacity);
    else
        SetNumbers(connection, window, connection.atoms.netWmOpacity, XCB_ATOM_CARDINAL, share);
}

void SetStates(const Connection& connection, xcb_window_t window, bool bAbove, bool bModal)
{
    std::vector<std::uint32_t> states;
    if (bModal) states.push_back(connection.atoms.netWmStateModal);
    if (bAbove) states.push_back(connection.atoms.netWmStateAbove);
    SetNumbers(connection, window, connection.atoms.netWmState, XCB_ATOM_ATOM, states);
}

void AskAbove(const Connection& connection, xcb_window_t window, bool bAbove)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection.atoms.netWmState;
    event.data.data32[0] = bAbove;
    event.data.data32[1] = connection.atoms.netWmStateAbove;
    event.data.data32[3] = 1; // an application asks
    xcb_send_event(connection.Get(), 0, connection.Root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

void SetShape(const Connection& connection, xcb_window_t window, const gdi::PixelRegion* region)
{
    xcb_connection_t* const server = connection.Get();
    const auto* extension = xcb_get_extension_data(server, &xcb_shape_id);
    if (!extension || !extension->present) return;
    if (!region) {
        xcb_shape_mask(server, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window, 0, 0, XCB_NONE);
        return;
    }
    std::vector<xcb_rectangle_t> rectangles;
    std::ranges::transform(
        region->Boxes(), std::back_inserter(rectangles),
        [nScale = connection.GetView().scale](const auto& box) { return ToServer(box, nScale); });
    const std::size_t nMost = connection.MostRequestBytes() / sizeof(xcb_rectangle_t);
    if (nMost == 0) return; // the server is lost
    std::span<const xcb_rectangle_t> left = rectangles;
    xcb_shape_op_t operation = XCB_SHAPE_SO_SET;
    do {
        const auto some = left.first(std::min(left.size(), nMost));
        xcb_shape_rectangles(server, operation, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_SORTED, window, 0,
                             0, static_cast<std::uint32_t>(some.size()), some.data());
        left = left.subspan(some.size());
        operation = XCB_SHAPE_SO_UNION;
    } while (!left.empty());
}

xcb_get_property_cookie_t AskFor(const Connection& connection, xcb_window_t window, xcb_atom_t property)
{
    return xcb_get_property(connection.Get(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 250);
}

std::string TextOf(const xcb_get_property_reply_t* reply)
{
    const auto text = ValuesOf<char>(reply);
    return {text.begin(), text.end()};
}

std::optional<std::uint32_t> NumberOf(const xcb_get_property_reply_t* reply)
{
    const auto numbers = ValuesOf<std::uint32_t>(reply);
    return numbers.empty() ? std::nullopt : std::optional(numbers.front());
}

std::string MachineName()
{
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

} // namespace kx::window::x11
