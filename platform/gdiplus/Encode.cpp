#include "platform/gdiplus/Encode.h"

#include "include/platform/Gdi.h"
#include "platform/gdi/Bitmap.h"
#include "platform/module/Door.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <numeric>

KX_DOOR(pictures, kx::gdiplus::Functions);

namespace kx::gdiplus {

namespace {

constexpr GUID ClassId(std::uint32_t nLast) noexcept
{
    return {0x557CF400 + nLast, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
}

constexpr GUID FormatId(std::uint32_t nLast) noexcept
{
    return {0xB96B3C00 + nLast, 0x0728, 0x11D3, {0x9D, 0x7B, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
}

constexpr Encoder kEncoders[] = {
    {{ClassId(0), FormatId(0xAB), u"Built-in BMP Codec", u"BMP", u"*.BMP;*.DIB;*.RLE", u"image/bmp"},
     nullptr},
    {{ClassId(1), FormatId(0xAE), u"Built-in JPEG Codec", u"JPEG", u"*.JPG;*.JPEG;*.JPE;*.JFIF",
      u"image/jpeg"},
     &Functions::writeJpeg},
    {{ClassId(2), FormatId(0xB0), u"Built-in GIF Codec", u"GIF", u"*.GIF", u"image/gif"},
     &Functions::writeGif},
    {{ClassId(5), FormatId(0xB1), u"Built-in TIFF Codec", u"TIFF", u"*.TIF;*.TIFF", u"image/tiff"},
     &Functions::writeTiff},
    {{ClassId(6), FormatId(0xAF), u"Built-in PNG Codec", u"PNG", u"*.PNG", u"image/png"},
     &Functions::writePng},
};

bool IsOpaque(const DWORD* row, int nWidth) noexcept
{
    return std::accumulate(row, row + nWidth, ALPHA_BITS, std::bit_and<>()) == ALPHA_BITS;
}

} // namespace

const Functions* Codecs() noexcept
{
    return g_door.Open();
}

bool Append(Bytes& file, const std::uint8_t* bytes, std::size_t nBytes) noexcept
try {
    file.insert(file.end(), bytes, bytes + nBytes);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

std::span<const Encoder> Encoders() noexcept
{
    return kEncoders;
}

const Encoder* FindEncoder(const Gdiplus::CLSID& clsid) noexcept
{
    for (const Encoder& encoder : kEncoders)
        if (encoder.info.Clsid == clsid) return &encoder;
    return nullptr;
}

Gdiplus::Status Encode(const Encoder& encoder, const PixelView& view, Bytes& file)
{
    if (!encoder.write) return WriteBmp(view, file);
    const Functions* const codecs = Codecs();
    return codecs ? (codecs->*encoder.write)(view, file) : Gdiplus::UnknownImageFormat;
}

Gdiplus::Status EncodePng(const PixelView& view, Bytes& file)
{
    const Functions* const codecs = Codecs();
    return codecs ? codecs->writePng(view, file) : Gdiplus::UnknownImageFormat;
}

RowsOverBlack::RowsOverBlack(const PixelView& view)
    : m_view(view), m_row(view.alpha == Alpha::Straight ? static_cast<std::size_t>(view.width) : 0)
{
}

const DWORD* RowsOverBlack::Row(int y) noexcept
{
    const DWORD* const row = m_view.Row(y);
    if (m_row.empty() || IsOpaque(row, m_view.width)) return row;
    DWORD* const out = m_row.data();
    std::transform(row, row + m_view.width, out,
                   [](DWORD pixel) { return gdi::Mixed(pixel, 0, pixel >> 24); });
    return out;
}

namespace {

constexpr std::size_t kHeaders = 14 + 40;
constexpr std::uint32_t kPixelsPerMetre = 3780; // 96 to the inch

// Puts little-endian numbers one behind the other.
class Header
{
public:
    explicit Header(std::uint8_t* at) noexcept : m_at(at) {}
    Header& Put(std::uint64_t value, int nBytes) noexcept
    {
        for (; nBytes > 0; --nBytes, value >>= 8)
            *m_at++ = static_cast<std::uint8_t>(value);
        return *this;
    }

private:
    std::uint8_t* m_at;
};

} // namespace

Gdiplus::Status WriteBmp(const PixelView& view, Bytes& file)
{
    const std::size_t nRow = gdi::RowBytes(view.width, 24, 32);
    const std::size_t nPixels = nRow * static_cast<std::size_t>(view.height);
    file.resize(kHeaders + nPixels);
    Header(file.data()).Put(0x4D42, 2).Put(file.size(), 4).Put(0, 4).Put(kHeaders, 4); // "BM"
    Header(file.data() + 14)
        .Put(40, 4)
        .Put(static_cast<std::uint32_t>(view.width), 4)
        .Put(static_cast<std::uint32_t>(view.height), 4)
        .Put(1, 2)
        .Put(24, 2)
        .Put(BI_RGB, 4)
        .Put(nPixels, 4)
        .Put(kPixelsPerMetre, 4)
        .Put(kPixelsPerMetre, 4); // no colours: the rest is 0
    RowsOverBlack rows(view);
    std::uint8_t* to = file.data() + kHeaders;
    for (int y = view.height; y-- > 0; to += nRow) {
        const DWORD* const row = rows.Row(y);
        for (int x = 0; x < view.width; ++x)
            std::memcpy(to + 3 * static_cast<std::size_t>(x), &row[x], 3);
    }
    return Gdiplus::Ok;
}

} // namespace kx::gdiplus
