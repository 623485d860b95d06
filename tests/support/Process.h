#pragma once

#include "tests/support/Standard.h"

// Figures of this process.
namespace test {

inline long ResidentKilobytes()
{
    long nTotal = 0, nResident = 0;
    std::ifstream("/proc/self/statm") >> nTotal >> nResident;
    return nResident * (sysconf(_SC_PAGESIZE) / 1024);
}

inline int CountEntries(const char* pszDirectory)
{
    const std::filesystem::directory_iterator entries(pszDirectory);
    return static_cast<int>(std::distance(begin(entries), end(entries)));
}

// The bytes that it has read of files so far.
inline std::uint64_t BytesRead()
{
    std::string word;
    std::uint64_t nCount = 0;
    std::ifstream("/proc/self/io") >> word >> nCount;
    return nCount;
}

inline int Threads()
{
    return CountEntries("/proc/self/task");
}

} // namespace test
