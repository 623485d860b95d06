#pragma once

#include "platform/gdi/ImageFile.h"

#include <array>
#include <optional>
#include <vector>

namespace kx::gdi {

struct BmpMasks
{
    DWORD red = 0;
    DWORD green = 0;
    DWORD blue = 0;
    DWORD alpha = 0;

    // A pixel of the file is one of a surface as it stands.
    constexpr bool ArePlain() const noexcept
    {
        return red == 0xFF0000 && green == 0xFF00 && blue == 0xFF && (alpha == 0 || alpha == 0xFF000000);
    }
};

inline constexpr BmpMasks MASKS_555{0x7C00, 0x03E0, 0x001F, 0};
inline constexpr BmpMasks MASKS_888{0xFF0000, 0x00FF00, 0x0000FF, 0};

enum class BmpCompression
{
    None, // bit fields are told by the masks alone
    Rle4,
    Rle8,
    Rle24
};

// The claims of a BMP's header, which is sound in itself but may claim more than the file holds. Offsets
// count from the header's first byte.
struct BmpHeader
{
    int nWidth = 0;  // above 0
    int nHeight = 0; // above 0
    bool bTopDown = false;
    WORD nDepth = 0; // 1, 2, 4, 8, 16, 24 or 32
    BmpCompression compression = BmpCompression::None;
    BmpMasks masks{}; // for 16 and 32 bits
    std::size_t nPaletteAt = 0;
    std::size_t nColors = 0; // entries of the palette as declared, which may be more than the depth can name
    std::size_t nColorSize = 4;

    bool IsCompressed() const noexcept { return compression != BmpCompression::None; }
    // The offset of the pixels if nothing else is said.
    std::size_t PixelsAt() const noexcept { return nPaletteAt + nColors * nColorSize; }
    std::size_t RowBytes() const noexcept { return gdi::RowBytes(nWidth, nDepth, 32); }
    std::size_t PixelBytes() const noexcept { return RowBytes() * static_cast<std::size_t>(nHeight); }
    // The least of them: the padding of the last row may lack.
    std::size_t LeastPixelBytes() const noexcept
    {
        return PixelBytes() - RowBytes() + gdi::RowBytes(nWidth, nDepth, 8);
    }
};

// Nothing for a header that is cut, of an unknown kind, or contradicts itself.
std::optional<BmpHeader> ParseBmpHeader(FileBytes dib) noexcept;

// The palette of a bitmap of 8 bits or less: as many entries as declared, at most 2 to the depth. Those from
// `nEnd` on, where the pixels begin or the file ends, are black. Empty for greater depths.
std::vector<RGBQUAD> ReadPalette(const BmpHeader& header, FileBytes dib, std::size_t nEnd);

// The pixel for each index.
using BmpColors = std::array<DWORD, 256>;
BmpColors ToColors(const std::vector<RGBQUAD>& palette) noexcept;

// The pixels of an uncompressed bitmap, which `bytes` begins with. Nothing if it holds fewer, or for a bitmap
// too large or with masks that are none.
std::optional<Surface> ReadRows(const BmpHeader& header, FileBytes bytes, const BmpColors& colors);

// The pixels of a compressed bitmap, whose data `bytes` begins with. Nothing for data without their end mark,
// or so few that the size claimed is not believed.
std::optional<Surface> ReadRle(const BmpHeader& header, FileBytes bytes, const BmpColors& colors);

} // namespace kx::gdi
