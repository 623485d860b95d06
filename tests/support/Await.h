#pragma once

#include "include/platform/Host.h"
#include "tests/support/Standard.h"

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
