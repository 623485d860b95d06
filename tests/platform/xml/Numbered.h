#pragma once

#include <string>

namespace test {

// A text some times over, in which each `$` is the number of that time, from 0 on.
inline std::string Numbered(int nTimes, const std::string& text)
{
    std::string all;
    for (int n = 0; n < nTimes; ++n)
        for (const char ch : text) {
            if (ch == '$')
                all += std::to_string(n);
            else
                all += ch;
        }
    return all;
}

} // namespace test
