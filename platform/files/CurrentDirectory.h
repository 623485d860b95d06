#pragma once

#include <string>

namespace kx::path {

// The process's current directory as an absolute Linux path; empty where it has none any more. While it is
// the one that ChangeDirectory chose, links in its path stay as they were spelled there.
std::string CurrentDirectory();

// Changes it; `errno` on failure.
bool ChangeDirectory(const std::string& systemPath);

} // namespace kx::path
