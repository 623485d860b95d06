#include "draw/BitmapRegion.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <vector>

namespace {

constexpr int nBandRows = 16; // few enough to stay in the cache between reading and scanning

// The rows of a bitmap as 32-bit pixels, a band at a time.
class Rows
{
public:
    Rows(HDC hDC, HBITMAP hBitmap, SIZE size)
        : m_hDC(hDC),
          m_hBitmap(hBitmap),
          m_size(size),
          m_pixels(static_cast<std::size_t>(size.cx) * nBandRows)
    {
        BITMAPINFOHEADER& head = m_info.bmiHeader;
        head.biSize = sizeof(head);
        head.biWidth = size.cx;
        head.biHeight = -size.cy;
        head.biPlanes = 1;
        head.biBitCount = 32;
    }

    // Reads the band that begins at row `y`; the number of its rows, 0 at the end.
    int Read(int y)
    {
        const int nRows = std::min(nBandRows, m_size.cy - y);
        const int nFromBottom =
            m_size.cy - y - nRows; // lines are counted from the bottom, also in a top-down copy
        return nRows <= 0 ? 0
                          : GetDIBits(m_hDC, m_hBitmap, static_cast<UINT>(nFromBottom),
                                      static_cast<UINT>(nRows), m_pixels.data(), &m_info, DIB_RGB_COLORS);
    }
    const DWORD* Row(int n) const { return m_pixels.data() + static_cast<std::ptrdiff_t>(n) * m_size.cx; }

private:
    HDC m_hDC;
    HBITMAP m_hBitmap;
    SIZE m_size;
    std::vector<DWORD> m_pixels;
    BITMAPINFO m_info{};
};

// A mask as CreateMaskRgn takes it.
class Bits
{
public:
    static constexpr int WORD_BITS = 64;

    explicit Bits(SIZE size)
        : m_nRow((static_cast<std::size_t>(size.cx) + WORD_BITS - 1) / WORD_BITS),
          m_words(m_nRow * static_cast<std::size_t>(size.cy))
    {
    }
    std::span<std::uint64_t> Row(int y)
    {
        return std::span(m_words).subspan(static_cast<std::size_t>(y) * m_nRow, m_nRow);
    }
    const std::uint64_t* Data() const { return m_words.data(); }

private:
    std::size_t m_nRow;
    std::vector<std::uint64_t> m_words;
};

// The bits of 64 pixels that are of the colour. Without branches, and in steps that become vector
// instructions.
std::uint64_t Compare(const DWORD* pixels, DWORD key)
{
    std::array<std::uint8_t, Bits::WORD_BITS> equal;
    for (std::size_t n = 0; n < equal.size(); ++n)
        equal[n] = (pixels[n] & 0xFFFFFF) == key ? 1 : 0;
    std::uint64_t bits = 0;
    for (std::size_t n = 0; n < equal.size(); n += 8) {
        std::uint64_t eight = 0;
        for (std::size_t k = 0; k < 8; ++k)
            eight |= std::uint64_t{equal[n + k]} << 8 * k;
        bits |= (eight * 0x0102040810204080 >> 56) << n; // the eight bytes' lowest bits side by side
    }
    return bits;
}

// Marks the pixels of a row that are of the colour, or with `flip` of ones those that aren't.
void Mark(const DWORD* row, int nWidth, DWORD key, std::uint64_t flip, std::span<std::uint64_t> bits)
{
    int x = 0;
    for (; x + Bits::WORD_BITS <= nWidth; x += Bits::WORD_BITS)
        bits[static_cast<std::size_t>(x / Bits::WORD_BITS)] = Compare(row + x, key) ^ flip;
    if (x == nWidth) return;
    std::array<DWORD, Bits::WORD_BITS> last{};
    std::copy(row + x, row + nWidth, last.begin());
    bits.back() = (Compare(last.data(), key) ^ flip) & ((std::uint64_t{1} << (nWidth - x)) - 1);
}

} // namespace

HRGN kx::draw::MakeColorRegion(HDC hDC, HBITMAP hBitmap, SIZE size, COLORREF clr, bool bKeepColor)
try {
    // A colour with a high byte is no pixel's.
    const bool bNone = (clr >> 24) != 0;
    if (bNone) return bKeepColor ? CreateRectRgn(0, 0, 0, 0) : CreateRectRgn(0, 0, size.cx, size.cy);
    const DWORD key = (clr & 0xFF) << 16 | (clr & 0xFF00) | (clr >> 16 & 0xFF);

    Bits bits(size);
    Rows rows(hDC, hBitmap, size);
    int y = 0;
    while (const int nRows = rows.Read(y))
        for (int n = 0; n < nRows; ++n, ++y)
            Mark(rows.Row(n), size.cx, key, bKeepColor ? 0 : ~std::uint64_t{0}, bits.Row(y));
    return CreateMaskRgn(bits.Data(), size.cx, size.cy);
} catch (const std::bad_alloc&) {
    return nullptr;
}
