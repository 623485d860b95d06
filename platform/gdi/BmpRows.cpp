#include "platform/gdi/BmpHeader.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace kx::gdi {

namespace {

// One channel of a pixel of bit fields, brought to 8 bits: a wider one keeps its upper bits, a narrower one
// is repeated, so that all ones give 255 and cutting back gives the old value.
class BmpChannel
{
public:
    // Nothing unless the mask's bits lie side by side. A channel without bits is always 0.
    static std::optional<BmpChannel> Make(DWORD mask) noexcept;

    DWORD Of(DWORD pixel) const noexcept { return m_scaled[(pixel & m_mask) >> m_nShift]; }

private:
    DWORD m_mask = 0;
    int m_nShift = 0; // so that its upper 8 bits are left at most
    std::array<std::uint8_t, 256> m_scaled{};
};

struct BmpChannels
{
    BmpChannel red;
    BmpChannel green;
    BmpChannel blue;
    BmpChannel alpha;

    static std::optional<BmpChannels> Make(const BmpMasks& masks) noexcept;
    DWORD ToPixel(DWORD pixel) const noexcept
    {
        return alpha.Of(pixel) << 24 | red.Of(pixel) << 16 | green.Of(pixel) << 8 | blue.Of(pixel);
    }
};

std::optional<BmpChannel> BmpChannel::Make(DWORD mask) noexcept
{
    BmpChannel channel;
    if (mask == 0) return channel;
    const int low = std::countr_zero(mask), width = std::popcount(mask);
    if (static_cast<int>(std::bit_width(mask)) != low + width) return std::nullopt;

    const int used = std::min(width, 8);
    channel.m_nShift = low + width - used;
    channel.m_mask = mask;
    for (unsigned value = 0; value < 1u << used; ++value) {
        unsigned scaled = 0;
        for (int at = 8 - used; at > -used; at -= used)
            scaled |= at >= 0 ? value << at : value >> -at;
        channel.m_scaled[value] = static_cast<std::uint8_t>(scaled);
    }
    return channel;
}

std::optional<BmpChannels> BmpChannels::Make(const BmpMasks& masks) noexcept
{
    const auto red = BmpChannel::Make(masks.red), green = BmpChannel::Make(masks.green),
               blue = BmpChannel::Make(masks.blue), alpha = BmpChannel::Make(masks.alpha);
    if (!red || !green || !blue || !alpha) return std::nullopt;
    return BmpChannels{*red, *green, *blue, *alpha};
}

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
    case 2:
        return ReadIndexed<2>(header, bytes, colors, surface);
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
    if (bytes.size() < header.LeastPixelBytes()) return std::nullopt;
    auto surface = Surface::Make(header.nWidth, header.nHeight);
    if (surface && !Fill(header, bytes, colors, *surface)) surface.reset();
    return surface;
}

} // namespace kx::gdi
