#pragma once

#include <string>

namespace kx::path {

// The process's current directory as an absolute Linux path; empty where it has none any more. While it is
// the one that SetCurrentDirectoryA chose, links in its path stay as they were spelled there.
std::string CurrentDirectory();

} // namespace kx::path
