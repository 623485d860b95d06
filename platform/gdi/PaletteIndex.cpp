#include "platform/gdi/PaletteIndex.h"

#include "platform/gdi/Surface.h"

#include <algorithm>

namespace kx::gdi {

namespace {

int SquareOf(DWORD a, DWORD b, int nShift) noexcept
{
    const int nDifference = static_cast<int>(a >> nShift & 0xFF) - static_cast<int>(b >> nShift & 0xFF);
    return nDifference * nDifference;
}

int Distance(DWORD a, DWORD b) noexcept
{
    return SquareOf(a, b, 16) + SquareOf(a, b, 8) + SquareOf(a, b, 0);
}

} // namespace

PaletteIndex::PaletteIndex(std::span<const RGBQUAD> palette) noexcept
    : m_nColors(std::min(palette.size(), MAX_COLORS))
{
    for (std::size_t n = 0; n < m_nColors; ++n)
        m_colors[n] = DWORD{palette[n].rgbRed} << 16 | DWORD{palette[n].rgbGreen} << 8 | palette[n].rgbBlue;
}

BYTE PaletteIndex::Find(DWORD pixel) noexcept
{
    const DWORD color = pixel & COLOR_BITS;
    const DWORD nNamed = pixel >> 24;
    if (nNamed < m_nColors && m_colors[nNamed] == color) return static_cast<BYTE>(nNamed);
    Found& found = m_found[color * 2654435761u >> 22];
    if (found.color != color) found = {color, Search(color)};
    return found.index;
}

BYTE PaletteIndex::Search(DWORD color) const noexcept
{
    const auto end = m_colors.begin() + static_cast<std::ptrdiff_t>(m_nColors);
    const auto nearest = std::min_element(
        m_colors.begin(), end, [&](DWORD a, DWORD b) { return Distance(a, color) < Distance(b, color); });
    return nearest == end ? BYTE{0} : static_cast<BYTE>(nearest - m_colors.begin());
}

} // namespace kx::gdi
