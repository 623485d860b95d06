// The heap-free forms of common calls.

#include "include/platform/Crash.h"
#include "platform/Errno.h"
#include "platform/UniqueFd.h"
#include "platform/crash/Filtering.h"
#include "platform/crash/SystemPath.h"
#include "platform/crash/ZoneTable.h"
#include "platform/time/BrokenTime.h"
#include "platform/time/Clock.h"

#include <fcntl.h>
#include <sys/stat.h>

// Not waiting for whoever might write, if it is a pipe.
bool KXCrash::IsFileReadable(const char* pszPath) noexcept
{
    kx::crash::PathText path;
    if (!kx::crash::ToSystem(pszPath, path)) return false;
    const kx::UniqueFd file(open(path.Data(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info;
    return file && fstat(file.Get(), &info) == 0 && !S_ISDIR(info.st_mode);
}

int KXCrash::MakeDirectory(const char* pszPath) noexcept
{
    kx::crash::PathText path;
    if (!kx::crash::ToSystem(pszPath, path)) return 0;
    return mkdir(path.Data(), 0777) == 0 ? 1 : kx::FailErrno();
}

// The virtual clock has a lock, which its moving alone holds: on the system's nothing can be held here.
bool KXCrash::GetLocalTime(std::tm* pTime) noexcept
{
    if (!pTime) return false;
    const std::int64_t now = kx::clock::WallSeconds();
    return kx::crash::InFilter() ? kx::crash::ToLocalPrepared(now, *pTime) : kx::clock::ToLocal(now, *pTime);
}
