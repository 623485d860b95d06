// A BMP file, and a BMP without its file header.
#include "platform/gdi/ImageFile.h"

#include <algorithm>
#include <cstdlib>

namespace {

// A bitmap is bounded by its bytes, and has as many colours as its depth can name.
void Check(const kx::gdi::Bitmap* bitmap, std::size_t size)
{
    if (!bitmap) return;
    const kx::gdi::Surface& surface = bitmap->surface;
    const auto nPixels =
        static_cast<std::size_t>(surface.Width()) * static_cast<std::size_t>(surface.Height());
    const std::size_t nColors = bitmap->depth <= 8 ? std::size_t{1} << bitmap->depth : 0;
    if (nPixels > std::max(std::size_t{1} << 20, 256 * size) || bitmap->palette.size() > nColors)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Check(kx::gdi::ReadBmp({data, size}).get(), size);
    Check(kx::gdi::ReadDib({data, size}).get(), size);
    return 0;
}
