#include "platform/gdi/PixelBlock.h"

#include <cstdlib>
#include <malloc.h>
#include <new>

namespace kx::gdi {

namespace {

// The block that ended last, for the next of about its size: a client makes the surface that it paints on
// anew for each paint, and fresh pages cost more than the painting.
std::atomic<void*> spare{nullptr};
constexpr std::size_t kLeastSpare = std::size_t{128} << 10; // smaller ones the allocator keeps itself
constexpr std::size_t kMostSpare = std::size_t{16} << 20;

void Free(void* p) noexcept
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
    if (p) Free(p);
    return AllocateBlock(nBytes);
}

} // namespace

PixelBlock PixelBlock::Make(std::size_t nPixels) noexcept
{
    PixelBlock block;
    void* const p = Allocate(BLOCK_ALIGNMENT + nPixels * sizeof(DWORD));
    if (!p) return block;
    static_assert(sizeof(Counter) <= BLOCK_ALIGNMENT);
    new (p) Counter(1);
    block.m_pixels = reinterpret_cast<DWORD*>(static_cast<char*>(p) + BLOCK_ALIGNMENT);
    return block;
}

void PixelBlock::Release() noexcept
{
    if (Count().fetch_sub(1, std::memory_order_acq_rel) == 1) Free(Start());
}

} // namespace kx::gdi
