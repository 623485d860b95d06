#include "platform/crash/HeapFree.h"

#include "include/platform/Crash.h"
#include "platform/Errno.h"
#include "platform/UniqueFd.h"
#include "platform/crash/Filtering.h"
#include "platform/time/BrokenTime.h"
#include "platform/time/Clock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

// A descriptor that a filter gives up where the process has no other left. Its identity is kept, as a client
// that closes whatever it finds may have given the number to a file of its own.
int g_reserve = -1;
struct stat g_reserved;

bool GiveUpReserve() noexcept
{
    struct stat now;
    const bool bOurs = g_reserve >= 0 && fstat(g_reserve, &now) == 0 && now.st_dev == g_reserved.st_dev &&
                       now.st_ino == g_reserved.st_ino;
    return bOurs && close(std::exchange(g_reserve, -1)) == 0;
}

} // namespace

void kx::crash::PrepareDescriptor() noexcept
{
    if (g_reserve >= 0) return;
    g_reserve = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (g_reserve >= 0) fstat(g_reserve, &g_reserved);
}

// Opens without waiting, as the file may be a pipe that nobody writes to.
bool KXCrash::IsFileReadable(const char* pszPath) noexcept
{
    kx::crash::PathText path;
    if (!kx::crash::ToSystem(pszPath, path)) return false;
    constexpr int nFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    kx::UniqueFd file(open(path.Data(), nFlags));
    if (!file && (errno == EMFILE || errno == ENFILE) && kx::crash::InFilter() && GiveUpReserve())
        file.Reset(open(path.Data(), nFlags));
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
    const std::int64_t now = kx::time::WallSeconds();
    return kx::crash::InFilter() ? kx::crash::ToLocalPrepared(now, *pTime) : kx::time::ToLocal(now, *pTime);
}
