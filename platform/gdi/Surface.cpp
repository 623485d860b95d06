#include "platform/gdi/Surface.h"

#include "platform/gdi/BigBlock.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <utility>

namespace kx::gdi {

namespace {

constexpr std::size_t kAlignedPixels = BLOCK_ALIGNMENT / sizeof(DWORD);

constexpr std::size_t RoundUp(std::size_t n, std::size_t nStep) noexcept
{
    return (n + nStep - 1) / nStep * nStep;
}

// The block that ended last, for the next of about its size: a client makes the surface that it paints on
// anew for each paint, and fresh pages cost more than the painting.
std::atomic<void*> spare{nullptr};
constexpr std::size_t kLeastSpare = std::size_t{128} << 10; // smaller ones the allocator keeps itself
constexpr std::size_t kMostSpare = std::size_t{16} << 20;

void Release(void* p) noexcept
{
#if !defined(KX_SANITIZED) // a sanitizer is to see who uses a block that ended
    const std::size_t nBytes = malloc_usable_size(p);
    if (nBytes >= kLeastSpare && nBytes <= kMostSpare) p = spare.exchange(p, std::memory_order_acq_rel);
#endif
    std::free(p);
}

void* Allocate(std::size_t nBytes) noexcept
{
    if (nBytes < kLeastSpare || nBytes > kMostSpare) return AllocateBlock(nBytes);
    void* const p = spare.exchange(nullptr, std::memory_order_acq_rel);
    const std::size_t nThere = p ? malloc_usable_size(p) : 0;
    if (nThere >= nBytes && nThere - nBytes <= nBytes / 4) return p;
    if (p) Release(p);
    return AllocateBlock(nBytes);
}

} // namespace

void Surface::Free::operator()(DWORD* p) const noexcept
{
    if (p) Release(p);
}

Surface::Surface(int nWidth, int nHeight, std::ptrdiff_t nStride, Pixels pixels) noexcept
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
    Pixels pixels(static_cast<DWORD*>(Allocate(nStride * static_cast<std::size_t>(nHeight) * sizeof(DWORD))));
    if (!pixels) return std::nullopt;
    return Surface(nWidth, nHeight, static_cast<std::ptrdiff_t>(nStride), std::move(pixels));
}

std::optional<Surface> Surface::Make(int nWidth, int nHeight)
{
    auto surface = MakeUnset(nWidth, nHeight);
    if (surface)
        std::memset(surface->Row(0), 0,
                    static_cast<std::size_t>(surface->Stride() * surface->Height()) * sizeof(DWORD));
    return surface;
}

} // namespace kx::gdi
