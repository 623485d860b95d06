#pragma once

#include <optional>
#include <string>
#include <string_view>

// The names of a few large directories, kept up to date by the system's notices, so that a name that isn't
// there doesn't cost a walk through all that are. Any thread.

namespace kx::path {

// The entry of a directory that equals a name ignoring case, the lowest in byte order; with `bDirectory` a
// file doesn't count. `folded` is the name's folded form.
std::optional<std::string> FindEntry(const std::string& directory, std::string_view folded, bool bDirectory);

} // namespace kx::path
