#pragma once

#include "platform/UniqueFd.h"

#include <cstddef>
#include <string>

namespace kx {

// Opens a regular file or a device by its Linux path with CFile's flags, and keeps their sharing. No file
// descriptor on failure, with the reason in `errno`: EWOULDBLOCK where another opener doesn't share it.
UniqueFd OpenFile(const std::string& systemPath, unsigned nOpenFlags);

// Writes all of it, however many calls that takes; the errno, 0 for success.
int WriteAll(int fd, const void* pBuf, std::size_t nCount) noexcept;

} // namespace kx
