#include "include/platform/Clock.h"

#include "include/platform/Sync.h"
#include "platform/time/Alarm.h"

#include <sched.h>

void Sleep(DWORD dwMilliseconds)
{
    if (dwMilliseconds == 0) {
        sched_yield();
        return;
    }
    if (dwMilliseconds != INFINITE && kx::clock::SkipSleep(dwMilliseconds)) return;
    kx::sync::Word word{0};
    kx::clock::Alarm alarm(word, kx::clock::DeadlineAfter(dwMilliseconds));
    while (alarm.Wait(word.load(std::memory_order_acquire))) {
    }
}
