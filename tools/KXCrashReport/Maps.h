#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kx::report {

// A line of /proc/PID/maps.
struct Mapping
{
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    bool bRead = false;
    bool bWrite = false;
    bool bExecute = false;
    bool bShared = false;
    std::uint64_t offset = 0;
    std::string path; // empty, `[...]`, or a file's

    std::uint64_t Size() const { return end - start; }
    bool Holds(std::uint64_t address) const { return address >= start && address < end; }
    bool IsFile() const { return path.starts_with('/'); }
};

// In the order of their addresses. Lines that are none are left out.
std::vector<Mapping> ParseMaps(std::string_view text);

} // namespace kx::report
