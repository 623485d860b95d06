#pragma once

#include <string>
#include <sys/types.h>

namespace kx::report {

// Has a process of its own start the crashed program again once the crashed process has ended, at the latest
// after five minutes, with its environment and directory and with arguments cut at their blanks. A program
// that was itself restarted less than a minute ago, as the environment's KX_CRASH_RESTARTED tells, isn't
// again.
void RestartAfter(pid_t pid, const std::string& arguments);

} // namespace kx::report
