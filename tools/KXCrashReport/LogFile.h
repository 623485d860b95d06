#pragma once

#include "tools/KXCrashReport/Maps.h"
#include "tools/KXCrashReport/Tracee.h"

namespace kx::report {

// Writes the lines that a stopped process's log had queued, and hadn't handed over yet, to the end of the
// log's file; the first of them completes a line that was cut. Returns them for the report, up to 16 MiB,
// with a line that says so where lines are missing; empty without any.
std::string BringLinesHome(const Tracee& tracee, const std::vector<Mapping>& maps);

} // namespace kx::report
