#pragma once

#include "include/platform/Exception.h"
#include "include/platform/Types.h"
#include "platform/UniqueFd.h"

#include <string>

namespace kx::files {

// Opens a regular file or a device by its Linux path with CFile's flags, and keeps their sharing. No file
// descriptor on failure, with the reason in `errno`: EWOULDBLOCK where another opener doesn't share it.
UniqueFd OpenFile(const std::string& systemPath, unsigned nOpenFlags);

// The cause of a file operation that failed with an errno.
int CauseFromErrno(int nErrno) noexcept;

// The failure of opening a path that has no Linux form, from the last error.
CFileException PathFailure(DWORD dwError, const char* pszPath);

} // namespace kx::files
