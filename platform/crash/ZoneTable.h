#pragma once

#include <cstdint>
#include <ctime>

// Local time without asking for it: the system's conversion takes the time zone's lock.

namespace kx::crash {

// Reads the zone's changes from 2000 to ten years from now. By one thread at a time, not in a filter.
void PrepareZone() noexcept;

// Local time by what was read. Heap-free; false where the year doesn't fit the record.
bool ToLocalPrepared(std::int64_t nTime, std::tm& fields) noexcept;

} // namespace kx::crash
