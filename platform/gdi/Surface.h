#pragma once

#include "include/platform/Gdi.h"
#include "platform/gdi/Rect.h"

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>

namespace kx::gdi {

// A block of 32-bit pixels, 0x00RRGGBB with a high byte that is kept but means nothing here. The first row is
// the top one. Rows of 16 pixels and more begin at addresses aligned to 64 bytes; shorter ones lie closer, so
// that a tall narrow block takes no more than twice its pixels.
class Surface
{
public:
    // Black pixels. Nothing for a size of 0 or below, more than MAX_BITMAP_PIXELS, or with
    // ERROR_NOT_ENOUGH_MEMORY for a lack of memory.
    KX_API static std::optional<Surface> Make(int nWidth, int nHeight);

    int Width() const noexcept { return m_nWidth; }
    int Height() const noexcept { return m_nHeight; }
    // From one row to the next, in pixels.
    std::ptrdiff_t Stride() const noexcept { return m_nStride; }
    DWORD* Row(int y) noexcept { return m_pixels + y * m_nStride; }
    const DWORD* Row(int y) const noexcept { return m_pixels + y * m_nStride; }

private:
    struct Free
    {
        void operator()(void* p) const noexcept { std::free(p); }
    };

    Surface() = default;

    int m_nWidth = 0;
    int m_nHeight = 0;
    std::ptrdiff_t m_nStride = 0;
    std::unique_ptr<void, Free> m_memory;
    DWORD* m_pixels = nullptr; // the first aligned place in the memory
};

inline RECT WholeOf(const Surface& surface) noexcept
{
    return {0, 0, surface.Width(), surface.Height()};
}

// A pixel for a colour, and back; both order their bytes the other way round.
constexpr DWORD ToPixel(COLORREF clr) noexcept
{
    return (clr & 0xFFu) << 16 | (clr & 0xFF00u) | (clr >> 16 & 0xFFu);
}
constexpr COLORREF ToColor(DWORD pixel) noexcept
{
    return ToPixel(pixel);
}
inline constexpr DWORD COLOR_BITS = 0x00FFFFFF;

// A colour laid over another by an opacity of at most 255, each channel to the nearest value; the high byte
// stays that of the lower one. Red and blue go side by side.
constexpr DWORD Mixed(DWORD above, DWORD below, DWORD opacity) noexcept
{
    constexpr DWORD outer = 0xFF00FF, inner = 0x00FF00;
    const DWORD rest = 255 - opacity;
    const DWORD redBlue = (above & outer) * opacity + (below & outer) * rest + 0x800080;
    const DWORD green = (above >> 8 & 0xFF) * opacity + (below >> 8 & 0xFF) * rest + 0x80;
    return (below & ~COLOR_BITS) | ((redBlue + (redBlue >> 8 & outer)) >> 8 & outer) |
           ((green + (green >> 8)) & inner);
}

} // namespace kx::gdi
