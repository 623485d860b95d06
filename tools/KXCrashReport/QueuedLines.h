#pragma once

#include "core/LogRecord.h"
#include "tools/KXCrashReport/Maps.h"

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

// The lines that a crashed process's log had queued. All that is read of it may be torn or forged: each
// address and length is checked, and a walk comes to its end whatever it finds.

namespace kx::report {

// Reads the crashed process's memory; how many bytes of the beginning could be read.
using ReadMemory = std::function<std::size_t(std::uint64_t address, void* pTarget, std::size_t size)>;

struct FoundRecord
{
    std::uint64_t address = 0;
    core::Record record{};
};

// The records that the notes of the process's modules lead to.
std::vector<FoundRecord> FindLogRecords(const std::vector<Mapping>& maps, const ReadMemory& read);

// Gets a line, in pieces if it is long.
using TakePiece = std::function<void(std::string_view piece, bool bLast)>;

// Gives the lines from a position on, oldest first, at most `nMost` bytes of them. False where the queue is
// damaged: what was given until then are whole lines, but for the last if its last piece lacks.
bool WalkLines(const core::Position& from, std::uint64_t nMost, const ReadMemory& read,
               const TakePiece& take);

} // namespace kx::report
