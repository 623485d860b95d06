#include "platform/gdi/BmpHeader.h"
#include "platform/gdi/Png.h"

#include <tuple>

namespace kx::gdi {

namespace {

// One image of an ICO file.
struct IcoEntry
{
    FileBytes bytes;
    std::optional<BmpHeader> bmp; // of the icon's own height; without one the bytes are a PNG
    int nWidth = 0;
    int nHeight = 0;
    int nDepth = 0;
};

constexpr std::size_t kHeader = 6;
constexpr std::size_t kEntry = 16;

constexpr bool IsSide(DWORD nSide) noexcept
{
    return nSide > 0 && nSide <= MAX_PNG_ICON_SIDE;
}

bool DescribePng(const PngHeader& png, IcoEntry& entry) noexcept
{
    entry.nWidth = static_cast<int>(png.nWidth);
    entry.nHeight = static_cast<int>(png.nHeight);
    entry.nDepth = png.nDepth;
    return IsSide(png.nWidth) && IsSide(png.nHeight);
}

// A BMP counts its mask as a second half of its height.
bool DescribeBmp(const BmpHeader& bmp, IcoEntry& entry) noexcept
{
    entry.bmp = bmp;
    entry.bmp->nHeight /= 2;
    entry.nWidth = bmp.nWidth;
    entry.nHeight = entry.bmp->nHeight;
    entry.nDepth = bmp.nDepth;
    return bmp.nHeight % 2 == 0 && !bmp.bTopDown && !bmp.IsCompressed();
}

// Reads the image itself: the directory's record of it can't tell more than 256 pixels, and often lies.
bool Describe(IcoEntry& entry) noexcept
{
    if (const auto png = ParsePngHeader(entry.bytes)) return DescribePng(*png, entry);
    const auto bmp = ParseBmpHeader(entry.bytes);
    return bmp && DescribeBmp(*bmp, entry);
}

std::optional<IcoEntry> EntryAt(FileBytes file, std::size_t at) noexcept
{
    const std::size_t nSize = U32(file, at + 8), nOffset = U32(file, at + 12);
    if (nOffset > file.size() || nSize > file.size() - nOffset) return std::nullopt;
    IcoEntry entry;
    entry.bytes = file.subspan(nOffset, nSize);
    if (!Describe(entry)) return std::nullopt;
    return entry;
}

// The lower, the better.
auto Rank(const IcoEntry& entry, int cx, int cy) noexcept
{
    const std::int64_t nPixels = std::int64_t{entry.nWidth} * entry.nHeight;
    const bool bCovers = entry.nWidth >= cx && entry.nHeight >= cy;
    return std::tuple(!bCovers, bCovers ? nPixels : -nPixels, -entry.nDepth);
}

// Nothing for what is no icon file or has no entry that is sound.
std::optional<IcoEntry> ChooseEntry(FileBytes file, int cx, int cy) noexcept
{
    if (!IsIco(file) || cx < 0 || cy < 0) return std::nullopt;
    const std::size_t nCount = U16(file, 4);
    if (file.size() < kHeader + nCount * kEntry) return std::nullopt;
    std::optional<IcoEntry> best;
    for (std::size_t i = 0; i < nCount; ++i) {
        const auto entry = EntryAt(file, kHeader + i * kEntry);
        if (!entry) continue;
        if (cx == 0 && cy == 0) return entry;
        if (!best || Rank(*entry, cx, cy) < Rank(*best, cx, cy)) best = entry;
    }
    return best;
}

constexpr DWORD kOpaque = 0xFF000000;

bool HasAlpha(const Surface& surface) noexcept
{
    DWORD all = 0;
    for (int y = 0; y < surface.Height(); ++y)
        for (int x = 0; x < surface.Width(); ++x)
            all |= surface.Row(y)[x];
    return (all & kOpaque) != 0;
}

// The pixels are followed by a mask of one bit each, where 1 leaves alone what is below. It may be missing
// where an alpha channel tells it all.
std::optional<Surface> ReadIconBmp(const BmpHeader& header, FileBytes dib)
{
    const std::size_t nPixelsAt = header.PixelsAt();
    const BmpColors colors = ToColors(ReadPalette(header, dib, nPixelsAt));
    auto surface = ReadRows(header, From(dib, nPixelsAt), colors);
    if (!surface || HasAlpha(*surface)) return surface;

    BmpHeader maskHeader = header;
    maskHeader.nDepth = 1;
    const auto mask = ReadRows(maskHeader, From(dib, nPixelsAt + header.PixelBytes()), BmpColors{kOpaque});
    if (!mask) return std::nullopt;
    for (int y = 0; y < surface->Height(); ++y)
        for (int x = 0; x < surface->Width(); ++x)
            surface->Row(y)[x] |= mask->Row(y)[x];
    return surface;
}

} // namespace

bool IsIco(FileBytes file) noexcept
{
    return file.size() > kHeader && U16(file, 0) == 0 && U16(file, 2) == 1;
}

std::optional<Surface> ReadIcon(FileBytes file, int cx, int cy)
{
    const auto entry = ChooseEntry(file, cx, cy);
    if (!entry) return std::nullopt;
    return entry->bmp ? ReadIconBmp(*entry->bmp, entry->bytes) : ReadPng(entry->bytes, MAX_PNG_ICON_SIDE);
}

} // namespace kx::gdi
