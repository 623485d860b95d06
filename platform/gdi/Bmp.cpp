#include "platform/gdi/BmpHeader.h"

#include <algorithm>
#include <utility>

namespace kx::gdi {

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

bool IsBmp(FileBytes file) noexcept
{
    return U16(file, 0) == 0x4D42; // "BM"
}

} // namespace

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
