#pragma once

#include <cstddef>
#include <string>

namespace kx::path {

// Makes an absolute Linux path, of which nothing up to `fixed` is touched, name what exists: where it doesn't
// as it stands, each missing component behind `fixed` is replaced by the entry of its directory that equals
// it ignoring case, the lowest in byte order. What has no such entry stays. True if a component was replaced.
bool MatchExisting(std::string& path, std::size_t fixed);

} // namespace kx::path
