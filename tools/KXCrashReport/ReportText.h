#pragma once

#include "tools/KXCrashReport/CommandLine.h"
#include "tools/KXCrashReport/Crash.h"

#include <optional>
#include <string>
#include <vector>

namespace kx::report {

// The report for people: what crashed and why, the registers, the stack of each thread, the modules, the
// log's queued lines; of a process that can't be read, what is known without. UTF-8.
std::string ReportText(const CommandLine& line, const Tracee& tracee, const std::optional<CrashRecord>& crash,
                       const std::vector<ThreadState>& threads, const std::string& lines);

} // namespace kx::report
