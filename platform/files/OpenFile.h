#pragma once

#include "platform/UniqueFd.h"

#include <string>

namespace kx::files {

// Opens a regular file or a device by its Linux path with CFile's flags, and keeps their sharing. No file
// descriptor on failure, with the reason in `errno`: EWOULDBLOCK where another opener doesn't share it.
UniqueFd OpenFile(const std::string& systemPath, unsigned nOpenFlags);

} // namespace kx::files
