#include "platform/files/OpenFile.h"

#include "include/platform/File.h"
#include "platform/Errno.h"

#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>

namespace kx::files {

namespace {

constexpr unsigned kAccess = 0x0003;
constexpr unsigned kSharing = 0x0070;

std::optional<int> SystemFlags(unsigned nOpenFlags)
{
    const unsigned access = nOpenFlags & kAccess;
    if (access > CFile::modeReadWrite) return std::nullopt;
    int flags = access == CFile::modeWrite ? O_WRONLY : access == CFile::modeReadWrite ? O_RDWR : O_RDONLY;
    if (nOpenFlags & CFile::modeCreate) {
        if (flags == O_RDONLY) flags = O_RDWR; // emptying a file is a change of it
        flags |= O_CREAT;
    }
    return flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK; // so that a pipe is never waited for
}

// Writers share a lock on the file, or hold it alone. The system frees it when the file is closed, also by a
// kill. Where a file system has no locks, there is no sharing to keep.
bool TakeShare(int fd, unsigned nOpenFlags)
{
    const unsigned sharing = nOpenFlags & kSharing;
    const bool bShares = sharing == CFile::shareDenyNone || sharing == CFile::shareDenyRead;
    const int lock = (bShares ? LOCK_SH : LOCK_EX) | LOCK_NB;
    return RetryEintr([&] { return flock(fd, lock); }) == 0 || errno != EWOULDBLOCK;
}

bool Prepare(int fd, const struct stat& info, bool bWrites, unsigned nOpenFlags)
{
    if (S_ISDIR(info.st_mode))
        errno = EISDIR;
    else if (!S_ISREG(info.st_mode) && !S_ISCHR(info.st_mode) && !S_ISBLK(info.st_mode))
        errno = EACCES;
    else if (!S_ISREG(info.st_mode))
        return fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK) == 0;
    else if (!bWrites)
        return true;
    else if (TakeShare(fd, nOpenFlags)) {
        const bool bEmpties = (nOpenFlags & (CFile::modeCreate | CFile::modeNoTruncate)) == CFile::modeCreate;
        return !bEmpties || info.st_size == 0 || RetryEintr([&] { return ftruncate(fd, 0); }) == 0;
    }
    return false;
}

} // namespace

UniqueFd OpenFile(const std::string& systemPath, unsigned nOpenFlags)
{
    const auto flags = SystemFlags(nOpenFlags);
    if (!flags) {
        errno = EINVAL;
        return UniqueFd();
    }
    UniqueFd fd(RetryEintr([&] { return open(systemPath.c_str(), *flags, 0666); }));
    struct stat info;
    if (!fd || fstat(fd.Get(), &info) != 0) return UniqueFd();
    if (Prepare(fd.Get(), info, (*flags & O_ACCMODE) != O_RDONLY, nOpenFlags)) return fd;
    const int error = errno; // closing may change it
    fd.Reset();
    errno = error;
    return fd;
}

} // namespace kx::files
