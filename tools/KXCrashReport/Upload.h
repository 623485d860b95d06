#pragma once

#include "tools/KXCrashReport/CommandLine.h"
#include "tools/KXCrashReport/ReportFiles.h"

namespace kx::report {

// Posts the dump and the text, or which of them there is, as the files `dump` and `report` of a form with the
// fields `app` and `contact`, to the http or https address in the environment's KX_CRASH_URL. True once the
// server has taken them; false without an address or a file, and after 30 seconds.
bool Upload(const CommandLine& line, const ReportFiles& files);

} // namespace kx::report
