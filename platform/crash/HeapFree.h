#pragma once

#include "internal/FixedText.h"

#include <cstdint>
#include <ctime>

// The heap-free forms of common calls, and what prepares them.

namespace kx::crash {

using PathText = FixedText<4096>;

// Opens what paths in the process's code page need in a filter. By one thread at a time.
void PreparePaths() noexcept;

// The Linux path that a path names; false if it names none, with the last error set. In a filter without heap
// or waiting, with three differences: only ASCII letters are found in another case, a relative path stays
// relative, and a drive with another letter than the host's and `C:` is where it was last seen.
bool ToSystem(const char* pszPath, PathText& system) noexcept;

// Reads the zone's changes from 2000 to ten years from now. By one thread at a time, not in a filter.
void PrepareZone() noexcept;

// Local time by what was read: the system's conversion takes the time zone's lock. Heap-free; false where the
// year doesn't fit the record.
bool ToLocalPrepared(std::int64_t nTime, std::tm& fields) noexcept;

// Sets a descriptor aside with which a filter opens a file in a process that has no other left.
void PrepareDescriptor() noexcept;

} // namespace kx::crash
