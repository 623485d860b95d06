#pragma once

#include "platform/gdiplus/Picture.h"

#include <optional>

namespace kx::gdiplus {

// Pixels in the caller's memory. Those that lie there as ours do are used in place; of others a copy is kept,
// which each look at it makes anew.
class CallerPixels
{
public:
    // InvalidParameter for a stride that isn't a multiple of 4 or shorter than a row, NotImplemented for
    // another format than the four. The size has been checked.
    static Gdiplus::Status Make(int nWidth, int nHeight, Gdiplus::INT nStride, Gdiplus::PixelFormat format,
                                BYTE* pScan0, std::optional<CallerPixels>& pixels);

    PixelView View() noexcept;
    // Writes a view's pixels back.
    void Changed() noexcept;
    DWORD Get(int x, int y) const noexcept;
    void Set(int x, int y, DWORD pixel) noexcept;

    Gdiplus::PixelFormat Format() const noexcept { return m_format; }
    int Width() const noexcept { return m_nWidth; }
    int Height() const noexcept { return m_nHeight; }
    Alpha HighByte() const noexcept;
    GUID Dimension() const noexcept { return Gdiplus::FrameDimensionPage; }

private:
    CallerPixels() = default;
    BYTE* At(int x, int y) const noexcept;

    int m_nWidth = 0;
    int m_nHeight = 0;
    std::ptrdiff_t m_nStride = 0; // in bytes
    Gdiplus::PixelFormat m_format = 0;
    BYTE* m_pScan0 = nullptr;
    std::optional<gdi::Surface> m_copy;
};

// What the high byte of a pixel of that format means; nothing for one that can't be drawn on.
std::optional<Alpha> AlphaOf(Gdiplus::PixelFormat format) noexcept;

} // namespace kx::gdiplus
