#include "platform/files/CurrentDirectory.h"

#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/sync/Fork.h"

#include <cstdlib>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace kx::path {

namespace {

struct Chosen
{
    std::mutex lock;
    std::string path;
};

Chosen& TheChosen()
{
    static Immortal<Chosen> chosen;
    return chosen.Get();
}

[[maybe_unused]] const bool g_atFork = sync::LockAtFork < []() -> auto&
{
    return TheChosen().lock;
}
> (sync::ForkOrder::CurrentDirectory);

bool IsHere(const std::string& path)
{
    struct stat there;
    struct stat here;
    return stat(path.c_str(), &there) == 0 && stat(".", &here) == 0 && there.st_ino == here.st_ino &&
           there.st_dev == here.st_dev;
}

} // namespace

std::string CurrentDirectory()
{
    std::string chosen;
    {
        const std::lock_guard lock(TheChosen().lock);
        chosen = TheChosen().path;
    }
    if (!chosen.empty() && IsHere(chosen)) return chosen;
    const std::unique_ptr<char, decltype(&std::free)> path(getcwd(nullptr, 0), std::free);
    return path && *path == '/' ? path.get() : "";
}

bool ChangeDirectory(const std::string& systemPath)
{
    const std::lock_guard lock(TheChosen().lock); // so that the path is that of the last change
    if (chdir(systemPath.c_str()) != 0) return false;
    TheChosen().path = systemPath;
    return true;
}

} // namespace kx::path
