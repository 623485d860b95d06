#include "platform/gdiplus/TiffIndex.h"

namespace kx::gdiplus {

namespace {

constexpr std::size_t kEntry = 12;
constexpr std::uint32_t kStripOffsets = 273, kStripSizes = 279, kTileOffsets = 324, kTileSizes = 325;
constexpr std::uint32_t kShort = 3, kLong = 4;

class Walker
{
public:
    explicit Walker(gdi::FileBytes file) noexcept : m_file(file), m_bBigEndian(file[0] == 'M') {}

    std::vector<std::uint32_t> Run()
    {
        std::vector<std::uint32_t> pages;
        std::size_t nWalked = 0; // as long as they don't overlap, they are no longer than the file
        for (std::uint64_t at = Number(4, 4); at != 0;) {
            const std::size_t nEntries = Number(at, 2), nSize = 2 + nEntries * kEntry + 4;
            nWalked += nSize;
            const bool bWithin = at <= m_file.size() && nSize <= m_file.size() - at;
            if (!bWithin || nWalked > m_file.size() || !HasPixels(at + 2, nEntries)) break;
            pages.push_back(static_cast<std::uint32_t>(at));
            at = Number(at + nSize - 4, 4);
        }
        return pages;
    }

private:
    // 0 outside the file.
    std::uint32_t Number(std::uint64_t at, std::size_t nWidth) const noexcept
    {
        std::uint32_t value = 0;
        if (at > m_file.size() || nWidth > m_file.size() - at) return 0;
        for (std::size_t i = 0; i < nWidth; ++i)
            value = value << 8 | m_file[at + (m_bBigEndian ? i : nWidth - 1 - i)];
        return value;
    }

    // The last of an entry's values: it lies in the entry itself if all of them fit there.
    std::uint64_t Last(std::uint64_t nEntryAt) const noexcept
    {
        const std::uint32_t nType = Number(nEntryAt + 2, 2);
        const std::uint64_t nCount = Number(nEntryAt + 4, 4), nWidth = nType == kShort ? 2 : 4;
        if (nCount == 0 || (nType != kShort && nType != kLong)) return 0;
        const std::uint64_t at = nCount * nWidth <= 4 ? nEntryAt + 8 : Number(nEntryAt + 8, 4);
        return Number(at + (nCount - 1) * nWidth, nWidth);
    }

    bool HasPixels(std::uint64_t at, std::size_t nEntries) const noexcept
    {
        std::uint64_t nOffset = 0, nSize = 0;
        for (; nEntries > 0; --nEntries, at += kEntry) {
            const std::uint32_t nTag = Number(at, 2);
            if (nTag == kStripOffsets || nTag == kTileOffsets) nOffset = Last(at);
            if (nTag == kStripSizes || nTag == kTileSizes) nSize = Last(at);
        }
        return nOffset > 0 && nOffset + nSize <= m_file.size();
    }

    gdi::FileBytes m_file;
    const bool m_bBigEndian;
};

} // namespace

std::vector<std::uint32_t> ReadTiffIndex(gdi::FileBytes file)
{
    return file.size() < 8 ? std::vector<std::uint32_t>() : Walker(file).Run();
}

} // namespace kx::gdiplus
