#pragma once

#include "tools/KXCrashReport/Crash.h"
#include "tools/KXCrashReport/Maps.h"

#include <optional>
#include <string>
#include <vector>

namespace kx::report {

// The notes of an ELF core: the process, its threads with their registers, the signal, the auxiliary vector
// and the mapped files.
std::string CoreNotes(const Tracee& tracee, const std::vector<ThreadState>& threads,
                      const std::optional<CrashRecord>& crash, const std::vector<Mapping>& maps);

} // namespace kx::report
