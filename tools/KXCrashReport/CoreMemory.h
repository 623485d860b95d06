#pragma once

#include "tools/KXCrashReport/Crash.h"
#include "tools/KXCrashReport/Maps.h"

#include <vector>

namespace kx::report {

// A piece of the address space, and how much of its beginning is kept.
struct Piece
{
    Mapping map;
    std::uint64_t kept = 0;
};

// The memory that a dump keeps, at most 64 MiB: the stacks, up to a megabyte of each from where it is
// used, then the modules' data and the pages that tell a module's build, then the smaller ones of the other
// writable pieces. Code and constants stand in the modules' files.
std::vector<Piece> ChooseMemory(const std::vector<Mapping>& maps, const std::vector<ThreadState>& threads);

} // namespace kx::report
