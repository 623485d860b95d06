#include "platform/gdi/Png.h"
#include "platform/gdiplus/Decode.h"

#include <algorithm>
#include <string_view>

namespace kx::gdiplus {

namespace {

constexpr std::size_t kSignature = 8;
constexpr std::size_t kChunkFrame = 12; // length, name and checksum
constexpr int kMaxDeflate = 1032;       // bytes that one byte of the file can stand for

// Bits of IHDR's colour type.
constexpr int kPalette = 1;
constexpr int kAlpha = 4;

std::size_t BigEndian(FileBytes bytes) noexcept
{
    return std::size_t{bytes[0]} << 24 | std::size_t{bytes[1]} << 16 | std::size_t{bytes[2]} << 8 | bytes[3];
}

// Whether a tRNS chunk makes some pixels transparent; it lies before the first IDAT.
bool HasTransparency(FileBytes file) noexcept
{
    for (FileBytes rest = file.subspan(kSignature); rest.size() >= kChunkFrame;) {
        const std::size_t nSize = BigEndian(rest);
        const std::string_view name(reinterpret_cast<const char*>(rest.data()) + 4, 4);
        if (name == "tRNS" && nSize > 0) return true;
        if (name == "IDAT" || nSize > rest.size() - kChunkFrame) return false;
        rest = rest.subspan(kChunkFrame + nSize);
    }
    return false;
}

Gdiplus::PixelFormat FormatOf(const gdi::PngHeader& header, int nType, bool bAlpha) noexcept
{
    if (bAlpha) return Gdiplus::PixelFormat32bppARGB;
    if (nType != 0 && !(nType & kPalette)) return Gdiplus::PixelFormat24bppRGB;
    return FormatOfDepth(std::min(header.nDepth, 8));
}

} // namespace

Gdiplus::Status ReadPng(const File& file, std::optional<Picture>& picture)
{
    const auto header = gdi::ParsePngHeader(*file);
    if (!header) return Gdiplus::GenericError;
    const Gdiplus::Status status = CheckSize(header->nWidth, header->nHeight);
    if (status != Gdiplus::Ok) return status;
    const std::int64_t nBits = std::int64_t{header->nWidth} * header->nHeight * header->nDepth;
    if (IsAbsurd(nBits / 8, file->size(), kMaxDeflate)) return Gdiplus::GenericError;

    const int nType = (*file)[25];
    const bool bAlpha = (nType & kAlpha) != 0 || HasTransparency(*file);
    bool bCut = false;
    auto surface = gdi::ReadPng(*file, Gdiplus::MAX_IMAGE_SIDE, &bCut);
    if (!surface) return Gdiplus::GenericError;
    picture = Picture{std::move(*surface), bAlpha || bCut ? Alpha::Straight : Alpha::Opaque,
                      FormatOf(*header, nType, bAlpha)};
    return Gdiplus::Ok;
}

} // namespace kx::gdiplus
