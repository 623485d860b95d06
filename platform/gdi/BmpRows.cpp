#include "platform/gdi/BmpRows.h"

#include <cstring>

namespace kx::gdi {

namespace {

// Calls `row(in, out)` for each of the file's rows and the surface's it belongs to.
template <class Row>
bool ForEachRow(const BmpHeader& header, FileBytes bytes, Surface& surface, Row&& row)
{
    for (int y = 0; y < header.nHeight; ++y)
        row(bytes.data() + static_cast<std::size_t>(y) * header.RowBytes(),
            surface.Row(header.bTopDown ? y : header.nHeight - 1 - y));
    return true;
}

template <unsigned kDepth>
bool ReadIndexed(const BmpHeader& header, FileBytes bytes, const BmpColors& colors, Surface& surface)
{
    constexpr unsigned kPerByte = 8 / kDepth, kMask = (1u << kDepth) - 1;
    const auto nWidth = static_cast<unsigned>(header.nWidth);
    return ForEachRow(header, bytes, surface, [&](const std::uint8_t* in, DWORD* out) {
        for (unsigned x = 0; x < nWidth; ++x)
            out[x] = colors[unsigned{in[x / kPerByte]} >> (kPerByte - 1 - x % kPerByte) * kDepth & kMask];
    });
}

bool Read24(const BmpHeader& header, FileBytes bytes, Surface& surface)
{
    return ForEachRow(header, bytes, surface, [&](const std::uint8_t* in, DWORD* out) {
        for (int x = 0; x < header.nWidth; ++x, in += 3)
            out[x] = DWORD{in[2]} << 16 | DWORD{in[1]} << 8 | in[0];
    });
}

bool Read32(const BmpHeader& header, FileBytes bytes, Surface& surface)
{
    return ForEachRow(header, bytes, surface,
                      [&](const std::uint8_t* in, DWORD* out) { std::memcpy(out, in, header.RowBytes()); });
}

template <class Pixel>
bool ReadMasked(const BmpHeader& header, FileBytes bytes, Surface& surface)
{
    const auto channels = BmpChannels::Make(header.masks);
    if (!channels) return false;
    return ForEachRow(header, bytes, surface, [&](const std::uint8_t* in, DWORD* out) {
        for (int x = 0; x < header.nWidth; ++x, in += sizeof(Pixel)) {
            Pixel pixel;
            std::memcpy(&pixel, in, sizeof pixel);
            out[x] = channels->ToPixel(pixel);
        }
    });
}

bool Fill(const BmpHeader& header, FileBytes bytes, const BmpColors& colors, Surface& surface)
{
    switch (header.nDepth) {
    case 1:
        return ReadIndexed<1>(header, bytes, colors, surface);
    case 4:
        return ReadIndexed<4>(header, bytes, colors, surface);
    case 8:
        return ReadIndexed<8>(header, bytes, colors, surface);
    case 16:
        return ReadMasked<WORD>(header, bytes, surface);
    case 24:
        return Read24(header, bytes, surface);
    default:
        return header.masks.ArePlain() ? Read32(header, bytes, surface)
                                       : ReadMasked<DWORD>(header, bytes, surface);
    }
}

} // namespace

std::optional<Surface> ReadRows(const BmpHeader& header, FileBytes bytes, const BmpColors& colors)
{
    if (bytes.size() < header.PixelBytes()) return std::nullopt;
    auto surface = Surface::Make(header.nWidth, header.nHeight);
    if (surface && !Fill(header, bytes, colors, *surface)) surface.reset();
    return surface;
}

} // namespace kx::gdi
