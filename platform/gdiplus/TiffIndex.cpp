#include "platform/gdiplus/TiffIndex.h"

namespace kx::gdiplus {

namespace {

constexpr std::uint64_t kStripOffsets = 273, kStripSizes = 279, kTileOffsets = 324, kTileSizes = 325;
constexpr std::uint64_t kShort = 3, kLong = 4, kLong8 = 16;
constexpr std::uint64_t kBigVersion = 43;

// How wide what tells of the pages is: offsets and counts of values, counts of entries. Files of more than
// four gigabytes brought the wider ones.
struct Widths
{
    std::size_t number;
    std::size_t entries;

    std::size_t Entry() const noexcept { return 4 + 2 * number; }
};
constexpr Widths kClassic{4, 2}, kBig{8, 8};

class Walker
{
public:
    explicit Walker(gdi::FileBytes file) noexcept
        : m_file(file), m_bBigEndian(file[0] == 'M'), m_widths(Number(2, 2) == kBigVersion ? kBig : kClassic)
    {
    }

    std::vector<std::uint64_t> Run()
    {
        std::vector<std::uint64_t> pages;
        std::size_t nWalked = 0; // as long as they don't overlap, they are no longer than the file
        for (std::uint64_t at = Number(m_widths.number, m_widths.number); at != 0;) {
            const std::uint64_t nEntries = Number(at, m_widths.entries);
            if (nEntries > m_file.size() / m_widths.Entry()) break;
            const std::size_t nLink = m_widths.entries + nEntries * m_widths.Entry();
            const std::size_t nSize = nLink + m_widths.number;
            nWalked += nSize;
            if (!Has(at, nSize) || nWalked > m_file.size() || !HasPixels(at + m_widths.entries, nEntries))
                break;
            pages.push_back(at);
            at = Number(at + nLink, m_widths.number);
        }
        return pages;
    }

private:
    bool Has(std::uint64_t at, std::uint64_t nBytes) const noexcept
    {
        return at <= m_file.size() && nBytes <= m_file.size() - at;
    }

    // 0 outside the file.
    std::uint64_t Number(std::uint64_t at, std::size_t nWidth) const noexcept
    {
        std::uint64_t value = 0;
        if (!Has(at, nWidth)) return 0;
        for (std::size_t i = 0; i < nWidth; ++i)
            value = value << 8 | m_file[at + (m_bBigEndian ? i : nWidth - 1 - i)];
        return value;
    }

    // The last of an entry's values: it lies in the entry itself if all of them fit there.
    std::uint64_t Last(std::uint64_t nEntryAt) const noexcept
    {
        const std::uint64_t nType = Number(nEntryAt + 2, 2);
        const std::uint64_t nCount = Number(nEntryAt + 4, m_widths.number);
        const std::size_t nWidth = nType == kShort ? 2 : nType == kLong ? 4 : nType == kLong8 ? 8 : 0;
        if (nWidth == 0 || nCount == 0 || nCount > m_file.size()) return 0;
        const std::uint64_t nValueAt = nEntryAt + 4 + m_widths.number;
        const std::uint64_t at =
            nCount * nWidth <= m_widths.number ? nValueAt : Number(nValueAt, m_widths.number);
        return Number(at + (nCount - 1) * nWidth, nWidth);
    }

    bool HasPixels(std::uint64_t at, std::uint64_t nEntries) const noexcept
    {
        std::uint64_t nOffset = 0, nSize = 0;
        for (; nEntries > 0; --nEntries, at += m_widths.Entry()) {
            const std::uint64_t nTag = Number(at, 2);
            if (nTag == kStripOffsets || nTag == kTileOffsets) nOffset = Last(at);
            if (nTag == kStripSizes || nTag == kTileSizes) nSize = Last(at);
        }
        return nOffset > 0 && Has(nOffset, nSize);
    }

    gdi::FileBytes m_file;
    const bool m_bBigEndian;
    const Widths m_widths;
};

} // namespace

std::vector<std::uint64_t> ReadTiffIndex(gdi::FileBytes file)
{
    return file.size() < 8 ? std::vector<std::uint64_t>() : Walker(file).Run();
}

} // namespace kx::gdiplus
