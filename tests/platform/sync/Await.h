#pragma once

#include "include/platform/Host.h"

#include <thread>

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

} // namespace test
