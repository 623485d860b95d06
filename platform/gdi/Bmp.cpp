#include "platform/gdi/BmpHeader.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace kx::gdi {

namespace {

constexpr DWORD kCoreSize = 12;
constexpr DWORD kInfoSize = 40;
constexpr DWORD kOs2Size = 64;       // a second kind, which may be cut to any multiple of 4 from 16 on
constexpr DWORD kAlphaBitfields = 6; // BI_BITFIELDS with a fourth mask
constexpr DWORD kOs2Rle24 = 4;       // in headers of the second kind

// Info, with three and four masks, V4 and V5.
constexpr bool IsInfoSize(DWORD nSize) noexcept
{
    return nSize == kInfoSize || nSize == 52 || nSize == 56 || nSize == 108 || nSize == 124;
}

constexpr bool IsOs2Size(DWORD nSize) noexcept
{
    return nSize >= 16 && nSize <= kOs2Size && nSize % 4 == 0 && !IsInfoSize(nSize);
}

constexpr bool IsKnownDepth(WORD nDepth) noexcept
{
    return nDepth == 1 || nDepth == 2 || nDepth == 4 || nDepth == 8 || nDepth == 16 || nDepth == 24 ||
           nDepth == 32;
}

constexpr BmpMasks PlainMasks(WORD nDepth) noexcept
{
    return nDepth == 16 ? MASKS_555 : MASKS_888;
}

std::optional<BmpHeader> ParseCore(FileBytes dib) noexcept
{
    if (U16(dib, 8) != 1) return std::nullopt;
    const WORD nDepth = U16(dib, 10);
    return BmpHeader{.nWidth = U16(dib, 4),
                     .nHeight = U16(dib, 6),
                     .nDepth = nDepth,
                     .masks = PlainMasks(nDepth),
                     .nPaletteAt = kCoreSize,
                     .nColorSize = 3};
}

// The masks lie at one place, whether as part of the header or behind it.
bool ParseMasks(FileBytes dib, DWORD nSize, DWORD nCompression, BmpHeader& header) noexcept
{
    if (header.nDepth != 16 && header.nDepth != 32) return false;
    const std::size_t nOwn = nCompression == kAlphaBitfields ? 16 : 12;
    const std::size_t nEnd = std::max(std::size_t{nSize}, kInfoSize + nOwn);
    header.masks = {U32(dib, 40), U32(dib, 44), U32(dib, 48), nEnd >= 56 ? U32(dib, 52) : 0};
    header.nPaletteAt = nEnd;
    return true;
}

bool ParseCompression(FileBytes dib, DWORD nSize, BmpHeader& header) noexcept
{
    const DWORD nCompression = U32(dib, 16);
    switch (nCompression) {
    case BI_RGB:
        header.masks = PlainMasks(header.nDepth);
        return true;
    case BI_RLE8:
    case BI_RLE4:
        header.compression = nCompression == BI_RLE8 ? BmpCompression::Rle8 : BmpCompression::Rle4;
        return header.nDepth == (nCompression == BI_RLE8 ? 8 : 4) && !header.bTopDown;
    case BI_BITFIELDS:
    case kAlphaBitfields:
        return ParseMasks(dib, nSize, nCompression, header);
    default:
        return false;
    }
}

bool ParseOs2Compression(FileBytes dib, BmpHeader& header) noexcept
{
    if (U32(dib, 16) != kOs2Rle24) return ParseCompression(dib, kOs2Size, header) && header.nDepth != 16;
    header.compression = BmpCompression::Rle24;
    return header.nDepth == 24 && !header.bTopDown;
}

// `dib` is the header alone or with what is behind it: what a short header lacks counts as 0.
std::optional<BmpHeader> ParseInfo(FileBytes dib, DWORD nSize) noexcept
{
    const bool bOs2 = IsOs2Size(nSize);
    if (bOs2) dib = dib.first(nSize);
    const auto nHeight = static_cast<std::int32_t>(U32(dib, 8));
    if (nHeight == INT32_MIN) return std::nullopt;
    BmpHeader header{.nWidth = static_cast<std::int32_t>(U32(dib, 4)),
                     .nHeight = std::abs(nHeight),
                     .bTopDown = nHeight < 0,
                     .nDepth = U16(dib, 14),
                     .nPaletteAt = nSize,
                     .nColors = U32(dib, 32)};
    const bool bKnown = bOs2 ? ParseOs2Compression(dib, header) : ParseCompression(dib, nSize, header);
    if (U16(dib, 12) != 1 || !bKnown) return std::nullopt;
    return header;
}

} // namespace

std::optional<BmpHeader> ParseBmpHeader(FileBytes dib) noexcept
{
    const DWORD nSize = U32(dib, 0);
    if (dib.size() < nSize) return std::nullopt;
    std::optional<BmpHeader> header;
    if (nSize == kCoreSize) header = ParseCore(dib);
    if (IsInfoSize(nSize) || IsOs2Size(nSize)) header = ParseInfo(dib, nSize);
    if (!header || header->nWidth <= 0 || header->nHeight <= 0 || !IsKnownDepth(header->nDepth))
        return std::nullopt;
    if (std::int64_t{header->nWidth} * header->nHeight > MAX_BITMAP_PIXELS) return std::nullopt;
    if (header->nDepth <= 8 && header->nColors == 0) header->nColors = std::size_t{1} << header->nDepth;
    return header;
}

std::vector<RGBQUAD> ReadPalette(const BmpHeader& header, FileBytes dib, std::size_t nEnd)
{
    if (header.nDepth > 8) return {};
    std::vector<RGBQUAD> palette(std::min(header.nColors, std::size_t{1} << header.nDepth));
    const FileBytes bytes = From(dib.first(std::min(nEnd, dib.size())), header.nPaletteAt);
    const std::size_t nThere = std::min(palette.size(), bytes.size() / header.nColorSize);
    for (std::size_t i = 0; i < nThere; ++i) {
        const auto entry = bytes.subspan(i * header.nColorSize, header.nColorSize);
        palette[i] = {entry[0], entry[1], entry[2], header.nColorSize == 4 ? entry[3] : BYTE{0}};
    }
    return palette;
}

BmpColors ToColors(const std::vector<RGBQUAD>& palette) noexcept
{
    BmpColors colors{};
    std::transform(palette.begin(), palette.end(), colors.begin(), [](const RGBQUAD& color) {
        return DWORD{color.rgbRed} << 16 | DWORD{color.rgbGreen} << 8 | color.rgbBlue;
    });
    return colors;
}

namespace {

constexpr std::size_t kFileHeader = 14;

std::shared_ptr<Bitmap> Decode(const BmpHeader& header, FileBytes dib, std::size_t nPixelsAt)
{
    auto palette = ReadPalette(header, dib, nPixelsAt);
    const BmpColors colors = ToColors(palette);
    const FileBytes bytes = From(dib, nPixelsAt);
    auto surface = header.IsCompressed() ? ReadRle(header, bytes, colors) : ReadRows(header, bytes, colors);
    if (!surface) return nullptr;
    const WORD nDepth = header.nDepth == 2 ? 4 : header.nDepth; // two bits are no depth of the platform
    return std::make_shared<Bitmap>(std::move(*surface), nDepth, std::move(palette), true);
}

// The offset of a file's pixels from its second header; nothing for one that lies.
std::optional<std::size_t> PixelsAt(FileBytes file, const BmpHeader& header) noexcept
{
    const std::size_t nOffset = U32(file, 10);
    if (nOffset == 0) return header.PixelsAt();
    if (nOffset < kFileHeader + header.nPaletteAt) return std::nullopt;
    return nOffset - kFileHeader;
}

} // namespace

bool IsBmp(FileBytes file) noexcept
{
    return U16(file, 0) == 0x4D42; // "BM"
}

std::shared_ptr<Bitmap> ReadDib(FileBytes dib)
{
    const auto header = ParseBmpHeader(dib);
    return header ? Decode(*header, dib, header->PixelsAt()) : nullptr;
}

std::shared_ptr<Bitmap> ReadBmp(FileBytes file)
{
    if (!IsBmp(file)) return nullptr;
    const FileBytes dib = From(file, kFileHeader);
    const auto header = ParseBmpHeader(dib);
    const auto nPixelsAt = header ? PixelsAt(file, *header) : std::nullopt;
    return nPixelsAt ? Decode(*header, dib, *nPixelsAt) : nullptr;
}

std::optional<std::uint64_t> BmpBytesToRead(FileBytes head, std::uint64_t nFileSize) noexcept
{
    if (!IsBmp(head)) return std::nullopt;
    const auto header = ParseBmpHeader(From(head, kFileHeader));
    const auto nPixelsAt = header ? PixelsAt(head, *header) : std::nullopt;
    if (!nPixelsAt || kFileHeader + *nPixelsAt > nFileSize) return std::nullopt;
    if (header->IsCompressed()) return nFileSize;
    const std::uint64_t nThere = nFileSize - kFileHeader - *nPixelsAt;
    if (nThere < header->LeastPixelBytes()) return std::nullopt;
    return kFileHeader + *nPixelsAt + std::min<std::uint64_t>(nThere, header->PixelBytes());
}

} // namespace kx::gdi
