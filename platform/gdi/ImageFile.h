#pragma once

#include "include/KXExport.h"
#include "platform/gdi/Bitmap.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace kx::gdi {

using FileBytes = std::span<const std::uint8_t>;

inline FileBytes BytesOf(std::string_view file) noexcept
{
    return {reinterpret_cast<const std::uint8_t*>(file.data()), file.size()};
}

static_assert(std::endian::native == std::endian::little, "pixels are copied as the file orders them");

// Little-endian integers; 0 outside the bytes.
constexpr DWORD Little(FileBytes bytes, std::size_t at, std::size_t width) noexcept
{
    DWORD value = 0;
    if (at > bytes.size() || width > bytes.size() - at) return 0;
    for (std::size_t i = width; i-- > 0;)
        value = value << 8 | bytes[at + i];
    return value;
}

constexpr WORD U16(FileBytes bytes, std::size_t at) noexcept
{
    return static_cast<WORD>(Little(bytes, at, 2));
}

constexpr DWORD U32(FileBytes bytes, std::size_t at) noexcept
{
    return Little(bytes, at, 4);
}

// The bytes behind an offset; nothing beyond the end.
constexpr FileBytes From(FileBytes bytes, std::size_t at) noexcept
{
    return at < bytes.size() ? bytes.subspan(at) : FileBytes();
}

// The longest image file that is read: that of the largest bitmap whose rows are all padding but for a pixel,
// and a mebibyte for its headers.
inline constexpr std::uint64_t MAX_IMAGE_FILE = 4 * MAX_BITMAP_PIXELS + (std::uint64_t{1} << 20);

// The longest side of an icon that is a PNG, whose few bytes may otherwise claim any number of pixels.
inline constexpr int MAX_PNG_ICON_SIDE = 1024;

// The reason that the decoder at work on this thread gives for a file that it refuses, in its library's
// words; kept while somebody listens to diagnostics of pictures.
KX_API void NoteRefusal(const char* pszReason) noexcept;
// The last one, empty after a call of NoteRefusal with the empty text; valid until the next.
const char* LastRefusal();

// Decode whole files held in memory. Null or nothing for anything that is truncated, lying or too large;
// bounded in time and memory by the bytes given and MAX_BITMAP_PIXELS.

// A BMP file. Its length field is not believed; a pixel offset of 0 counts as none.
//
// Colours that the palette lacks are black. Channels of other widths than 8 bits are cut to their upper 8, or
// widened by repeating their bits. The high byte of a pixel is the file's own at 32 bits, its alpha where
// masks tell one, else 0. A bitmap of 2 bits declares 4.
//
// The last row may lack its padding. Compressed pixels must end with their end mark. What lies outside the
// bitmap is left out, and what the data skip has the palette's first colour. They are refused when they claim
// over a mebipixel and over 256 pixels for each of their bytes, twice what runs of the greatest length could
// fill.
std::shared_ptr<Bitmap> ReadBmp(FileBytes file);

// Whether a file begins as a BMP does.
bool IsBmp(FileBytes file) noexcept;

// How much of a BMP file is to be read, of which `head` holds the beginning, IMAGE_HEAD bytes where it has as
// many. Nothing for a file whose header is bad or claims more than there is.
std::optional<std::uint64_t> BmpBytesToRead(FileBytes head, std::uint64_t nFileSize) noexcept;
inline constexpr std::size_t IMAGE_HEAD = 256;

// A BMP without its file header, as a bitmap resource holds it.
std::shared_ptr<Bitmap> ReadDib(FileBytes dib);

// Whether a file begins as one of icons does.
bool IsIco(FileBytes file) noexcept;

// An icon's pixels; the high byte of each is its opacity, 0 to 255, by which its colours are not multiplied.
//
// The smallest entry of an ICO file is taken that is at least `cx` wide and `cy` high, without one the
// largest, of those alike the one of greatest depth, of those the first; with 0 for both sides the first of
// all. Sizes and depths are those that the images tell themselves; entries that lie outside the file or have
// no sound header don't count. An image whose alpha channel is missing or 0 throughout takes its opacity from
// its mask.
std::optional<Surface> ReadIcon(FileBytes file, int cx, int cy);

// The claims of a PNG's first bytes.
struct PngHeader
{
    DWORD nWidth = 0;
    DWORD nHeight = 0;
    int nDepth = 0; // bits of a pixel
};

// Nothing for what doesn't begin as a PNG does.
KX_API std::optional<PngHeader> ParsePngHeader(FileBytes file) noexcept;

// The reader of PNG comes from the module for pictures.
struct PngFunctions
{
    // A PNG's pixels, the high byte their opacity. Nothing for one that is broken, cut before its end mark,
    // or has a side above `nMaxSide`. Only what the pixels need is read of it: texts and profiles are passed
    // over.
    //
    // With `pbCut` a file that ends within its pixels is read too, as far as it goes, if its first row is
    // there: what lacks is 0 then, and *pbCut tells of it.
    std::optional<Surface> (*read)(FileBytes file, int nMaxSide, bool* pbCut);
};

// Reads a whole file as PngFunctions::read does; nothing where the module can't be used.
std::optional<Surface> ReadPng(FileBytes file, int nMaxSide);

} // namespace kx::gdi
