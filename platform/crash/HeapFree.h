#pragma once

#include "internal/FixedText.h"

#include <cstddef>

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

// Sets a descriptor aside with which a filter opens a file in a process that has no other left.
void PrepareDescriptor() noexcept;

// ---- The thread that is in the crash filter, if any

// Whether the calling thread is: the heap and every lock are then out of bounds.
bool InFilter() noexcept;

// Makes the calling thread the one that is in the filter, once no other is; false if it is already, so that
// its filter has crashed.
bool EnterFilter() noexcept;
void LeaveFilter() noexcept;

// From now on `exit` waits for a filter that runs on another thread: both before what was registered with
// atexit until now, and once more as the last that this library does.
void HoldExits() noexcept;

// Makes a Linux path name what exists: each component behind `fixed` that doesn't is replaced by the entry of
// its directory that equals it ignoring the case of ASCII letters, the lowest in byte order. Heap-free.
void MatchEntries(char* pszPath, std::size_t fixed) noexcept;

} // namespace kx::crash
