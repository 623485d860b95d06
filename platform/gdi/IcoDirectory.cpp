#include "platform/gdi/IcoDirectory.h"

#include "platform/gdi/Png.h"

#include <cstdlib>
#include <tuple>

namespace kx::gdi {

namespace {

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

// What the image itself says: the directory's record of it can't tell more than 256 pixels, and often lies.
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

int Distance(int nSide, int nWanted) noexcept
{
    return nWanted == 0 ? 0 : std::abs(nSide - nWanted);
}

// The lower, the better.
auto Rank(const IcoEntry& entry, int cx, int cy) noexcept
{
    const std::int64_t nDistance = std::int64_t{Distance(entry.nWidth, cx)} + Distance(entry.nHeight, cy);
    return std::tuple(nDistance, -std::int64_t{entry.nWidth} * entry.nHeight, -entry.nDepth);
}

} // namespace

std::optional<IcoEntry> ChooseIcoEntry(FileBytes file, int cx, int cy) noexcept
{
    if (cx < 0 || cy < 0 || U16(file, 0) != 0 || U16(file, 2) != 1) return std::nullopt;
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

} // namespace kx::gdi
