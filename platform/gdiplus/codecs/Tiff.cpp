#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/gdi/ImageFile.h"
#include "platform/gdiplus/codecs/Codecs.h"
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <tiffio.h>
#include <utility>
#include <vector>

namespace kx::gdiplus::codecs {

namespace {

// A file in memory that the TIFF library reads or, with a target, writes.
struct TiffMemory
{
    gdi::FileBytes bytes;
    std::vector<std::uint8_t>* target = nullptr;
    std::uint64_t at = 0;
};

struct CloseTiff
{
    void operator()(TIFF* p) const noexcept { TIFFClose(p); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

TiffMemory& Of(thandle_t handle) noexcept
{
    return *static_cast<TiffMemory*>(handle);
}

std::uint64_t SizeOf(thandle_t handle) noexcept
{
    const TiffMemory& memory = Of(handle);
    return memory.target ? memory.target->size() : memory.bytes.size();
}

tmsize_t Read(thandle_t handle, void* target, tmsize_t nBytes) noexcept
{
    TiffMemory& memory = Of(handle);
    const std::uint64_t nSize = SizeOf(handle);
    const std::uint64_t nThere = memory.at < nSize ? nSize - memory.at : 0;
    const std::size_t nRead = std::min<std::uint64_t>(static_cast<std::uint64_t>(nBytes), nThere);
    const std::uint8_t* const from = memory.target ? memory.target->data() : memory.bytes.data();
    if (nRead > 0) std::memcpy(target, from + memory.at, nRead);
    memory.at += nRead;
    return static_cast<tmsize_t>(nRead);
}

tmsize_t Write(thandle_t handle, void* bytes, tmsize_t nBytes) noexcept
try {
    TiffMemory& memory = Of(handle);
    const auto nCount = static_cast<std::size_t>(nBytes);
    if (memory.target->size() < memory.at + nCount) memory.target->resize(memory.at + nCount);
    std::memcpy(memory.target->data() + memory.at, bytes, nCount);
    memory.at += nCount;
    return nBytes;
} catch (const std::bad_alloc&) {
    return -1; // nothing is thrown through the library
}

toff_t Seek(thandle_t handle, toff_t nMove, int nOrigin) noexcept
{
    TiffMemory& memory = Of(handle);
    if (nOrigin == SEEK_CUR) nMove += memory.at;
    if (nOrigin == SEEK_END) nMove += SizeOf(handle);
    return memory.at = nMove;
}

int OnError(TIFF*, void*, const char*, const char* pszFormat, va_list args) noexcept
{
    if (!debug::Wants("picture")) return 1;
    std::array<char, 128> text;
    std::vsnprintf(text.data(), text.size(), pszFormat, args);
    gdi::NoteRefusal(text.data());
    return 1;
}

int Silent(TIFF*, void*, const char*, const char*, va_list) noexcept
{
    return 1;
}

struct FreeOptions
{
    void operator()(TIFFOpenOptions* p) const noexcept { TIFFOpenOptionsFree(p); }
};

// Opens with mode "r" or "w" and so on; the memory must outlive the handle. Errors and warnings are silent,
// and no single block that it asks for is larger than `nMaxBlock`. Null for what is no TIFF.
TiffHandle OpenTiff(TiffMemory& memory, const char* pszMode, std::int64_t nMaxBlock)
{
    NeedRoom();
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (!options) return nullptr;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), nMaxBlock);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silent, nullptr);
    return TiffHandle(TIFFClientOpenExt(
        "", pszMode, &memory, Read, Write, Seek, [](thandle_t) { return 0; }, SizeOf, nullptr, nullptr,
        options.get()));
}

using Gdiplus::Status;

constexpr std::int64_t kMaxBlock = std::int64_t{8} * Gdiplus::MAX_IMAGE_PIXELS;
constexpr std::int64_t kMaxPerByte = 4096;  // bytes of pixels
constexpr std::int64_t kMaxRowsPerByte = 8; // of a fax whose rows can be a bit each

// How long the description of the page is that the library has read.
std::uint64_t DescriptionBytes(TIFF* tiff, FileBytes file) noexcept
{
    const std::size_t nWidth = TIFFIsBigTIFF(tiff) ? 8 : 2, nEntry = TIFFIsBigTIFF(tiff) ? 20 : 12;
    const FileBytes count = gdi::From(file, TIFFCurrentDirOffset(tiff)).first(nWidth);
    std::uint64_t nEntries = 0;
    for (std::size_t i = 0; i < nWidth; ++i)
        nEntries = nEntries << 8 | count[TIFFIsBigEndian(tiff) ? i : nWidth - 1 - i];
    return nWidth + nEntries * nEntry;
}

// Whether the page's last pixels lie within the file.
bool HasPixels(TIFF* tiff, FileBytes file) noexcept
{
    const std::uint32_t nParts = TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    const std::uint64_t nOffset = TIFFGetStrileOffset(tiff, nParts - 1);
    const std::uint64_t nBytes = TIFFGetStrileByteCount(tiff, nParts - 1);
    return nOffset > 0 && nOffset <= file.size() && nBytes <= file.size() - nOffset;
}

// The places where the pages of a TIFF, classic or BigTIFF, are described: the offsets of those directories,
// in their order, up to the first that is cut, lies over another or whose last pixels lie outside the file,
// unless that page is the first. Takes time by the file's length alone.
std::vector<std::uint64_t> ReadTiffIndex(FileBytes file)
{
    std::vector<std::uint64_t> pages;
    TiffMemory memory{file};
    const TiffHandle tiff = OpenTiff(memory, "rm", kMaxBlock);
    std::uint64_t nWalked = 0; // as long as they don't overlap, they are no longer than the file
    for (bool bThere = tiff != nullptr; bThere; bThere = TIFFReadDirectory(tiff.get()) != 0) {
        nWalked += DescriptionBytes(tiff.get(), file);
        if (nWalked > file.size()) break;
        const bool bWhole = HasPixels(tiff.get(), file);
        if (bWhole || pages.empty()) pages.push_back(TIFFCurrentDirOffset(tiff.get()));
        if (!bWhole) break;
    }
    return pages;
}

struct EndImage
{
    void operator()(TIFFRGBAImage* p) const noexcept { TIFFRGBAImageEnd(p); }
};

// A fax whose rows can be a bit each; those of the other kinds stay within kMaxPerByte.
bool IsGroup4Fax(TIFF* tiff) noexcept
{
    std::uint16_t nCompression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &nCompression);
    return nCompression == COMPRESSION_CCITTFAX4;
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
    if (IsGroup4Fax(tiff))
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
    TiffMemory memory{file};
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

namespace {

constexpr std::int64_t kMaxWritten = std::int64_t{1} << 24; // bytes of a block

bool Describe(TIFF* tiff, const PixelView& view, std::uint16_t nSamples) noexcept
{
    const std::uint16_t nExtra = EXTRASAMPLE_UNASSALPHA;
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(view.width)) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(view.height)) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, nSamples) &&
           (nSamples == 3 || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &nExtra)) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) &&
           TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

} // namespace

Gdiplus::Status WriteTiff(const PixelView& view, Bytes& file)
{
    const std::uint16_t nSamples = view.alpha == Alpha::Opaque ? 3 : 4;
    Bytes samples(static_cast<std::size_t>(view.width) * nSamples);
    TiffMemory memory{{}, &file};
    const TiffHandle tiff = OpenTiff(memory, "w", kMaxWritten);
    if (!tiff || !Describe(tiff.get(), view, nSamples)) return Gdiplus::OutOfMemory;
    for (int y = 0; y < view.height; ++y) {
        const DWORD* const row = view.Row(y);
        std::uint8_t* out = samples.data();
        for (int x = 0; x < view.width; ++x, out += nSamples) {
            out[0] = static_cast<std::uint8_t>(row[x] >> 16);
            out[1] = static_cast<std::uint8_t>(row[x] >> 8);
            out[2] = static_cast<std::uint8_t>(row[x]);
            if (nSamples == 4) out[3] = static_cast<std::uint8_t>(row[x] >> 24);
        }
        if (TIFFWriteScanline(tiff.get(), samples.data(), static_cast<std::uint32_t>(y), 0) < 0)
            return Gdiplus::OutOfMemory;
    }
    return TIFFWriteDirectory(tiff.get()) ? Gdiplus::Ok : Gdiplus::OutOfMemory;
}

} // namespace kx::gdiplus::codecs
