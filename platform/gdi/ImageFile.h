#pragma once

#include "platform/gdi/Bitmap.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace kx::gdi {

using FileBytes = std::span<const std::uint8_t>;

// The longest image file that is read: that of the largest bitmap whose rows are all padding but for a pixel,
// and a mebibyte for its headers.
inline constexpr std::uint64_t MAX_IMAGE_FILE = 4 * MAX_BITMAP_PIXELS + (std::uint64_t{1} << 20);

// The longest side of an icon that is a PNG, whose few bytes may otherwise claim any number of pixels.
inline constexpr int MAX_PNG_ICON_SIDE = 1024;

// Decode whole files held in memory. Null or nothing for anything that is truncated, lying or too large;
// bounded in time and memory by the bytes given and MAX_BITMAP_PIXELS.

// A BMP file. Its length field is not believed; a pixel offset of 0 counts as none.
//
// Colours that the palette lacks are black. Channels of other widths than 8 bits are cut to their upper 8, or
// widened by repeating their bits. The high byte of a pixel is the file's own at 32 bits, its alpha where
// masks tell one, its index into the palette at 8 bits and less, else 0.
//
// Compressed pixels must end with their end mark. What lies outside the bitmap is left out, and what the data
// skip has the palette's first colour. They are refused when they claim over a mebipixel and over 256 pixels
// for each of their bytes, twice what runs of the greatest length could fill.
std::shared_ptr<Bitmap> ReadBmp(FileBytes file);

// A BMP without its file header, as a bitmap resource holds it.
std::shared_ptr<Bitmap> ReadDib(FileBytes dib);

// An icon's pixels; the high byte of each is its opacity, 0 to 255, by which its colours are not multiplied.
//
// The entry of an ICO file is taken whose size is nearest to `cx` by `cy` (sum of both differences; a 0 fits
// any size, two take the first entry), of those the larger, of those the one of greatest depth, of those the
// first. Sizes and depths are those that the images tell themselves; entries that lie outside the file or
// have no sound header don't count. An image whose alpha channel is missing or 0 throughout takes its opacity
// from its mask.
std::optional<Surface> ReadIcon(FileBytes file, int cx, int cy);

} // namespace kx::gdi
