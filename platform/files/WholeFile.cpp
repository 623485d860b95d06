#include "platform/files/WholeFile.h"

#include "platform/Errno.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>

namespace kx::files {

namespace {

constexpr int kMaxLinks = 40;
constexpr std::string_view kSuffix = ".kxnew";
constexpr timespec kPoll{0, 2'000'000}; // between two looks at another's lock
constexpr int kSafely = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
constexpr char kAccessList[] = "system.posix_acl_access";

std::size_t NameBegin(const std::string& path) noexcept
{
    return path.rfind('/') + 1;
}

// Puts what the path's last link names in its place; false for too many links.
bool FollowLinks(std::string& path)
{
    for (int links = 0; links < kMaxLinks; ++links) {
        std::array<char, PATH_MAX> link;
        const ssize_t length = readlink(path.c_str(), link.data(), link.size());
        if (length < 0) return true; // no link, or nothing there
        if (length > 0 && link[0] == '/') path.clear();
        path.erase(NameBegin(path)).append(link.data(), static_cast<std::size_t>(length));
    }
    errno = ELOOP;
    return false;
}

// Names too long for a suffix share one part file with others of the same beginning, which does no harm.
std::string PartName(const std::string& path)
{
    const std::size_t begin = NameBegin(path);
    const std::string name = path.substr(begin, NAME_MAX - 1 - kSuffix.size());
    return path.substr(0, begin).append(".").append(name).append(kSuffix);
}

// The group's members get no more than everyone.
mode_t WithoutGroup(mode_t mode) noexcept
{
    return mode & (~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3));
}

// The access list restricts the group too, whose part of the mode is the list's mask.
bool TakeOverAccessList(const std::string& from, int to) noexcept
{
    std::array<char, 4096> list;
    const ssize_t length = getxattr(from.c_str(), kAccessList, list.data(), list.size());
    if (length > 0) return fsetxattr(to, kAccessList, list.data(), static_cast<std::size_t>(length), 0) == 0;
    if (length < 0 && errno == ERANGE) return false;
    fremovexattr(to, kAccessList); // one that the directory gave it
    return true;
}

UniqueFd OpenDirectoryOf(const std::string& path)
{
    const std::string directory = path.substr(0, NameBegin(path));
    return UniqueFd(open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// Reads up to `count` bytes; the size that the file is said to have saves calls.
DWORD ReadUpTo(int fd, std::size_t count, std::size_t size, std::string& bytes)
{
    constexpr std::size_t kStep = 4096;
    bytes.resize(std::min(count, std::max(size + 1, kStep))); // one more, to be told of the end
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = RetryEintr(
            [&] { return pread(fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done)); });
        if (got < 0) {
            bytes.clear();
            return ErrorFromErrno(errno);
        }
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
        if (done == bytes.size()) bytes.resize(std::min(count, done + std::max(kStep, done / 2)));
    }
    bytes.resize(done);
    return ERROR_SUCCESS;
}

} // namespace

UniqueFd OpenRegularFile(const std::string& path, struct stat& status)
{
    // Asked before opening, since opening some devices does something, and again after it, since another file
    // may have the name by then.
    UniqueFd fd;
    if (stat(path.c_str(), &status) != 0) return fd;
    if (S_ISREG(status.st_mode))
        fd.Reset(
            RetryEintr([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    else
        errno = EACCES;
    if (fd && fstat(fd.Get(), &status) == 0 && S_ISREG(status.st_mode)) return fd;
    if (fd) errno = EACCES;
    return UniqueFd();
}

DWORD ReadWholeFile(int fd, std::size_t limit, FileContent& content)
{
    if (fstat(fd, &content.status) != 0) return ErrorFromErrno(errno);
    if (!S_ISREG(content.status.st_mode)) return ERROR_ACCESS_DENIED;
    const auto size = static_cast<std::size_t>(content.status.st_size);
    if (size > limit) return ERROR_ACCESS_DENIED;
    const DWORD error = ReadUpTo(fd, limit + 1, size, content.bytes);
    return content.bytes.size() > limit ? ERROR_ACCESS_DENIED : error;
}

DWORD ReadWholeFile(const std::string& path, std::size_t limit, FileContent& content)
{
    const UniqueFd fd = OpenRegularFile(path, content.status);
    return fd ? ReadWholeFile(fd.Get(), limit, content) : ErrorFromErrno(errno);
}

DWORD ReadFileHead(const std::string& path, std::size_t count, FileContent& content)
{
    const UniqueFd fd = OpenRegularFile(path, content.status);
    return fd ? ReadUpTo(fd.Get(), count, count, content.bytes) : ErrorFromErrno(errno);
}

int WriteAll(int fd, const void* pBuf, std::size_t nCount) noexcept
{
    const char* pch = static_cast<const char*>(pBuf);
    do {
        const ssize_t put = RetryEintr([&] { return write(fd, pch, nCount); });
        if (put < 0) return errno;
        if (put == 0 && nCount > 0) return ENOSPC; // no progress would be no end
        pch += put;
        nCount -= static_cast<std::size_t>(put);
    } while (nCount > 0);
    return 0;
}

FileReplacement::~FileReplacement()
{
    if (m_bOurs && HasName()) unlink(m_name.c_str());
    End();
}

// A child process made meanwhile may share the descriptor, so closing it alone wouldn't free the lock.
void FileReplacement::End() noexcept
{
    m_bOurs = false;
    if (m_part) flock(m_part.Get(), LOCK_UN);
    m_part.Reset();
}

// Whether the target may be made or replaced, and the mode to make the part file with: before its status is
// taken over, nobody may open it who mayn't read the old one.
DWORD FileReplacement::CheckTarget(mode_t& mode) const
{
    struct stat old = {};
    if (m_existing == Existing::Refused)
        return lstat(m_target.c_str(), &old) == 0 ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS;
    if (stat(m_target.c_str(), &old) != 0) return ERROR_SUCCESS;
    if (!S_ISREG(old.st_mode)) return ERROR_ACCESS_DENIED;
    if (faccessat(AT_FDCWD, m_target.c_str(), W_OK, AT_EACCESS) != 0) return ErrorFromErrno(errno);
    mode = (WithoutGroup(old.st_mode) & 0666) | S_IRUSR | S_IWUSR;
    return ERROR_SUCCESS;
}

DWORD FileReplacement::Begin(const std::string& path, mode_t mode)
{
    m_target = path;
    if (m_existing == Existing::Replaced && !FollowLinks(m_target)) return ErrorFromErrno(errno);
    if (NameBegin(m_target) == m_target.size()) return ERROR_ACCESS_DENIED;
    m_name = PartName(m_target);
    m_directory = OpenDirectoryOf(m_target); // here, since nothing may fail after the renaming
    if (const DWORD error = CheckTarget(mode)) return error;

    // The machine's own clock: another process is waited for, which knows no other.
    const auto deadline = std::chrono::steady_clock::now() + m_wait;
    Turn turn = TryBegin(mode);
    while (turn == Turn::Again || turn == Turn::Later) {
        if (std::chrono::steady_clock::now() >= deadline) return ERROR_SHARING_VIOLATION;
        if (turn == Turn::Later) nanosleep(&kPoll, nullptr);
        turn = TryBegin(mode);
    }
    if (turn == Turn::Failed) return errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno);
    TakeOverStatus();
    return ERROR_SUCCESS;
}

FileReplacement::Turn FileReplacement::TryBegin(mode_t mode)
{
    m_part.Reset(RetryEintr([&] { return open(m_name.c_str(), O_RDWR | O_CREAT | O_EXCL | kSafely, mode); }));
    if (!m_part) return errno == EEXIST ? TryClear() : Turn::Failed;
    // Another writer may have come between, taken the file for one that was left, and removed it.
    if (RetryEintr([&] { return flock(m_part.Get(), LOCK_EX | LOCK_NB); }) != 0 && errno == EWOULDBLOCK)
        return Turn::Later;
    m_bOurs = HasName();
    return m_bOurs ? Turn::Ours : Turn::Again;
}

// Removes a part file whose writer is no more.
FileReplacement::Turn FileReplacement::TryClear()
{
    m_part.Reset(RetryEintr([&] { return open(m_name.c_str(), O_RDONLY | kSafely); }));
    if (!m_part && errno == EACCES)
        m_part.Reset(RetryEintr([&] { return open(m_name.c_str(), O_WRONLY | kSafely); }));
    if (!m_part) {
        if (errno == ENOENT) return Turn::Again;
        return errno == EACCES ? Turn::Later : Turn::Failed;
    }
    if (RetryEintr([&] { return flock(m_part.Get(), LOCK_EX | LOCK_NB); }) != 0)
        return errno == EWOULDBLOCK ? Turn::Later : Turn::Failed;
    if (!HasName() || unlink(m_name.c_str()) == 0) return Turn::Again;
    return errno == EPERM ? Turn::Later : Turn::Failed; // another's, in a directory where only he may
}

bool FileReplacement::HasName() const noexcept
{
    struct stat held = {};
    struct stat named = {};
    return fstat(m_part.Get(), &held) == 0 && lstat(m_name.c_str(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

void FileReplacement::TakeOverStatus()
{
    struct stat old = {};
    struct stat made = {};
    if (stat(m_target.c_str(), &old) != 0 || fstat(m_part.Get(), &made) != 0) return;
    m_mode = old.st_mode & 07777;
    if (made.st_uid != old.st_uid && fchown(m_part.Get(), old.st_uid, old.st_gid) == 0) made = old;
    if (made.st_gid != old.st_gid && fchown(m_part.Get(), static_cast<uid_t>(-1), old.st_gid) == 0)
        made.st_gid = old.st_gid;
    if (made.st_uid != old.st_uid) m_mode &= ~static_cast<mode_t>(S_ISUID);
    if (made.st_gid != old.st_gid) m_mode &= ~static_cast<mode_t>(S_ISGID);
    if (made.st_gid != old.st_gid || !TakeOverAccessList(m_target, m_part.Get()))
        m_mode = WithoutGroup(m_mode);
    fchmod(m_part.Get(), m_mode & 0777);
}

bool FileReplacement::Write(const void* pBuf, std::size_t nCount) noexcept
{
    if (m_errno == 0) m_errno = WriteAll(m_part.Get(), pBuf, nCount);
    return m_errno == 0;
}

bool FileReplacement::Publish() const noexcept
{
    if (m_existing == Existing::Refused) {
        if (renameat2(AT_FDCWD, m_name.c_str(), AT_FDCWD, m_target.c_str(), RENAME_NOREPLACE) == 0)
            return true;
        if (errno != EINVAL && errno != ENOSYS) return false;
        struct stat info; // a file system that can't do it in one step
        errno = EEXIST;
        if (lstat(m_target.c_str(), &info) == 0) return false;
    }
    return rename(m_name.c_str(), m_target.c_str()) == 0;
}

DWORD FileReplacement::Commit(bool bSync)
{
    if (m_errno != 0) return ErrorFromErrno(m_errno);
    if (!m_bOurs) return ERROR_INVALID_HANDLE;
    // Writing may take the higher bits away, so they are set behind it. The others may be another's by now.
    struct stat made = {};
    if ((m_mode & ~0777u) && fstat(m_part.Get(), &made) == 0)
        fchmod(m_part.Get(), (made.st_mode & 0777) | (m_mode & ~0777u));
    if (bSync && fsync(m_part.Get()) != 0) return ErrorFromErrno(errno);
    if (!HasName()) return ERROR_SHARING_VIOLATION; // where there are no locks, or somebody has cleaned up
    if (!Publish()) return ErrorFromErrno(errno);
    End();
    if (bSync && m_directory) fsync(m_directory.Get());
    return ERROR_SUCCESS;
}

DWORD ReplaceWholeFile(const std::string& path, std::string_view bytes, mode_t mode)
{
    FileReplacement replacement;
    if (const DWORD error = replacement.Begin(path, mode)) return error;
    replacement.Write(bytes.data(), bytes.size());
    return replacement.Commit();
}

void MakeDirectoriesAbove(const std::string& file, mode_t mode)
{
    for (std::size_t slash = 1; (slash = file.find('/', slash)) != file.npos; ++slash)
        mkdir(file.substr(0, slash).c_str(), mode);
}

} // namespace kx::files
