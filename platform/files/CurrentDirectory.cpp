#include "platform/files/CurrentDirectory.h"

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/files/Path.h"
#include "platform/text/CharWalk.h"

#include <cstdlib>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Chosen
{
    std::mutex lock;
    std::string path;
};

Chosen& TheChosen()
{
    static kx::Immortal<Chosen> chosen;
    return chosen.Get();
}

bool IsHere(const std::string& path)
{
    struct stat there;
    struct stat here;
    return stat(path.c_str(), &there) == 0 && stat(".", &here) == 0 && there.st_ino == here.st_ino &&
           there.st_dev == here.st_dev;
}

} // namespace

std::string kx::path::CurrentDirectory()
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

int SetCurrentDirectoryA(const char* pszPath)
{
    auto path = kx::path::ToSystem(pszPath);
    if (!path) return 0;
    const std::lock_guard lock(TheChosen().lock); // so that the path is that of the last change
    if (chdir(path->c_str()) != 0) return kx::FailErrno();
    TheChosen().path = std::move(*path);
    return 1;
}
