// A BMP file, and a BMP without its file header.
#include "platform/gdi/ImageFile.h"

#include <algorithm>
#include <cstdlib>

namespace {

// A bitmap is bounded by its bytes, has as many colours as its depth can name, and all of it is there.
void Check(const kx::gdi::Bitmap* bitmap, std::size_t size)
{
    if (!bitmap) return;
    const kx::gdi::Surface& surface = bitmap->Pixels();
    const auto nPixels =
        static_cast<std::size_t>(surface.Width()) * static_cast<std::size_t>(surface.Height());
    const std::size_t nColors = bitmap->depth <= 8 ? std::size_t{1} << bitmap->depth : 0;
    if (nPixels > std::max(std::size_t{1} << 20, 256 * size) || bitmap->palette.size() > nColors)
        std::abort();
    for (int y = 0; y < surface.Height(); ++y)
        for (int x = 0; x < surface.Width(); ++x)
            if (nColors > 0 && surface.Row(y)[x] >> 24 >= nColors) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Check(kx::gdi::ReadBmp({data, size}).get(), size);
    Check(kx::gdi::ReadDib({data, size}).get(), size);
    return 0;
}
