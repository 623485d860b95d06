#include "platform/gdi/BmpRows.h"
#include "platform/gdi/IcoDirectory.h"
#include "platform/gdi/Png.h"

namespace kx::gdi {

namespace {

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

std::optional<Surface> ReadIcon(FileBytes file, int cx, int cy)
{
    const auto entry = ChooseIcoEntry(file, cx, cy);
    if (!entry) return std::nullopt;
    return entry->bmp ? ReadIconBmp(*entry->bmp, entry->bytes) : ReadPng(entry->bytes, MAX_PNG_ICON_SIDE);
}

} // namespace kx::gdi
