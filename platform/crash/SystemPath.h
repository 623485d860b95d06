#pragma once

#include "internal/FixedText.h"

namespace kx::crash {

using PathText = FixedText<4096>;

// Opens what paths in the process's code page need in a filter. By one thread at a time.
void PreparePaths() noexcept;

// The Linux path that a path names; false if it names none, with the last error set. In a filter without heap
// or waiting, with three differences: only ASCII letters are found in another case, a relative path stays
// relative, and a drive with another letter than the host's and `C:` is where it was last seen.
bool ToSystem(const char* pszPath, PathText& system) noexcept;

} // namespace kx::crash
