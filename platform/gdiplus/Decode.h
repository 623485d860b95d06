#pragma once

#include "platform/gdi/ImageFile.h"
#include "platform/gdiplus/Picture.h"

#include <memory>
#include <optional>
#include <vector>

namespace kx::gdiplus {

// An encoded picture; pictures with several frames go on reading it.
using File = std::shared_ptr<const std::vector<std::uint8_t>>;
using gdi::FileBytes;

// Whether a picture may follow these first bytes of a file, of which HEAD_BYTES are as good as all:
// UnknownImageFormat, or what a header alone can say.
Gdiplus::Status CheckHead(FileBytes head) noexcept;
inline constexpr std::size_t HEAD_BYTES = 1024;

// Decodes a picture, told by its first bytes, into 32-bit pixels. UnknownImageFormat, also where the module
// for pictures can't be used and it is no BMP and no icon; GenericError, OutOfMemory; throws std::bad_alloc.
// Bounded in time and memory by the limits and the file's length.
Gdiplus::Status Decode(const File& file, std::optional<Picture>& picture);

// The decoders of each format, for bytes that begin as it does. Of a file that is cut off they give what
// there is, if that is a row at least: what lacks is transparent.
using Reader = Gdiplus::Status (*)(const File& file, std::optional<Picture>& picture);
Gdiplus::Status ReadBmp(const File& file, std::optional<Picture>& picture);
// The largest image of an icon.
Gdiplus::Status ReadIco(const File& file, std::optional<Picture>& picture);

// Whether so few bytes can't be that many pixels, if each is at most so many: tiny files may otherwise claim
// work without end. A mebipixel is always granted.
constexpr bool IsAbsurd(std::int64_t nPixels, std::size_t nBytes, std::int64_t nPerByte) noexcept
{
    return nPixels > std::int64_t{1} << 20 && nPixels / nPerByte > static_cast<std::int64_t>(nBytes);
}

} // namespace kx::gdiplus
