#pragma once

#include <cstddef>

namespace kx::gdi {

inline constexpr std::size_t BLOCK_ALIGNMENT = 64;

// A block that begins at a multiple of BLOCK_ALIGNMENT bytes, to be ended with std::free; null for lack of
// memory. A large one is put on huge pages where the system has them: it is filled and copied faster than on
// the thousands of small ones, whose first touch costs more than that.
void* AllocateBlock(std::size_t nBytes) noexcept;

} // namespace kx::gdi
