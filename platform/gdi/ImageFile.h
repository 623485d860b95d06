#pragma once

#include "platform/gdi/Bitmap.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace kx::gdi {

// An icon: pixels, and for each what the mask says: the high byte of a pixel is its opacity, 0 to 255.
struct IconImage
{
    Surface surface;
};

// Decode whole files held in memory. Null or nothing for anything that is truncated, lying or too large;
// bounded in time and memory by the bytes given and MAX_BITMAP_PIXELS.
std::shared_ptr<Bitmap> ReadBmp(std::span<const std::byte> file);
// A BMP without its file header, as a bitmap resource holds it.
std::shared_ptr<Bitmap> ReadDib(std::span<const std::byte> dib);
// The entry of an ICO file whose size is nearest to `cx` by `cy` (0: the file's first), of the greatest depth among
// equals.
std::optional<IconImage> ReadIcon(std::span<const std::byte> file, int cx, int cy);

} // namespace kx::gdi
