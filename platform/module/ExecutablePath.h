#pragma once

#include <string>

namespace kx::module {

// The Linux path of the running executable: the host's choice, else the real one. Empty where the system
// doesn't tell. Any thread.
std::string ExecutablePath();

} // namespace kx::module
