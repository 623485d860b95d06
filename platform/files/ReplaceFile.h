#pragma once

#include <cstddef>
#include <string>

namespace kx {

// Puts the bytes in the place of the file of that Linux path, or makes it; an old one stays until all of them
// are written. A link is followed; an old file passes its permissions on. 0 or the errno: EISDIR for what is
// no regular file.
int ReplaceFile(const std::string& systemPath, const void* pBytes, std::size_t nCount);

} // namespace kx
