#pragma once

#include <sys/types.h>

// Children whose handle was closed before they ended: the system keeps what is left of each until it is
// collected. Any thread, not in a filter.

namespace kx::crash {

void AddOrphan(pid_t pid) noexcept;
// Collects those that have ended since.
void CollectOrphans() noexcept;

} // namespace kx::crash
