// A BMP file, and a BMP without its file header.
#include "platform/gdi/ImageFile.h"

#include <cstdlib>

namespace {

// A bitmap that was read is whole: as many colours as its depth can name, and every pixel is there.
void Check(const kx::gdi::Bitmap* bitmap)
{
    if (!bitmap) return;
    const std::size_t nMost = bitmap->depth <= 8 ? std::size_t{1} << bitmap->depth : 0;
    if (bitmap->palette.size() > nMost) std::abort();
    const kx::gdi::Surface& surface = bitmap->surface;
    for (int y = 0; y < surface.Height(); ++y)
        for (int x = 0; x < surface.Width(); ++x)
            if (bitmap->depth <= 8 && surface.Row(y)[x] >> 24 >= nMost) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Check(kx::gdi::ReadBmp({data, size}).get());
    Check(kx::gdi::ReadDib({data, size}).get());
    return 0;
}
