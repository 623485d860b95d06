#include "platform/gdiplus/codecs/Codecs.h"
#include "platform/gdiplus/codecs/TiffFile.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace kx::gdiplus {

namespace {

using Gdiplus::Status;

constexpr std::int64_t kMaxBlock = std::int64_t{8} * Gdiplus::MAX_IMAGE_PIXELS;
constexpr std::int64_t kMaxPerByte = 4096;  // bytes of pixels
constexpr std::int64_t kMaxRowsPerByte = 8; // of a fax, whose rows can be a bit each

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
            if (!Has(at, nSize) || nWalked > m_file.size()) break;
            const bool bWhole = HasPixels(at + m_widths.entries, nEntries);
            if (bWhole || pages.empty()) pages.push_back(at);
            if (!bWhole) break;
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

// Where the pages of a TIFF, classic or BigTIFF, are described: the offsets of those directories, in their
// order, up to the first that is cut, lies over another or whose last pixels lie outside the file, unless
// that page is the first. Takes time by the file's length alone.
std::vector<std::uint64_t> ReadTiffIndex(gdi::FileBytes file)
{
    return file.size() < 8 ? std::vector<std::uint64_t>() : Walker(file).Run();
}

struct EndImage
{
    void operator()(TIFFRGBAImage* p) const noexcept { TIFFRGBAImageEnd(p); }
};

bool IsFax(TIFF* tiff) noexcept
{
    std::uint16_t nCompression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &nCompression);
    return nCompression == COMPRESSION_CCITTRLE || nCompression == COMPRESSION_CCITTRLEW ||
           nCompression == COMPRESSION_CCITTFAX3 || nCompression == COMPRESSION_CCITTFAX4;
}

Status CheckClaim(TIFF* tiff, std::size_t nFileBytes) noexcept
{
    std::uint32_t nWidth = 0, nHeight = 0;
    std::uint16_t nBits = 1, nSamples = 1;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &nWidth);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &nHeight);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &nBits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &nSamples);
    const Status status = CheckSize(nWidth, nHeight);
    if (status != Gdiplus::Ok) return status;
    if (IsFax(tiff))
        return nHeight / kMaxRowsPerByte > static_cast<std::int64_t>(nFileBytes) ? Gdiplus::GenericError
                                                                                 : Gdiplus::Ok;
    const std::int64_t nBytes = std::int64_t{nWidth} * nHeight * nBits * nSamples / 8;
    return IsAbsurd(nBytes, nFileBytes, kMaxPerByte) ? Gdiplus::GenericError : Gdiplus::Ok;
}

Gdiplus::PixelFormat FormatOf(const TIFFRGBAImage& image) noexcept
{
    if (image.alpha != 0) return Gdiplus::PixelFormat32bppARGB;
    if (image.samplesperpixel > 1) return Gdiplus::PixelFormat24bppRGB;
    return FormatOfDepth(std::min<int>(image.bitspersample, 8));
}

// Whatever the file has, the library gives colours that are multiplied by the alpha.
DWORD ToStraight(DWORD pixel) noexcept
{
    const DWORD alpha = pixel >> 24;
    if (alpha == 255) return pixel;
    if (alpha == 0) return 0;
    DWORD straight = pixel & ALPHA_BITS;
    for (const int nShift : {0, 8, 16})
        straight |= std::min<DWORD>(((pixel >> nShift & 0xFF) * 255 + alpha / 2) / alpha, 255) << nShift;
    return straight;
}

// The library leaves rows one behind the other, of pixels with red in their low byte. They go where the
// surface has them, the last one first, since its rows are no shorter.
void ToRows(gdi::Surface& surface) noexcept
{
    const std::ptrdiff_t nWidth = surface.Width();
    for (int y = surface.Height(); y-- > 0;) {
        const DWORD* const from = surface.Row(0) + y * nWidth;
        DWORD* const to = surface.Row(y);
        for (std::ptrdiff_t x = nWidth; x-- > 0;)
            to[x] = ToStraight((from[x] & 0xFF00FF00) | (from[x] & 0xFF) << 16 | (from[x] >> 16 & 0xFF));
    }
}

// Some strip or tile could be read, as those that come first in the file are.
bool HasAnyPixel(const gdi::Surface& surface) noexcept
{
    const DWORD* const first = surface.Row(0);
    return std::any_of(first, first + surface.Width(), [](DWORD pixel) { return pixel != 0; });
}

// A page that can't be read in full is broken, unless it may be in part.
Status ReadPage(FileBytes file, std::uint64_t at, bool bInPart, std::optional<Picture>& picture)
{
    TiffMemory memory{file, nullptr, 0};
    const TiffHandle tiff = OpenTiff(memory, "rmh", kMaxBlock);
    if (!tiff || !TIFFSetSubDirectory(tiff.get(), at)) return Gdiplus::GenericError;
    const Status status = CheckClaim(tiff.get(), file.size());
    if (status != Gdiplus::Ok) return status;

    std::array<char, 1024> why;
    TIFFRGBAImage image;
    if (!TIFFRGBAImageOK(tiff.get(), why.data()) || !TIFFRGBAImageBegin(&image, tiff.get(), 1, why.data()))
        return Gdiplus::GenericError;
    const std::unique_ptr<TIFFRGBAImage, EndImage> end(&image);
    image.req_orientation = ORIENTATION_TOPLEFT;
    auto surface = gdi::Surface::Make(static_cast<int>(image.width), static_cast<int>(image.height));
    if (!surface) return Gdiplus::OutOfMemory;
    const bool bWhole = TIFFRGBAImageGet(&image, surface->Row(0), image.width, image.height) != 0;
    if (!bWhole && !(bInPart && HasAnyPixel(*surface))) return Gdiplus::GenericError;
    ToRows(*surface);
    const bool bAlpha = image.alpha != 0 || !bWhole;
    picture = Picture{std::move(*surface), bAlpha ? Alpha::Straight : Alpha::Opaque, FormatOf(image)};
    return Gdiplus::Ok;
}

class TiffPages : public Frames
{
public:
    TiffPages(File file, std::vector<std::uint64_t> pages) noexcept
        : m_file(std::move(file)), m_pages(std::move(pages))
    {
    }
    unsigned Count() const noexcept override { return static_cast<unsigned>(m_pages.size()); }
    std::optional<Property> FindProperty(Gdiplus::PROPID) const override { return std::nullopt; }
    Status Select(unsigned nFrame, gdi::Surface& surface, Alpha& alpha) override
    {
        std::optional<Picture> page;
        const Status status = ReadPage(*m_file, m_pages[nFrame], false, page);
        if (status != Gdiplus::Ok) return status;
        surface = std::move(page->surface);
        alpha = page->alpha;
        return Gdiplus::Ok;
    }

private:
    const File m_file;
    const std::vector<std::uint64_t> m_pages;
};

} // namespace

Status ReadTiff(const File& file, std::optional<Picture>& picture)
{
    auto pages = ReadTiffIndex(*file);
    if (pages.empty()) return Gdiplus::GenericError;
    const Status status = ReadPage(*file, pages.front(), pages.size() == 1, picture);
    if (status == Gdiplus::Ok && pages.size() > 1)
        picture->frames = std::make_unique<TiffPages>(file, std::move(pages));
    return status;
}

} // namespace kx::gdiplus
