#pragma once

#include "tests/support/BmpBuilder.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace test {

// A page of one strip of pixels as they lie in the file.
struct TiffPage
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bits = 8;
    std::uint32_t samples = 3;
    std::uint32_t photometric = 2; // 0: white is 0, 1: black is 0, 2: RGB
    std::string pixels = {};
    std::map<std::uint32_t, std::uint32_t> tags = {}; // further ones, or in place of the usual
};

// Each directory lies behind its page's pixels. A BigTIFF has wider numbers in it.
inline std::string Tiff(const std::vector<TiffPage>& pages, bool bBigEndian = false, bool bBigTiff = false)
{
    const std::size_t nWide = bBigTiff ? 8 : 4;
    const auto number = [=](std::uint64_t value, std::size_t width) {
        const std::string bytes = Le(value, width);
        return bBigEndian ? std::string(bytes.rbegin(), bytes.rend()) : bytes;
    };
    std::string file = (bBigEndian ? "MM" : "II") + number(bBigTiff ? 43 : 42, 2);
    if (bBigTiff) file += number(8, 2) + number(0, 2);
    std::size_t linkAt = file.size();
    file += number(0, nWide);
    for (const TiffPage& page : pages) {
        const std::size_t pixelsAt = file.size(), bitsAt = pixelsAt + (page.pixels.size() + 1) / 2 * 2;
        file += page.pixels;
        file.resize(bitsAt);
        for (std::uint32_t i = 0; i < page.samples; ++i)
            file += number(page.bits, 2);

        std::map<std::uint32_t, std::uint32_t> tags = page.tags;
        tags.insert({{256, page.width},
                     {257, page.height},
                     {259, 1},
                     {262, page.photometric},
                     {273, pixelsAt},
                     {277, page.samples},
                     {278, page.height},
                     {279, page.pixels.size()}});
        tags[258] = static_cast<std::uint32_t>(bitsAt); // unless they fit
        file.replace(linkAt, nWide, number(file.size(), nWide));
        file += number(tags.size(), bBigTiff ? 8 : 2);
        for (const auto& [tag, value] : tags) {
            const bool bBits = tag == 258, bLong = tag < 258 || tag == 273 || tag == 278 || tag == 279;
            file += number(tag, 2) + number(bLong ? 4 : 3, 2) + number(bBits ? page.samples : 1, nWide);
            const bool bInPlace = bBits && page.samples * 2 <= nWide;
            std::string bytes;
            if (bInPlace)
                for (std::uint32_t i = 0; i < page.samples; ++i)
                    bytes += number(page.bits, 2);
            else
                bytes = number(value, bBits ? nWide : bLong ? 4 : 2);
            bytes.resize(nWide);
            file += bytes;
        }
        linkAt = file.size();
        file += number(0, nWide);
    }
    return file;
}

} // namespace test
