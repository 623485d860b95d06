#include "platform/gdiplus/Decode.h"

#include "platform/gdi/BmpHeader.h"

#include <cstdlib>
#include <string_view>

namespace kx::gdiplus {

namespace {

using namespace std::string_view_literals;

struct Format
{
    std::string_view start;
    Gdiplus::Status (*read)(const File& file, std::optional<Picture>& picture);
};

constexpr Format kFormats[] = {
    {"BM"sv, ReadBmp},
    {"\x89PNG\r\n\x1A\n"sv, ReadPng},
    {"\xFF\xD8\xFF"sv, ReadJpeg},
    {"GIF87a"sv, ReadGif},
    {"GIF89a"sv, ReadGif},
    {"II*\0"sv, ReadTiff},
    {"MM\0*"sv, ReadTiff},
    {"II+\0"sv, ReadTiff}, // BigTIFF
    {"MM\0+"sv, ReadTiff},
    {"\0\0\1\0"sv, ReadIco},
};

constexpr std::size_t kFileHeader = 14;

// What the file claims, sound or not.
Gdiplus::Status CheckClaim(FileBytes dib) noexcept
{
    const bool bCore = gdi::U32(dib, 0) == 12;
    const std::int64_t nWidth = bCore ? gdi::U16(dib, 4) : static_cast<LONG>(gdi::U32(dib, 4));
    const std::int64_t nHeight = bCore ? gdi::U16(dib, 6) : static_cast<LONG>(gdi::U32(dib, 8));
    return CheckSize(nWidth, std::abs(nHeight));
}

Gdiplus::PixelFormat FormatOf(WORD nDepth, FileBytes dib) noexcept
{
    const auto header = nDepth == 16 ? gdi::ParseBmpHeader(dib) : std::nullopt;
    const bool bSixOfGreen = header && header->masks.green == 0x7E0;
    return bSixOfGreen ? Gdiplus::PixelFormat16bppRGB565 : FormatOfDepth(nDepth);
}

} // namespace

Gdiplus::Status Decode(const File& file, std::optional<Picture>& picture)
{
    const std::string_view bytes(reinterpret_cast<const char*>(file->data()), file->size());
    for (const Format& format : kFormats)
        if (bytes.starts_with(format.start)) return format.read(file, picture);
    return Gdiplus::UnknownImageFormat;
}

Gdiplus::Status ReadBmp(const File& file, std::optional<Picture>& picture)
{
    const FileBytes dib = gdi::From(*file, kFileHeader);
    const Gdiplus::Status status = CheckClaim(dib);
    if (status != Gdiplus::Ok) return status;
    const auto bitmap = gdi::ReadBmp(*file);
    if (!bitmap) return Gdiplus::GenericError;
    picture = Picture{std::move(bitmap->surface), Alpha::Opaque, FormatOf(bitmap->depth, dib)};
    return Gdiplus::Ok;
}

Gdiplus::Status ReadIco(const File& file, std::optional<Picture>& picture)
{
    auto surface = gdi::ReadIcon(*file, Gdiplus::MAX_IMAGE_SIDE, Gdiplus::MAX_IMAGE_SIDE);
    if (!surface) return Gdiplus::GenericError;
    picture = Picture{std::move(*surface), Alpha::Straight, Gdiplus::PixelFormat32bppARGB};
    return Gdiplus::Ok;
}

} // namespace kx::gdiplus
