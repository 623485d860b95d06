#include "platform/gdi/BmpHeader.h"

#include <algorithm>
#include <utility>

namespace kx::gdi {

namespace {

constexpr std::size_t kFileHeader = 14;

bool HasTwice(BmpColors colors, std::size_t nCount)
{
    const auto end = colors.begin() + static_cast<std::ptrdiff_t>(nCount);
    std::sort(colors.begin(), end);
    return std::adjacent_find(colors.begin(), end) != end;
}

// Takes the indices out of the high bytes of pixels.
std::vector<BYTE> TakeIndices(Surface& surface)
{
    std::vector<BYTE> indices;
    indices.reserve(static_cast<std::size_t>(surface.Width()) * static_cast<std::size_t>(surface.Height()));
    for (int y = 0; y < surface.Height(); ++y)
        for (DWORD* pixel = surface.Row(y); pixel < surface.Row(y) + surface.Width(); ++pixel) {
            indices.push_back(static_cast<BYTE>(*pixel >> 24));
            *pixel &= COLOR_BITS;
        }
    return indices;
}

std::shared_ptr<Bitmap> Decode(const BmpHeader& header, FileBytes dib, std::size_t nPixelsAt)
{
    Palette palette{ReadPalette(header, dib, nPixelsAt), {}};
    BmpColors colors = ToColors(palette.colors);
    const bool bMarked = HasTwice(colors, palette.colors.size());
    for (DWORD i = 0; bMarked && i < colors.size(); ++i)
        colors[i] |= i << 24;
    const FileBytes bytes = From(dib, nPixelsAt);
    auto surface = header.IsCompressed() ? ReadRle(header, bytes, colors) : ReadRows(header, bytes, colors);
    if (!surface) return nullptr;
    if (bMarked) palette.indices = TakeIndices(*surface);
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
