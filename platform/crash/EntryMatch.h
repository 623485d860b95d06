#pragma once

#include <cstddef>

namespace kx::crash {

// Makes a Linux path name what exists: each component behind `fixed` that doesn't is replaced by the entry of
// its directory that equals it ignoring the case of ASCII letters, the lowest in byte order. Heap-free.
void MatchEntries(char* pszPath, std::size_t fixed) noexcept;

} // namespace kx::crash
