#include "platform/window/x11/Shape.h"

#include <algorithm>
#include <span>
#include <vector>
#include <xcb/shape.h>

namespace kx::window::x11 {

namespace {

xcb_rectangle_t ToServer(const pixman_box32_t& box)
{
    const auto within = [](std::int32_t n) { return std::clamp(n, -0x7FFF, 0x7FFF); };
    const std::int32_t x = within(box.x1);
    const std::int32_t y = within(box.y1);
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
            static_cast<std::uint16_t>(within(box.x2) - x), static_cast<std::uint16_t>(within(box.y2) - y)};
}

} // namespace

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
    std::ranges::transform(region->Boxes(), std::back_inserter(rectangles), ToServer);
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

} // namespace kx::window::x11
