#include "include/platform/File.h"

#include "include/platform/Error.h"
#include "platform/Errno.h"
#include "platform/UniqueFd.h"
#include "platform/files/EntryInfo.h"
#include "platform/files/Exception.h"
#include "platform/files/OpenFile.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"

#include <new>
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
    try {
        Close();
    } catch (CException* pException) { // what was lost belongs to the file before this one
        pException->Delete();
    }
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
