#include "platform/crash/Orphans.h"

#include "platform/Immortal.h"

#include <mutex>
#include <new>
#include <sys/wait.h>
#include <vector>

namespace kx::crash {

namespace {

struct Orphans
{
    std::mutex lock;
    std::vector<pid_t> pids;
};

Orphans& TheOrphans()
{
    static Immortal<Orphans> orphans;
    return orphans.Get();
}

} // namespace

void AddOrphan(pid_t pid) noexcept
{
    Orphans& orphans = TheOrphans();
    const std::lock_guard lock(orphans.lock);
    try {
        orphans.pids.push_back(pid);
    } catch (const std::bad_alloc&) { // it stays until this process ends
    }
}

void CollectOrphans() noexcept
{
    Orphans& orphans = TheOrphans();
    const std::lock_guard lock(orphans.lock);
    std::erase_if(orphans.pids, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

} // namespace kx::crash
