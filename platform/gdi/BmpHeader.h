#pragma once

#include "platform/gdi/Bitmap.h"
#include "platform/gdi/BmpBytes.h"
#include "platform/gdi/BmpMasks.h"

#include <array>
#include <vector>

namespace kx::gdi {

// What the header of a BMP says, which is sound in itself but may claim more than the file holds. Offsets
// count from the header's first byte.
struct BmpHeader
{
    int nWidth = 0;  // above 0
    int nHeight = 0; // above 0
    bool bTopDown = false;
    WORD nDepth = 0;             // 1, 4, 8, 16, 24 or 32
    DWORD nCompression = BI_RGB; // or BI_RLE4, BI_RLE8 of that depth; bit fields are told by the masks alone
    BmpMasks masks;              // for 16 and 32 bits
    std::size_t nPaletteAt = 0;
    std::size_t nColors = 0; // entries of the palette as declared, which may be more than the depth can name
    std::size_t nColorSize = 4;

    bool IsCompressed() const noexcept { return nCompression != BI_RGB; }
    // Where the pixels lie if nothing else is said.
    std::size_t PixelsAt() const noexcept { return nPaletteAt + nColors * nColorSize; }
    std::size_t RowBytes() const noexcept { return gdi::RowBytes(nWidth, nDepth, 32); }
    std::size_t PixelBytes() const noexcept { return RowBytes() * static_cast<std::size_t>(nHeight); }
};

// Nothing for a header that is cut, of an unknown kind, or contradicts itself.
std::optional<BmpHeader> ParseBmpHeader(FileBytes dib) noexcept;

// The palette of a bitmap of 8 bits or less: as many entries as declared, at most 2 to the depth. Those from
// `nEnd` on, where the pixels begin or the file ends, are black. Empty for greater depths.
std::vector<RGBQUAD> ReadPalette(const BmpHeader& header, FileBytes dib, std::size_t nEnd);

// The pixel for each index.
using BmpColors = std::array<DWORD, 256>;
BmpColors ToColors(const std::vector<RGBQUAD>& palette) noexcept;

} // namespace kx::gdi
