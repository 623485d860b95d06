#pragma once

// Most tests use this of the folder, of GoogleTest and of the standard library: each test file includes it,
// or a header of its folder that does.
#include "tests/support/Child.h"
#include "tests/support/Host.h"
#include "tests/support/Standard.h"
#include "tests/support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace test {

// Gives the processor away until something is so.
template <class Condition>
void Await(Condition condition)
{
    while (!condition())
        std::this_thread::yield();
}

// Until that many threads sleep for the clock.
inline void AwaitSleepers(int nCount)
{
    Await([=] { return KXHost::ClockWaiters() == nCount; });
}

// Runs `body(0)`, `body(1)` and so on, each on a thread of its own, to their end.
template <class Body>
void RunThreads(int nThreads, Body body)
{
    std::vector<std::jthread> threads;
    for (int t = 0; t < nThreads; ++t)
        threads.emplace_back([&, t] { body(t); });
}

} // namespace test
