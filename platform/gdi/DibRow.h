#pragma once

#include "platform/gdi/Bitmap.h"
#include "platform/gdi/PaletteIndex.h"

#include <optional>

namespace kx::gdi {

// Whether a bitmap's rows can be given in a depth of 1, 4, 8, 16, 24 or 32 bits: in one of 8 bits and less if
// it has a palette itself, which the depth can count.
bool HasDepth(const Bitmap& bitmap, int nDepth) noexcept;

// Writes rows of a bitmap as they stand in memory or a file: padded to 32 bits, the leftmost pixel in the
// highest bits of a byte, 16 bits as 5 of each colour, more as bytes of blue, green, red; padding bits are 0.
// The fourth byte of 32 bits is the pixel's own if the bitmap declares that depth, else 0.
class DibRow
{
public:
    DibRow(const Bitmap& bitmap, WORD nDepth) noexcept;

    std::size_t Bytes() const noexcept { return RowBytes(m_bitmap.Width(), m_nDepth, 32); }
    void Write(int y, BYTE* out) noexcept;

private:
    void WriteIndices(const DWORD* in, BYTE* out) noexcept;

    const Bitmap& m_bitmap;
    const WORD m_nDepth;
    std::optional<PaletteIndex> m_indices; // for depths of 8 bits and less
};

} // namespace kx::gdi
