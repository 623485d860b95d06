#include "platform/gdiplus/Picture.h"

#include <cstring>

namespace kx::gdiplus {

Gdiplus::PixelFormat FormatOfDepth(int nBits) noexcept
{
    if (nBits <= 1) return Gdiplus::PixelFormat1bppIndexed;
    if (nBits <= 4) return Gdiplus::PixelFormat4bppIndexed;
    if (nBits <= 8) return Gdiplus::PixelFormat8bppIndexed;
    if (nBits <= 16) return Gdiplus::PixelFormat16bppRGB555;
    return nBits <= 24 ? Gdiplus::PixelFormat24bppRGB : Gdiplus::PixelFormat32bppRGB;
}

Gdiplus::Status CheckSize(std::int64_t nWidth, std::int64_t nHeight) noexcept
{
    if (nWidth <= 0 || nHeight <= 0) return Gdiplus::GenericError;
    if (nWidth > Gdiplus::MAX_IMAGE_SIDE || nHeight > Gdiplus::MAX_IMAGE_SIDE) return Gdiplus::OutOfMemory;
    return nWidth * nHeight > Gdiplus::MAX_IMAGE_PIXELS ? Gdiplus::OutOfMemory : Gdiplus::Ok;
}

std::optional<gdi::Surface> CopyPixels(const PixelView& view)
{
    auto surface = gdi::Surface::Make(view.width, view.height);
    if (!surface) return std::nullopt;
    for (int y = 0; y < view.height; ++y)
        std::memcpy(surface->Row(y), view.Row(y), static_cast<std::size_t>(view.width) * sizeof(DWORD));
    return surface;
}

} // namespace kx::gdiplus
