#pragma once

#include "tools/KXCrashReport/CommandLine.h"
#include "tools/KXCrashReport/ReportFiles.h"

namespace kx::report {

// Posts the dump and the text, or which of them there is, as the files `dump` and `report` of a form with the
// fields `app` and `contact`, to the address in the environment's KX_CRASH_URL. That is an https address, the
// scheme of one that names none, or an http address of this machine's loopback; any other http address is
// posted to only where the environment's KX_CRASH_PLAIN is 1. True once the server has answered with 2xx;
// false without an address or a file, for any other answer, and after 30 seconds.
bool Upload(const CommandLine& line, const ReportFiles& files);

} // namespace kx::report
