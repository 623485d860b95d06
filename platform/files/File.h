#pragma once

#include "include/platform/Exception.h"
#include "include/platform/FileSystem.h"
#include "include/platform/Types.h"
#include "platform/UniqueFd.h"

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

// Opens a regular file or a device by its Linux path with CFile's flags, and keeps their sharing. No file
// descriptor on failure, with the reason in `errno`: EWOULDBLOCK where another opener doesn't share it.
UniqueFd OpenFile(const std::string& systemPath, unsigned nOpenFlags);

// The cause of a file operation that failed with an errno.
int CauseFromErrno(int nErrno) noexcept;

// The failure of opening a path that has no Linux form, from the last error.
CFileException PathFailure(DWORD dwError, const char* pszPath);

} // namespace kx::files
