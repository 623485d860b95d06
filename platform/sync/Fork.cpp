#include "platform/sync/Fork.h"

#include "include/platform/Sync.h"

#include <algorithm>
#include <array>
#include <pthread.h>

namespace kx::sync {

namespace {

struct Steps
{
    Mutex lock; // nothing else is taken while it is held, but by a fork
    std::array<ForkStep, 24> steps KX_GUARDED_BY(lock){};
    std::size_t count KX_GUARDED_BY(lock) = 0;
};
constinit Steps g_steps;

void Before() KX_ACQUIRE(g_steps.lock)
{
    g_steps.lock.lock();
    for (std::size_t n = 0; n < g_steps.count; ++n)
        g_steps.steps[n].pfnBefore();
}

void After(bool bChild)
{
    g_steps.lock.AssertHeld();
    for (std::size_t n = g_steps.count; n-- > 0;)
        g_steps.steps[n].pfnAfter(bChild);
    g_steps.lock.unlock();
}

} // namespace

bool AtFork(const ForkStep& step) noexcept
{
    const MutexLock lock(g_steps.lock);
    if (g_steps.count == g_steps.steps.size()) return false;
    if (g_steps.count == 0 && pthread_atfork(
                                  Before, [] { After(false); }, [] { After(true); }) != 0)
        return false;
    const auto end = g_steps.steps.begin() + static_cast<std::ptrdiff_t>(g_steps.count);
    const auto at = std::upper_bound(g_steps.steps.begin(), end, step,
                                     [](const ForkStep& a, const ForkStep& b) { return a.order < b.order; });
    std::copy_backward(at, end, end + 1);
    *at = step;
    ++g_steps.count;
    return true;
}

} // namespace kx::sync

int KXAtFork(void (*pfnBefore)() noexcept, void (*pfnAfter)(bool bChild) noexcept) noexcept
{
    if (!pfnBefore || !pfnAfter) return 0;
    return kx::sync::AtFork({kx::sync::ForkOrder::Client, pfnBefore, pfnAfter});
}
