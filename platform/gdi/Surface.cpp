#include "platform/gdi/Surface.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace kx::gdi {

namespace {

constexpr std::size_t kAlignment = 64;
constexpr std::size_t kAlignedPixels = kAlignment / sizeof(DWORD);

} // namespace

void Surface::Free::operator()(DWORD* p) const noexcept
{
    std::free(p);
}

Surface::Surface(int nWidth, int nHeight, std::ptrdiff_t nStride, Pixels pixels) noexcept
    : m_nWidth(nWidth), m_nHeight(nHeight), m_nStride(nStride), m_pixels(std::move(pixels))
{
}

std::optional<Surface> Surface::Make(int nWidth, int nHeight)
{
    if (nWidth <= 0 || nHeight <= 0 || std::int64_t{nWidth} * nHeight > MAX_BITMAP_PIXELS)
        return std::nullopt;
    const auto nColumns = static_cast<std::size_t>(nWidth);
    const std::size_t nStep = std::min(std::bit_ceil(nColumns), kAlignedPixels);
    const std::size_t nStride = (nColumns + nStep - 1) / nStep * nStep;
    const std::size_t nBytes = nStride * static_cast<std::size_t>(nHeight) * sizeof(DWORD);
    const std::size_t nAligned = (nBytes + kAlignment - 1) / kAlignment * kAlignment;
    Pixels pixels(static_cast<DWORD*>(std::aligned_alloc(kAlignment, nAligned)));
    if (!pixels) return std::nullopt;
    std::memset(pixels.get(), 0, nAligned);
    return Surface(nWidth, nHeight, static_cast<std::ptrdiff_t>(nStride), std::move(pixels));
}

} // namespace kx::gdi
