#pragma once

// Elapsed time. Everything in the library that tells the time, waits with a time-out or stamps a line asks
// one clock, which a host can make virtual (Host.h). Any thread may call these.

#include "../KXExport.h"
#include "Types.h"

// Milliseconds since some fixed moment, exact to one; wraps to 0 after 49.7 days.
KX_API DWORD GetTickCount() noexcept;

// Suspends the calling thread for that many milliseconds of the clock, never less; 0 yields, INFINITE never
// returns.
KX_API void Sleep(DWORD dwMilliseconds);
