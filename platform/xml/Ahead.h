#pragma once

#include "platform/xml/Libxml.h"

#include <cstddef>
#include <cstdint>

namespace kx::xml {

// Records that were read one after the other lie at about even distances in memory, whose nodes a walk
// otherwise waits for, one by one.

// How far one node lies behind another.
inline std::ptrdiff_t Distance(const xmlNode* from, const xmlNode* to) noexcept
{
    return static_cast<std::ptrdiff_t>(reinterpret_cast<std::uintptr_t>(to) -
                                       reinterpret_cast<std::uintptr_t>(from));
}

// Asks for so many bytes of the memory at a distance from a node. Nothing happens where there is none.
inline void AskFor(const xmlNode* node, std::ptrdiff_t nDistance, std::size_t nBytes) noexcept
{
    constexpr std::size_t kLine = 64;
    const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(node) + static_cast<std::uintptr_t>(nDistance);
    for (std::size_t n = 0; n < nBytes; n += kLine)
        __builtin_prefetch(reinterpret_cast<const void*>(at + n));
}

} // namespace kx::xml
