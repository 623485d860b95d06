#pragma once

#include "include/platform/FileSystem.h"

#include <optional>
#include <string>

namespace kx::files {

// Looks at an entry by its Linux path, relative to the directory `fd` or absolute, and tells all but its
// names; `errno` on failure.
std::optional<WIN32_FIND_DATAA> ReadEntryInfo(int fd, const char* pszPath, bool bHidden);

// The attributes alone.
std::optional<DWORD> ReadAttributes(const std::string& systemPath);

// Sets the last error for a call on a Linux path that failed with `errno`, a missing directory told from a
// missing file, and gives 0.
int FailAt(const std::string& systemPath);

} // namespace kx::files
