#pragma once

#include "include/platform/Exception.h"
#include "include/platform/Types.h"

namespace kx::files {

// The cause of a file operation that failed with an errno.
int CauseFromErrno(int nErrno) noexcept;

// The failure of opening a path that has no Linux form, from the last error.
CFileException PathFailure(DWORD dwError, const char* pszPath);

} // namespace kx::files
