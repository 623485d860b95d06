#pragma once

#include <cstdio>

namespace test {

// Says what isn't so; for child programs, whose tests expect that they say nothing.
inline void Check(bool bTrue, const char* pszWhat)
{
    if (!bTrue) std::fprintf(stderr, "%s\n", pszWhat);
}

} // namespace test
