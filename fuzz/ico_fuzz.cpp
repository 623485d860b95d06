// An ICO file, of which several sizes are asked for.
#include "platform/gdi/ImageFile.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (const int side : {0, 16, 300}) {
        const auto icon = kx::gdi::ReadIcon({data, size}, side, side);
        if (!icon) continue;
        // A picture that nothing bounds by its bytes is bounded by its sides.
        if (std::int64_t{icon->Width()} * icon->Height() > MAX_BITMAP_PIXELS) std::abort();
        DWORD sum = 0;
        for (int y = 0; y < icon->Height(); ++y)
            for (int x = 0; x < icon->Width(); ++x)
                sum += icon->Row(y)[x];
        static volatile DWORD seen;
        seen = sum;
    }
    return 0;
}
