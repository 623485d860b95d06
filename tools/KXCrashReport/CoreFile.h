#pragma once

#include "tools/KXCrashReport/CoreMemory.h"

#include <string_view>

namespace kx::report {

// Writes an ELF core, which ordinary debuggers open, to a file. False when that fails.
bool WriteCore(int fd, const Tracee& tracee, std::string_view notes, const std::vector<Piece>& pieces);

} // namespace kx::report
