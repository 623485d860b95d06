// An ICO file, of which several sizes are asked for.
#include "platform/gdi/ImageFile.h"

#include <algorithm>
#include <cstdlib>

namespace {

// A picture is bounded by its bytes, of which one holds 8 pixels at most, or by the sides of a PNG; and all
// of it is there.
void Check(const kx::gdi::Surface& icon, std::size_t size)
{
    const auto nPixels = static_cast<std::size_t>(icon.Width()) * static_cast<std::size_t>(icon.Height());
    constexpr std::size_t nPng = std::size_t{kx::gdi::MAX_PNG_ICON_SIDE} * kx::gdi::MAX_PNG_ICON_SIDE;
    if (nPixels > std::max(nPng, 8 * size)) std::abort();
    for (int y = 0; y < icon.Height(); ++y) {
        const volatile DWORD* row = icon.Row(y);
        for (int x = 0; x < icon.Width(); ++x)
            (void)row[x];
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (const int side : {0, 16, 300})
        if (const auto icon = kx::gdi::ReadIcon({data, size}, side, side)) Check(*icon, size);
    return 0;
}
