#include "platform/gdi/Bitmap.h"
#include "platform/gdi/BmpHeader.h"
#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/ImageFile.h"
#include "platform/gdi/Rect.h"
#include "platform/module/Door.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <tuple>

KX_DOOR(pictures, kx::gdi::PngFunctions);

namespace kx::gdi {

namespace {

constexpr std::array<std::uint8_t, 16> kStart = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',
                                                 0,    0,   0,   13,  'I',  'H',  'D',  'R'};
constexpr std::size_t kHeaderEnd = kStart.size() + 13;

DWORD BigEndian(FileBytes file, std::size_t at) noexcept
{
    return DWORD{file[at]} << 24 | DWORD{file[at + 1]} << 16 | DWORD{file[at + 2]} << 8 | file[at + 3];
}

} // namespace

std::optional<PngHeader> ParsePngHeader(FileBytes file) noexcept
{
    if (file.size() < kHeaderEnd || !std::equal(kStart.begin(), kStart.end(), file.begin()))
        return std::nullopt;
    // By colour type: grey, none, RGB, palette, grey with alpha, none, RGB with alpha.
    constexpr int kChannels[] = {1, 0, 3, 1, 2, 0, 4};
    const std::uint8_t nBits = file[24], nType = file[25];
    const int nChannels = nType < std::size(kChannels) ? kChannels[nType] : 0;
    return PngHeader{BigEndian(file, 16), BigEndian(file, 20), nBits * nChannels};
}

std::optional<Surface> ReadPng(FileBytes file, int nMaxSide)
{
    const PngFunctions* const functions = g_door.Open();
    return functions ? functions->read(file, nMaxSide, nullptr) : std::nullopt;
}

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
    if (!IsIco(file)) return std::nullopt;
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

// How much of a target's pixel `n` a source's pixel `m` covers, where `from` pixels become `to`; both counted
// in parts of which a source's pixel has `to` and a target's `from`.
std::int64_t Overlap(int n, int m, int from, int to) noexcept
{
    const std::int64_t begin = std::max(std::int64_t{n} * from, std::int64_t{m} * to);
    const std::int64_t end = std::min((std::int64_t{n} + 1) * from, (std::int64_t{m} + 1) * to);
    return end - begin;
}

// The first of the source's pixels that a target's pixel takes from, or for the next one the last and one.
int SourceOf(int n, int from, int to) noexcept
{
    return static_cast<int>(std::int64_t{n} * from / to);
}

// The mean of the pixels below (x, y) of a surface that becomes `size`: each counts with its part in it, its
// colour with its opacity besides.
DWORD MeanAt(const Surface& image, int x, int y, SIZE size) noexcept
{
    std::array<std::int64_t, 3> colors{};
    std::int64_t nOpacity = 0;
    std::int64_t nArea = 0;
    for (int v = SourceOf(y, image.Height(), size.cy); v < image.Height(); ++v) {
        const std::int64_t nDown = Overlap(y, v, image.Height(), size.cy);
        if (nDown <= 0) break;
        for (int u = SourceOf(x, image.Width(), size.cx); u < image.Width(); ++u) {
            const std::int64_t nAcross = Overlap(x, u, image.Width(), size.cx);
            if (nAcross <= 0) break;
            const DWORD pixel = image.Row(v)[u];
            const std::int64_t nWeight = nDown * nAcross * (pixel >> 24);
            for (std::size_t n = 0; n < colors.size(); ++n)
                colors[n] += nWeight * (pixel >> 8 * n & 0xFF);
            nOpacity += nWeight;
            nArea += nDown * nAcross;
        }
    }
    if (nOpacity == 0) return 0;
    auto mean = static_cast<DWORD>((nOpacity + nArea / 2) / nArea) << 24;
    for (std::size_t n = 0; n < colors.size(); ++n)
        mean |= static_cast<DWORD>((colors[n] + nOpacity / 2) / nOpacity) << 8 * n;
    return mean;
}

void LayRow(const DWORD* from, DWORD* to, int nCount) noexcept
{
    for (int i = 0; i < nCount; ++i)
        to[i] = Mixed(from[i], to[i], from[i] >> 24);
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

std::shared_ptr<Icon> Icon::Make(Surface image, SIZE size)
{
    if (size.cx == 0) size.cx = image.Width();
    if (size.cy == 0) size.cy = image.Height();
    if (size == SIZE{image.Width(), image.Height()}) return std::make_shared<Icon>(std::move(image));
    auto scaled = Surface::Make(size.cx, size.cy);
    if (!scaled) return nullptr;
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x)
            scaled->Row(y)[x] = MeanAt(image, x, y, size);
    return std::make_shared<Icon>(std::move(*scaled));
}

} // namespace kx::gdi

using namespace kx::gdi;

int DestroyIcon(HICON hIcon)
{
    return FindAs<Icon>(hIcon) && Remove(hIcon) ? 1 : 0;
}

int DrawIcon(HDC hDC, int x, int y, HICON hIcon)
{
    const auto context = FindAs<DeviceContext>(hDC);
    const auto icon = FindAs<Icon>(hIcon);
    if (!context || !icon) return 0;
    const Surface& image = icon->surface;
    const Canvas canvas = context->Paint();
    const RECT place = AreaOf({x, y, image.Width(), image.Height()});
    ForEachPart(canvas.clip, place, [&](const RECT& part) {
        for (int row = part.top; row < part.bottom; ++row)
            LayRow(image.Row(row - place.top) + (part.left - place.left), canvas.surface.Row(row) + part.left,
                   part.right - part.left);
    });
    return 1;
}

int GetIconSize(HICON hIcon, SIZE* pSize)
{
    const auto icon = FindAs<Icon>(hIcon);
    if (!icon || !pSize) return 0;
    *pSize = {icon->surface.Width(), icon->surface.Height()};
    return 1;
}
