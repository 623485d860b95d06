#pragma once

#include "tests/support/Standard.h"

namespace test {

// How many lines each thread has in a log whose messages are the thread's number, the line's, which counts up
// from 0, and maybe some "x". The first line that isn't its thread's next is the wrong one, in quotes.
struct ThreadLines
{
    ThreadLines(const std::string& log, std::size_t nThreads) : counts(nThreads)
    {
        std::istringstream lines(log);
        for (std::string line; std::getline(lines, line) && wrong.empty();) {
            std::size_t t = nThreads, n = 0;
            int nEnd = 0;
            std::sscanf(line.c_str(), "[%*[0-9: -]] 1 %zu %zu%n", &t, &n, &nEnd);
            const bool bWhole =
                nEnd > 0 && line.find_first_not_of(" x", static_cast<unsigned>(nEnd)) == line.npos;
            if (!bWhole || t >= nThreads || n != counts[t]++) wrong = '"' + line + '"';
        }
    }

    std::vector<std::size_t> counts;
    std::string wrong;
};

} // namespace test
