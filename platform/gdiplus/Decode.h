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

// Decodes a picture, told by its first bytes, into 32-bit pixels. UnknownImageFormat, GenericError,
// OutOfMemory; throws std::bad_alloc. Bounded in time and memory by the limits and the file's length.
Gdiplus::Status Decode(const File& file, std::optional<Picture>& picture);

// The decoders of each format, for bytes that begin as it does. Of a file that is cut off they give what
// there is, if that is a row at least: what lacks is transparent.
Gdiplus::Status ReadBmp(const File& file, std::optional<Picture>& picture);
// The largest image of an icon.
Gdiplus::Status ReadIco(const File& file, std::optional<Picture>& picture);
Gdiplus::Status ReadPng(const File& file, std::optional<Picture>& picture);
// What lacks is grey, and in a progressive one blurred. What is damaged is decoded as far as it goes.
Gdiplus::Status ReadJpeg(const File& file, std::optional<Picture>& picture);
// Frames whose blocks are all there count, up to the first that isn't, unless that is the first of all. What
// a frame's data lack stays as it was.
Gdiplus::Status ReadGif(const File& file, std::optional<Picture>& picture);
// Pages whose pixels lie within the file count, up to the first that doesn't, unless that is the first of
// all. Of a page that stands alone the strips that can be read are.
Gdiplus::Status ReadTiff(const File& file, std::optional<Picture>& picture);

// Whether so few bytes can't be that many pixels, if each is at most so many: tiny files may otherwise claim
// work without end. A mebipixel is always granted.
constexpr bool IsAbsurd(std::int64_t nPixels, std::size_t nBytes, std::int64_t nPerByte) noexcept
{
    return nPixels > std::int64_t{1} << 20 && nPixels / nPerByte > static_cast<std::int64_t>(nBytes);
}

} // namespace kx::gdiplus
