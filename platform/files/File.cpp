#include "platform/files/File.h"

#include "include/platform/Error.h"
#include "include/platform/File.h"
#include "internal/Guard.h"
#include "platform/Errno.h"
#include "platform/UniqueFd.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"

#include <fcntl.h>
#include <new>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

// Opens a path, or tells why not.
kx::UniqueFd OpenPath(const char* pszFileName, unsigned nOpenFlags, CFileException& failure)
{
    const auto path = kx::files::Resolve(pszFileName);
    if (!path) {
        failure = kx::files::PathFailure(GetLastError(), pszFileName);
        return kx::UniqueFd();
    }
    errno = ENOTDIR;
    kx::UniqueFd fd = path->trailing ? kx::UniqueFd() : kx::files::OpenFile(path->system, nOpenFlags);
    if (fd) return fd;
    failure = CFileException(kx::files::CauseFromErrno(errno), errno, pszFileName);
    if (kx::files::FailAt(path->system); GetLastError() == ERROR_PATH_NOT_FOUND)
        failure.m_cause = CFileException::badPath;
    return fd;
}

} // namespace

CFile::~CFile()
{
    if (m_fd >= 0) CloseSystemFile();
}

// A process that is being started has copies of all descriptors for a moment, and with them the lock that
// keeps others out: it is given up by hand, but not by a fork, whose parent has it.
int CFile::CloseSystemFile() noexcept
{
    if (m_nProcess == getpid()) flock(m_fd, LOCK_UN);
    return close(std::exchange(m_fd, -1));
}

int CFile::Open(const char* pszFileName, unsigned nOpenFlags, CFileException* pError)
{
    kx::Guard([this] { Close(); }); // what was lost belongs to the file before this one
    try {
        CFileException failure;
        kx::UniqueFd fd = OpenPath(pszFileName, nOpenFlags, failure);
        if (fd)
            m_strFileName = pszFileName;
        else if (pError)
            *pError = failure;
        m_fd = fd.Release();
        m_nProcess = getpid();
        return m_fd >= 0;
    } catch (const std::bad_alloc&) {
        AfxThrowMemoryException();
    }
}

void CFile::Close()
{
    if (m_fd < 0) return;
    const CString strFileName = std::exchange(m_strFileName, CString());
    if (CloseSystemFile() != 0 && errno != EINTR)
        AfxThrowFileException(kx::files::CauseFromErrno(errno), errno, strFileName);
}

void CFile::Abort() noexcept
{
    if (m_fd >= 0) CloseSystemFile();
    m_strFileName = CString();
}

std::size_t CFile::Read(void* pBuf, std::size_t nCount)
{
    const ssize_t got = kx::RetryEintr([&] { return read(m_fd, pBuf, nCount); });
    if (got < 0) Throw(errno);
    return static_cast<std::size_t>(got);
}

void CFile::Write(const void* pBuf, std::size_t nCount)
{
    if (const int error = kx::files::WriteAll(m_fd, pBuf, nCount)) Throw(error);
}

void CFile::Flush()
{
}

std::uint64_t CFile::Seek(std::int64_t nOff, unsigned nFrom)
{
    if (m_fd < 0) return 0;
    const off_t position = lseek(m_fd, nOff, nFrom <= end ? static_cast<int>(nFrom) : -1);
    if (position < 0) AfxThrowFileException(CFileException::badSeek, errno, m_strFileName);
    return static_cast<std::uint64_t>(position);
}

std::uint64_t CFile::GetPosition() const
{
    const off_t position = lseek(m_fd, 0, SEEK_CUR);
    return position > 0 ? static_cast<std::uint64_t>(position) : 0;
}

std::uint64_t CFile::GetLength() const
{
    struct stat info;
    return fstat(m_fd, &info) == 0 ? static_cast<std::uint64_t>(info.st_size) : 0;
}

void CFile::Throw(int nErrno) const
{
    AfxThrowFileException(kx::files::CauseFromErrno(nErrno), nErrno, m_strFileName);
}

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
