#pragma once

#include <string>

namespace kx::registry {

// The Linux path of the file with the per-user values; empty where the user has no home.
std::string FilePath();

} // namespace kx::registry
