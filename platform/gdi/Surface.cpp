#include "platform/gdi/Surface.h"

#include <algorithm>
#include <bit>
#include <new>
#include <utility>

namespace kx::gdi {

namespace {

constexpr std::size_t kAlignedPixels = BLOCK_ALIGNMENT / sizeof(DWORD);

constexpr std::size_t RoundUp(std::size_t n, std::size_t nStep) noexcept
{
    return (n + nStep - 1) / nStep * nStep;
}

} // namespace

Surface::Surface(int nWidth, int nHeight, std::ptrdiff_t nStride, PixelBlock pixels) noexcept
    : m_nWidth(nWidth), m_nHeight(nHeight), m_nStride(nStride), m_pixels(std::move(pixels))
{
}

std::optional<Surface> Surface::MakeUnset(int nWidth, int nHeight)
{
    if (nWidth <= 0 || nHeight <= 0 || std::int64_t{nWidth} * nHeight > MAX_BITMAP_PIXELS)
        return std::nullopt;
    const auto nColumns = static_cast<std::size_t>(nWidth);
    const std::size_t nStep = std::min(std::bit_ceil(nColumns), kAlignedPixels);
    const std::size_t nStride = RoundUp(nColumns, nStep);
    auto pixels = PixelBlock::Make(nStride * static_cast<std::size_t>(nHeight));
    if (!pixels) return std::nullopt;
    return Surface(nWidth, nHeight, static_cast<std::ptrdiff_t>(nStride), std::move(pixels));
}

std::optional<Surface> Surface::Make(int nWidth, int nHeight)
{
    auto surface = MakeUnset(nWidth, nHeight);
    if (surface) std::fill_n(surface->Row(0), surface->Size(), 0u);
    return surface;
}

void Surface::OwnNow(const RECT& written)
{
    PixelBlock own = PixelBlock::Make(Size());
    if (!own) throw std::bad_alloc();
    if (written != WholeOf(*this)) std::copy_n(m_pixels.Get(), Size(), own.Get());
    m_pixels = std::move(own);
}

} // namespace kx::gdi
