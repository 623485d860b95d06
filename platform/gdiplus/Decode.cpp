#include "platform/gdiplus/Decode.h"

#include "platform/gdi/BmpHeader.h"
#include "platform/gdi/ImageFile.h"
#include "platform/gdiplus/Encode.h"
#include "platform/gdiplus/Picture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kx::gdiplus {

Gdiplus::PixelFormat FormatOfDepth(int nBits) noexcept
{
    if (nBits <= 1) return Gdiplus::PixelFormat1bppIndexed;
    if (nBits <= 4) return Gdiplus::PixelFormat4bppIndexed;
    if (nBits <= 8) return Gdiplus::PixelFormat8bppIndexed;
    if (nBits <= 16) return Gdiplus::PixelFormat16bppRGB555;
    return nBits <= 24 ? Gdiplus::PixelFormat24bppRGB : Gdiplus::PixelFormat32bppRGB;
}

Gdiplus::Status CheckSize(std::int64_t nWidth, std::int64_t nHeight) noexcept
{
    if (nWidth <= 0 || nHeight <= 0) return Gdiplus::GenericError;
    if (nWidth > Gdiplus::MAX_IMAGE_SIDE || nHeight > Gdiplus::MAX_IMAGE_SIDE) return Gdiplus::OutOfMemory;
    return nWidth * nHeight > Gdiplus::MAX_IMAGE_PIXELS ? Gdiplus::OutOfMemory : Gdiplus::Ok;
}

std::optional<gdi::Surface> CopyPixels(const PixelView& view)
{
    auto surface = gdi::Surface::Make(view.width, view.height);
    if (!surface) return std::nullopt;
    for (int y = 0; y < view.height; ++y)
        std::memcpy(surface->Row(y), view.Row(y), static_cast<std::size_t>(view.width) * sizeof(DWORD));
    return surface;
}

namespace {

using namespace std::string_view_literals;

constexpr std::size_t kFileHeader = 14;
constexpr std::int64_t kMaxPixelsPerByte = 4096; // of a file that is cut

// Checks what the file claims of itself.
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

Gdiplus::Status CheckBmp(FileBytes head) noexcept
{
    const FileBytes dib = gdi::From(head, kFileHeader);
    const Gdiplus::Status status = CheckClaim(dib);
    return status == Gdiplus::Ok && !gdi::ParseBmpHeader(dib) ? Gdiplus::GenericError : status;
}

Gdiplus::Status CheckPng(FileBytes head) noexcept
{
    const auto header = gdi::ParsePngHeader(head);
    return header ? CheckSize(header->nWidth, header->nHeight) : Gdiplus::GenericError;
}

// Behind the colours that all frames share comes a block.
Gdiplus::Status CheckGif(FileBytes head) noexcept
{
    constexpr std::size_t kHeader = 13;
    if (head.size() < kHeader) return Gdiplus::GenericError;
    const std::size_t nColors = head[10] & 0x80 ? std::size_t{2} << (head[10] & 7) : 0;
    const FileBytes block = gdi::From(head, kHeader + 3 * nColors);
    return block.empty() || (block[0] != ',' && block[0] != '!') ? Gdiplus::GenericError : Gdiplus::Ok;
}

struct Format
{
    std::string_view start;
    Reader own = nullptr; // null where the module has the decoder
    Reader Functions::*coded = nullptr;
    Gdiplus::Status (*check)(FileBytes head) noexcept = nullptr;
};

constexpr Format kFormats[] = {
    {"BM"sv, ReadBmp, nullptr, CheckBmp},
    {"\0\0\1\0"sv, ReadIco},
    {"\x89PNG\r\n\x1A\n"sv, nullptr, &Functions::readPng, CheckPng},
    {"\xFF\xD8\xFF"sv, nullptr, &Functions::readJpeg},
    {"GIF87a"sv, nullptr, &Functions::readGif, CheckGif},
    {"GIF89a"sv, nullptr, &Functions::readGif, CheckGif},
    {"II*\0"sv, nullptr, &Functions::readTiff},
    {"MM\0*"sv, nullptr, &Functions::readTiff},
    {"II+\0"sv, nullptr, &Functions::readTiff}, // BigTIFF
    {"MM\0+"sv, nullptr, &Functions::readTiff},
};

const Format* FormatOf(FileBytes file) noexcept
{
    const std::string_view bytes(reinterpret_cast<const char*>(file.data()), file.size());
    for (const Format& format : kFormats)
        if (bytes.starts_with(format.start)) return &format;
    return nullptr;
}

// The bytes of a row that pixels lie in, without its padding.
std::int64_t LeastRowBytes(const gdi::BmpHeader& header) noexcept
{
    return (std::int64_t{header.nWidth} * header.nDepth + 7) / 8;
}

// How many rows the file has; all of them where that isn't told by its length.
int RowsThere(FileBytes file, const gdi::BmpHeader& header, std::size_t nPixelsAt) noexcept
{
    if (header.IsCompressed()) return header.nHeight;
    const auto nRow = static_cast<std::int64_t>(header.RowBytes());
    const auto nBytes = static_cast<std::int64_t>(gdi::From(file, nPixelsAt).size());
    return static_cast<int>(
        std::min<std::int64_t>(header.nHeight, (nBytes + nRow - LeastRowBytes(header)) / nRow));
}

// Makes the last rows, which the file lacks, transparent and the others opaque.
void SetAlpha(gdi::Surface& surface, int nRows, bool bTopDown) noexcept
{
    for (int y = 0; y < surface.Height(); ++y) {
        const bool bThere = (bTopDown ? y : surface.Height() - 1 - y) < nRows;
        DWORD* const row = surface.Row(y);
        std::transform(row, row + surface.Width(), row,
                       [=](DWORD pixel) { return bThere ? pixel | ALPHA_BITS : 0; });
    }
}

} // namespace

Gdiplus::Status CheckHead(FileBytes head) noexcept
{
    const Format* const format = FormatOf(head);
    if (!format) return Gdiplus::UnknownImageFormat;
    return format->check ? format->check(head) : Gdiplus::Ok;
}

Gdiplus::Status Decode(const File& file, std::optional<Picture>& picture)
{
    const Gdiplus::Status status = CheckHead(*file);
    if (status != Gdiplus::Ok) return status;
    const Format& format = *FormatOf(*file);
    if (format.own) return format.own(file, picture);
    const Functions* const codecs = Codecs();
    return codecs ? (codecs->*format.coded)(file, picture) : Gdiplus::UnknownImageFormat;
}

Gdiplus::Status ReadBmp(const File& file, std::optional<Picture>& picture)
{
    const FileBytes dib = gdi::From(*file, kFileHeader);
    const auto header = gdi::ParseBmpHeader(dib);
    if (!header) return Gdiplus::GenericError;
    const std::size_t nOffset = gdi::U32(*file, 10);
    const std::size_t nPixelsAt = nOffset != 0 ? nOffset : kFileHeader + header->PixelsAt();
    const int nRows = RowsThere(*file, *header, nPixelsAt);
    const bool bCut = nRows < header->nHeight;
    const std::int64_t nPixels = std::int64_t{header->nWidth} * header->nHeight;
    if (nRows == 0 || (bCut && IsAbsurd(nPixels, file->size(), kMaxPixelsPerByte)))
        return Gdiplus::GenericError;
    std::vector<std::uint8_t> whole; // what lacks filled up with zeros
    if (bCut) {
        whole.assign(file->begin(), file->end());
        whole.resize(nPixelsAt + header->PixelBytes());
    }
    const auto bitmap = gdi::ReadBmp(bCut ? FileBytes(whole) : FileBytes(*file));
    if (!bitmap) return Gdiplus::GenericError;
    picture = Picture{std::move(bitmap->surface), bCut ? Alpha::Straight : Alpha::Opaque,
                      FormatOf(bitmap->depth, dib)};
    if (bCut) SetAlpha(picture->surface, nRows, header->bTopDown);
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
