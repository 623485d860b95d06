#pragma once

#include "include/platform/Crash.h"
#include "tools/KXCrashReport/Registers.h"
#include "tools/KXCrashReport/Tracee.h"

#include <csignal>
#include <optional>
#include <vector>

namespace kx::report {

// The crashed process's own account of its crash.
struct CrashRecord
{
    EXCEPTION_RECORD exception{};
    pid_t tid = 0;
    siginfo_t signal{};
    Registers registers{};
};

// Follows the exception pointers; nothing where they lead nowhere.
std::optional<CrashRecord> ReadCrash(const Tracee& tracee, std::uint64_t pointers);

struct ThreadState
{
    pid_t tid = 0;
    Registers registers{};
};

// The threads with their registers, the one that crashed first, with those at the crash.
std::vector<ThreadState> ReadThreads(const Tracee& tracee, pid_t crashed,
                                     const std::optional<CrashRecord>& crash);

} // namespace kx::report
