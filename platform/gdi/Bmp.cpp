#include "platform/gdi/BmpRows.h"
#include "platform/gdi/Rle.h"

#include <utility>

namespace kx::gdi {

namespace {

constexpr std::size_t kFileHeader = 14;

std::shared_ptr<Bitmap> Decode(const BmpHeader& header, FileBytes dib, std::size_t nPixelsAt)
{
    auto palette = ReadPalette(header, dib, nPixelsAt);
    BmpColors colors = ToColors(palette);
    for (DWORD i = 0; i < palette.size(); ++i)
        colors[i] |= i << 24; // tells apart entries of one colour
    const FileBytes bytes = From(dib, nPixelsAt);
    auto surface = header.IsCompressed() ? ReadRle(header, bytes, colors) : ReadRows(header, bytes, colors);
    if (!surface) return nullptr;
    return std::make_shared<Bitmap>(std::move(*surface), header.nDepth, std::move(palette), true);
}

} // namespace

std::shared_ptr<Bitmap> ReadDib(FileBytes dib)
{
    const auto header = ParseBmpHeader(dib);
    return header ? Decode(*header, dib, header->PixelsAt()) : nullptr;
}

std::shared_ptr<Bitmap> ReadBmp(FileBytes file)
{
    if (U16(file, 0) != 0x4D42) return nullptr; // "BM"
    const FileBytes dib = From(file, kFileHeader);
    const std::size_t nOffset = U32(file, 10);
    if (nOffset == 0) return ReadDib(dib);
    const auto header = ParseBmpHeader(dib);
    if (!header || nOffset < kFileHeader + header->nPaletteAt) return nullptr;
    return Decode(*header, dib, nOffset - kFileHeader);
}

} // namespace kx::gdi
