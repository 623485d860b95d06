#include "platform/gdiplus/Decode.h"

#include <algorithm>
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

} // namespace

Gdiplus::Status Decode(const File& file, std::optional<Picture>& picture)
{
    const std::string_view bytes(reinterpret_cast<const char*>(file->data()), file->size());
    for (const Format& format : kFormats)
        if (bytes.starts_with(format.start)) return format.read(file, picture);
    return Gdiplus::UnknownImageFormat;
}

} // namespace kx::gdiplus
