#include "platform/gdi/BmpMasks.h"

#include <bit>

namespace kx::gdi {

std::optional<BmpChannel> BmpChannel::Make(DWORD mask) noexcept
{
    BmpChannel channel;
    if (mask == 0) return channel;
    const int low = std::countr_zero(mask), width = std::popcount(mask);
    if (static_cast<int>(std::bit_width(mask)) != low + width) return std::nullopt;

    const int used = width < 8 ? width : 8;
    channel.m_nShift = low + width - used;
    channel.m_mask = mask >> channel.m_nShift << channel.m_nShift;
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

} // namespace kx::gdi
