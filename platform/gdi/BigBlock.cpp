#include "platform/gdi/BigBlock.h"

#include <cstdlib>
#include <sys/mman.h>

namespace kx::gdi {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

constexpr std::size_t RoundUp(std::size_t n, std::size_t nStep) noexcept
{
    return (n + nStep - 1) / nStep * nStep;
}

} // namespace

void* AllocateBlock(std::size_t nBytes) noexcept
{
    const bool bHuge = nBytes >= 3 * kHugePage;
    const std::size_t nAlignment = bHuge ? kHugePage : BLOCK_ALIGNMENT;
    void* const p = std::aligned_alloc(nAlignment, RoundUp(nBytes, nAlignment));
    if (p && bHuge) madvise(p, RoundUp(nBytes, nAlignment), MADV_HUGEPAGE);
    return p;
}

} // namespace kx::gdi
