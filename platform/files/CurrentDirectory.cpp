// The process's current directory and the system's own ones.

#include "platform/files/Path.h"

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/files/File.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kx::files {

namespace {

struct Chosen
{
    sync::Mutex lock; // held over chdir, so that the path is that of the last change
    std::string path KX_GUARDED_BY(lock);
};

[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::CurrentDirectory, []() -> sync::Mutex& { return The<Chosen>().lock; });

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
        Chosen& last = The<Chosen>();
        const sync::MutexLock lock(last.lock);
        chosen = last.path;
    }
    if (!chosen.empty() && IsHere(chosen)) return chosen;
    const std::unique_ptr<char, decltype(&std::free)> path(getcwd(nullptr, 0), std::free);
    return path && *path == '/' ? path.get() : "";
}

} // namespace kx::files

namespace {

UINT Deliver(std::string_view text, char* pszBuffer, UINT nSize)
{
    const auto length = static_cast<UINT>(text.size());
    if (!pszBuffer || nSize <= length) return length + 1;
    std::memcpy(pszBuffer, text.data(), length);
    pszBuffer[length] = '\0';
    return length;
}

} // namespace

int SetCurrentDirectoryA(const char* pszPath)
try {
    auto path = kx::files::ToSystem(pszPath);
    if (!path) return 0;
    auto& last = kx::The<kx::files::Chosen>();
    const kx::sync::MutexLock lock(last.lock);
    if (chdir(path->c_str()) != 0) return kx::files::FailAt(*path);
    last.path = std::move(*path);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

DWORD GetCurrentDirectoryA(DWORD nSize, char* pszBuffer)
try {
    const auto path = kx::files::FromSystem(kx::files::CurrentDirectory());
    if (!path) return static_cast<DWORD>(kx::Fail(ERROR_PATH_NOT_FOUND));
    return Deliver(*path, pszBuffer, nSize);
} catch (...) {
    return kx::NoMemory();
}

UINT GetSystemDirectoryA(char* pszBuffer, UINT nSize)
{
    return Deliver("C:\\usr\\lib", pszBuffer, nSize);
}

UINT GetWindowsDirectoryA(char* pszBuffer, UINT nSize)
{
    return Deliver("C:\\usr", pszBuffer, nSize);
}
