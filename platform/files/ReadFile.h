#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kx {

// A small file's content, at most `limit` bytes of it; nothing where it can't be read. Never waits for a
// pipe.
std::optional<std::string> ReadFile(const std::string& path, std::size_t limit);

} // namespace kx
