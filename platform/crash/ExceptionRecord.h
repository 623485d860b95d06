#pragma once

#include "include/platform/Crash.h"

#include <csignal>

namespace kx::crash {

// A crash's record in the platform's terms. Heap-free.
EXCEPTION_RECORD Describe(const siginfo_t& info, const void* pUserContext) noexcept;

} // namespace kx::crash
