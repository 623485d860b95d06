#pragma once

#include "include/platform/Gdi.h"

#include <array>
#include <cstdint>
#include <optional>

namespace kx::gdi {

// One channel of a pixel of bit fields, brought to 8 bits: a wider one keeps its upper bits, a narrower one
// is repeated, so that all ones give 255 and cutting back gives the old value.
class BmpChannel
{
public:
    // Nothing unless the mask's bits lie side by side. A channel without bits is always 0.
    static std::optional<BmpChannel> Make(DWORD mask) noexcept;

    DWORD Of(DWORD pixel) const noexcept { return m_scaled[(pixel & m_mask) >> m_nShift]; }

private:
    DWORD m_mask = 0; // the upper 8 bits at most
    int m_nShift = 0;
    std::array<std::uint8_t, 256> m_scaled{};
};

struct BmpMasks
{
    DWORD red = 0;
    DWORD green = 0;
    DWORD blue = 0;
    DWORD alpha = 0;

    // A pixel of the file is one of a surface as it stands.
    constexpr bool ArePlain() const noexcept
    {
        return red == 0xFF0000 && green == 0xFF00 && blue == 0xFF && (alpha == 0 || alpha == 0xFF000000);
    }
};

inline constexpr BmpMasks MASKS_555{0x7C00, 0x03E0, 0x001F, 0};
inline constexpr BmpMasks MASKS_888{0xFF0000, 0x00FF00, 0x0000FF, 0};

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

} // namespace kx::gdi
