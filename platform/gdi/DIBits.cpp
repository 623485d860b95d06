#include "platform/Errno.h"
#include "platform/gdi/DeviceContext.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <span>

using namespace kx::gdi;

namespace {

// The square of the distance of two colours.
int Distance(const RGBQUAD& color, DWORD pixel) noexcept
{
    const int nRed = color.rgbRed - static_cast<int>(pixel >> 16 & 0xFF);
    const int nGreen = color.rgbGreen - static_cast<int>(pixel >> 8 & 0xFF);
    const int nBlue = color.rgbBlue - static_cast<int>(pixel & 0xFF);
    return nRed * nRed + nGreen * nGreen + nBlue * nBlue;
}

// Finds a palette's entries for pixels: the first of the colour, else the nearest.
class PaletteIndex
{
public:
    explicit PaletteIndex(std::span<const RGBQUAD> palette) noexcept : m_palette(palette) {}

    BYTE Find(DWORD pixel) noexcept
    {
        const DWORD color = pixel & COLOR_BITS;
        Found& found = m_found[color * 2654435761u >> 22];
        if (found.color != color) found = {color, Search(color)};
        return found.index;
    }

private:
    BYTE Search(DWORD pixel) const noexcept
    {
        const auto nearer = [&](const RGBQUAD& a, const RGBQUAD& b) {
            return Distance(a, pixel) < Distance(b, pixel);
        };
        const auto nearest = std::min_element(m_palette.begin(), m_palette.end(), nearer);
        return static_cast<BYTE>(nearest - m_palette.begin());
    }

    const std::span<const RGBQUAD> m_palette; // of 1 to 256 colours
    // Results of earlier searches, by a hash of the colour.
    struct Found
    {
        DWORD color = 0xFFFFFFFF;
        BYTE index = 0;
    };
    std::array<Found, 1024> m_found{};
};

void Write16(std::span<const DWORD> in, BYTE* out) noexcept
{
    for (const DWORD pixel : in) {
        const auto packed =
            static_cast<WORD>((pixel >> 9 & 0x7C00) | (pixel >> 6 & 0x03E0) | (pixel >> 3 & 0x1F));
        std::memcpy(out, &packed, sizeof(packed));
        out += sizeof(packed);
    }
}

void Write24(std::span<const DWORD> in, BYTE* out) noexcept
{
    for (const DWORD pixel : in) {
        *out++ = static_cast<BYTE>(pixel);
        *out++ = static_cast<BYTE>(pixel >> 8);
        *out++ = static_cast<BYTE>(pixel >> 16);
    }
}

void Write32(std::span<const DWORD> in, BYTE* out, DWORD nMask) noexcept
{
    for (const DWORD pixel : in) {
        const DWORD kept = pixel & nMask;
        std::memcpy(out, &kept, sizeof(kept));
        out += sizeof(kept);
    }
}

// Writes rows of a bitmap as they stand in memory or a file: padded to 32 bits, the leftmost pixel in the
// highest bits of a byte, 16 bits as 5 of each colour, more as bytes of blue, green, red; padding bits are 0.
// The fourth byte of 32 bits is the pixel's own if the bitmap declares that depth, else 0.
class RowWriter
{
public:
    RowWriter(const Bitmap& bitmap, WORD nDepth) noexcept : m_bitmap(bitmap), m_nDepth(nDepth)
    {
        if (nDepth <= 8) m_indices.emplace(bitmap.palette);
    }

    std::size_t Bytes() const noexcept { return RowBytes(m_bitmap.Width(), m_nDepth, 32); }
    void Write(int y, BYTE* out) noexcept
    {
        const std::size_t nBytes = Bytes();
        std::memset(out + nBytes - sizeof(DWORD), 0, sizeof(DWORD)); // the padding
        const std::span in(m_bitmap.surface.Row(y), static_cast<std::size_t>(m_bitmap.Width()));
        switch (m_nDepth) {
        case 16:
            return Write16(in, out);
        case 24:
            return Write24(in, out);
        case 32:
            return Write32(in, out, m_bitmap.depth == 32 ? 0xFFFFFFFF : COLOR_BITS);
        default:
            return WriteIndices(in, out);
        }
    }

private:
    void WriteIndices(std::span<const DWORD> in, BYTE* out) noexcept
    {
        const std::size_t nPerByte = 8u / m_nDepth;
        for (std::size_t x = 0; x < in.size(); x += nPerByte) {
            unsigned nByte = 0;
            for (std::size_t at = x; at < x + nPerByte; ++at)
                nByte = nByte << m_nDepth | (at < in.size() ? m_indices->Find(in[at]) : 0u);
            *out++ = static_cast<BYTE>(nByte);
        }
    }

    const Bitmap& m_bitmap;
    const WORD m_nDepth;
    std::optional<PaletteIndex> m_indices; // for depths of 8 bits and less
};

// Whether a bitmap's rows can be given in a depth: in one of 8 bits and less if it has a palette itself,
// which the depth can count.
bool HasDepth(const Bitmap& bitmap, int nDepth) noexcept
{
    const std::size_t nColors = bitmap.palette.size();
    switch (nDepth) {
    case 1:
    case 4:
    case 8:
        return nColors > 0 && nColors <= std::size_t{1} << nDepth;
    case 16:
    case 24:
    case 32:
        return true;
    default:
        return false;
    }
}

BITMAPINFOHEADER HeaderOf(const Bitmap& bitmap) noexcept
{
    const std::size_t nBytes =
        RowBytes(bitmap.Width(), bitmap.depth, 32) * static_cast<std::size_t>(bitmap.Height());
    BITMAPINFOHEADER header{};
    header.biSize = sizeof(header);
    header.biWidth = bitmap.Width();
    header.biHeight = bitmap.Height();
    header.biPlanes = 1;
    header.biBitCount = bitmap.depth;
    header.biCompression = BI_RGB;
    header.biSizeImage = static_cast<DWORD>(nBytes);
    return header;
}

bool Fits(const BITMAPINFOHEADER& header, const Bitmap& bitmap) noexcept
{
    const std::int64_t nHeight = header.biHeight;
    return header.biWidth == bitmap.Width() && (nHeight < 0 ? -nHeight : nHeight) == bitmap.Height() &&
           header.biPlanes == 1 && header.biCompression == BI_RGB && HasDepth(bitmap, header.biBitCount);
}

// Gives the caller as many colours as it has room for.
void CopyColors(const Bitmap& bitmap, BITMAPINFO& info) noexcept
{
    const std::size_t nRoom = info.bmiHeader.biBitCount <= 8 ? info.bmiHeader.biClrUsed : 0;
    const std::size_t nColors = std::min(nRoom, bitmap.palette.size());
    RGBQUAD* const colors = info.bmiColors;
    std::copy_n(bitmap.palette.begin(), nColors, colors);
    info.bmiHeader.biClrUsed = static_cast<DWORD>(nColors);
}

// Lines are counted from the bottom, whichever comes first in the buffer.
void CopyLines(const Bitmap& bitmap, const BITMAPINFOHEADER& header, int nStart, int nLines,
               BYTE* out) noexcept
{
    RowWriter row(bitmap, header.biBitCount);
    const int nBottom = bitmap.Height() - 1 - nStart;
    const bool bTopDown = header.biHeight < 0;
    for (int n = 0; n < nLines; ++n, out += row.Bytes())
        row.Write(bTopDown ? nBottom - (nLines - 1) + n : nBottom - n, out);
}

} // namespace

namespace kx::gdi {

int Bitmap::Describe(int nSize, void* pBuffer) const
{
    const auto nRowBytes = static_cast<LONG>(RowBytes(Width(), depth, fromFile ? 32 : 16));
    const BITMAP record{0, Width(), Height(), nRowBytes, 1, depth, nullptr};
    return DescribeAs(record, nSize, pBuffer);
}

} // namespace kx::gdi

HBITMAP CreateCompatibleBitmap(HDC hDC, int cx, int cy)
try {
    if (!FindAs<DeviceContext>(hDC)) return nullptr;
    auto pixels = Surface::Make(cx, cy);
    if (!pixels) return nullptr;
    return static_cast<HBITMAP>(Add(std::make_shared<Bitmap>(std::move(*pixels), WORD{32})));
} catch (...) {
    return kx::NoMemory();
}

int GetDIBits(HDC hDC, HBITMAP hBitmap, UINT nStart, UINT nLines, void* pBits, BITMAPINFO* pInfo, UINT nUsage)
{
    const auto context = FindAs<DeviceContext>(hDC);
    const auto bitmap = FindAs<Bitmap>(hBitmap);
    if (!context || !bitmap || !pInfo || nUsage != DIB_RGB_COLORS) return 0;
    BITMAPINFOHEADER& header = pInfo->bmiHeader;
    if (header.biSize != sizeof(BITMAPINFOHEADER)) return 0;
    if (header.biBitCount == 0) {
        header = HeaderOf(*bitmap);
        return 1;
    }
    const auto nHeight = static_cast<UINT>(bitmap->Height());
    if (!Fits(header, *bitmap) || nStart >= nHeight) return 0;
    CopyColors(*bitmap, *pInfo);
    const UINT nCopied = std::min(nLines, nHeight - nStart);
    if (pBits)
        CopyLines(*bitmap, header, static_cast<int>(nStart), static_cast<int>(nCopied),
                  static_cast<BYTE*>(pBits));
    return static_cast<int>(nCopied);
}
