#include "platform/module/ExecutablePath.h"

#include "include/platform/Host.h"
#include "platform/Immortal.h"
#include "platform/sync/Fork.h"

#include <mutex>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char* kLink = "/proc/self/exe";

struct Override
{
    std::mutex lock;
    std::string path;
};

Override& TheOverride()
{
    static kx::Immortal<Override> instance;
    return instance.Get();
}

[[maybe_unused]] const bool g_atFork = kx::sync::LockAtFork < []() -> auto&
{
    return TheOverride().lock;
}
> (kx::sync::ForkOrder::Executable);

bool IsThisExecutable(const std::string& path)
{
    struct stat named
    {
    }, running{};
    return stat(path.c_str(), &named) == 0 && stat(kLink, &running) == 0 && named.st_dev == running.st_dev &&
           named.st_ino == running.st_ino;
}

std::string ReadLink()
{
    constexpr std::size_t kLongest = 1 << 20;
    std::string path;
    for (std::size_t size = 512; size <= kLongest; size *= 2) {
        path.resize(size);
        const ssize_t got = readlink(kLink, path.data(), size);
        if (got <= 0) return {};
        if (static_cast<std::size_t>(got) < size) {
            path.resize(static_cast<std::size_t>(got));
            return path;
        }
    }
    return {};
}

// The system marks the name of an executable that was deleted or replaced while it runs, which a file's own
// name can't be told from but by looking.
std::string RealPath()
{
    constexpr std::string_view kDeleted = " (deleted)";
    std::string path = ReadLink();
    if (path.ends_with(kDeleted) && !IsThisExecutable(path)) path.resize(path.size() - kDeleted.size());
    return path;
}

} // namespace

std::string kx::module::ExecutablePath()
{
    {
        std::lock_guard lock(TheOverride().lock);
        if (!TheOverride().path.empty()) return TheOverride().path;
    }
    return RealPath();
}

void KXHost::SetExecutablePath(const std::string& strPath)
{
    std::lock_guard lock(TheOverride().lock);
    TheOverride().path = strPath;
}
