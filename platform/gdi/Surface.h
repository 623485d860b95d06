#pragma once

#include "include/platform/Gdi.h"

#include <cstddef>
#include <memory>
#include <optional>

namespace kx::gdi {

// A block of 32-bit pixels, 0x00RRGGBB with a high byte that is kept but means nothing here. The first row is
// the top one. Rows of 16 pixels and more begin at addresses aligned to 64 bytes; shorter ones lie closer, so
// that a tall narrow block takes no more than twice its pixels.
class Surface
{
public:
    // Black pixels. Nothing for a size of 0 or below, more than MAX_BITMAP_PIXELS, or a lack of memory.
    static std::optional<Surface> Make(int nWidth, int nHeight);
    // The same of pixels that may be anything, for one who writes all of them: large ones take long to fill.
    static std::optional<Surface> MakeUnset(int nWidth, int nHeight);

    int Width() const noexcept { return m_nWidth; }
    int Height() const noexcept { return m_nHeight; }
    // From one row to the next, in pixels.
    std::ptrdiff_t Stride() const noexcept { return m_nStride; }
    DWORD* Row(int y) noexcept { return m_pixels.get() + y * m_nStride; }
    const DWORD* Row(int y) const noexcept { return m_pixels.get() + y * m_nStride; }

private:
    struct Free
    {
        void operator()(DWORD* p) const noexcept;
    };
    using Pixels = std::unique_ptr<DWORD[], Free>;
    Surface(int nWidth, int nHeight, std::ptrdiff_t nStride, Pixels pixels) noexcept;

    int m_nWidth;
    int m_nHeight;
    std::ptrdiff_t m_nStride;
    Pixels m_pixels;
};

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

} // namespace kx::gdi
