#include "platform/gdi/Surface.h"

#include "include/platform/Error.h"

#include <algorithm>
#include <bit>

namespace kx::gdi {

namespace {

constexpr std::size_t kAlignment = 64; // bytes: a line of the cache

constexpr std::size_t RoundUp(std::size_t n, std::size_t nStep) noexcept
{
    return (n + nStep - 1) / nStep * nStep;
}

} // namespace

std::optional<Surface> Surface::Make(int nWidth, int nHeight)
{
    if (nWidth <= 0 || nHeight <= 0 || std::int64_t{nWidth} * nHeight > MAX_BITMAP_PIXELS)
        return std::nullopt;
    const auto nColumns = static_cast<std::size_t>(nWidth);
    const std::size_t nStep = std::min(std::bit_ceil(nColumns), kAlignment / sizeof(DWORD));
    const std::size_t nStride = RoundUp(nColumns, nStep);
    std::size_t nRoom = nStride * static_cast<std::size_t>(nHeight) * sizeof(DWORD) + kAlignment;

    Surface surface;
    surface.m_memory.reset(std::calloc(nRoom, 1));
    void* aligned = surface.m_memory.get();
    if (!aligned) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return std::nullopt;
    }
    surface.m_pixels = static_cast<DWORD*>(std::align(kAlignment, nRoom - kAlignment, aligned, nRoom));
    surface.m_nWidth = nWidth;
    surface.m_nHeight = nHeight;
    surface.m_nStride = static_cast<std::ptrdiff_t>(nStride);
    return surface;
}

} // namespace kx::gdi
