#pragma once

#include "KXExport.h"

// Random numbers from the C runtime's generator, whose seed is shared with whatever else in the process uses
// it. Not for secrets. Any thread.
class KX_API CKXRandom
{
public:
    // Seeds the generator with the clock's time in seconds. A client calls it once at its start.
    static void Init();

    // A number from `nMin` to `nMax`, both included: `rand() % (nMax - nMin + 1) + nMin`. Ranges wider than
    // what `rand` gives take two of its numbers. `nMin` should not be above `nMax`; where it is by one, the
    // result is `nMin`.
    static int GetRandom(int nMin, int nMax);
};
