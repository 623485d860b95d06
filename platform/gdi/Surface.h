#pragma once

#include "include/platform/Gdi.h"
#include "platform/gdi/PixelBlock.h"
#include "platform/gdi/Rect.h"

#include <cstddef>
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
    DWORD* Row(int y) noexcept { return m_pixels.Get() + y * m_nStride; }
    const DWORD* Row(int y) const noexcept { return m_pixels.Get() + y * m_nStride; }

    // Takes the pixels of a surface of the same size and stride in place of its own. They are copied when
    // one of the two is to be written to while the other still has them.
    void Share(const Surface& other) noexcept { m_pixels = other.m_pixels; }
    // To be called before a write to one that may have shared; what lies in the rectangle may be anything
    // then if it is the whole. Throws std::bad_alloc and changes nothing then.
    void Own(const RECT& written = {})
    {
        if (IsShared()) OwnNow(written);
    }
    bool IsShared() const noexcept { return m_pixels.IsShared(); }

private:
    Surface(int nWidth, int nHeight, std::ptrdiff_t nStride, PixelBlock pixels) noexcept;
    // Pixels, with those between the rows.
    std::size_t Size() const noexcept { return static_cast<std::size_t>(m_nStride * m_nHeight); }
    void OwnNow(const RECT& written);

    int m_nWidth;
    int m_nHeight;
    std::ptrdiff_t m_nStride;
    PixelBlock m_pixels;
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

} // namespace kx::gdi
