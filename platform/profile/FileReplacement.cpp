#include "platform/profile/FileReplacement.h"

#include "platform/Errno.h"
#include "platform/files/OpenFile.h"

#include <array>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace kx::profile {

namespace {

constexpr int kMaxLinks = 40;
constexpr int kMaxRetries = 3;
constexpr std::string_view kSuffix = ".kxnew";

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

// Names too long for a suffix share one lock with others of the same beginning, which does no harm.
std::string LockName(const std::string& path)
{
    const std::size_t begin = NameBegin(path);
    const std::string name = path.substr(begin, NAME_MAX - 1 - kSuffix.size());
    return path.substr(0, begin).append(".").append(name).append(kSuffix);
}

} // namespace

FileReplacement::~FileReplacement()
{
    if (m_bOurs) unlink(m_name.c_str());
    // A child process made meanwhile may share the descriptor, so closing it alone wouldn't do.
    if (m_lock) flock(m_lock.Get(), LOCK_UN);
}

DWORD FileReplacement::Begin(const std::string& path, mode_t mode)
{
    m_target = path;
    if (!FollowLinks(m_target)) return ErrorFromErrno(errno);
    if (NameBegin(m_target) == m_target.size()) return ERROR_ACCESS_DENIED;
    m_name = LockName(m_target);

    struct stat old = {};
    if (stat(m_target.c_str(), &old) == 0) {
        if (!S_ISREG(old.st_mode)) return ERROR_ACCESS_DENIED;
        if (faccessat(AT_FDCWD, m_target.c_str(), W_OK, AT_EACCESS) != 0) return ErrorFromErrno(errno);
        mode = (old.st_mode & 0777) | S_IRUSR | S_IWUSR;
    }
    Turn turn = Turn::Again;
    while (turn == Turn::Again)
        turn = TryBegin(mode);
    if (turn == Turn::Ours) return ERROR_SUCCESS;
    return errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno);
}

FileReplacement::Turn FileReplacement::TryBegin(mode_t mode)
{
    constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    m_lock.Reset(RetryEintr([&] { return open(m_name.c_str(), O_RDWR | O_CREAT | kFlags, mode); }));
    const bool bForeign = !m_lock && errno == EACCES;
    if (bForeign) m_lock.Reset(RetryEintr([&] { return open(m_name.c_str(), O_RDONLY | kFlags); }));
    if (!m_lock) return bForeign && errno == ENOENT ? Retry() : Turn::Failed;
    if (RetryEintr([&] { return flock(m_lock.Get(), LOCK_EX); }) != 0) return Turn::Failed;

    // While we waited, the file may have taken its target's place or have been removed.
    struct stat held = {};
    struct stat named = {};
    if (fstat(m_lock.Get(), &held) != 0) return Turn::Failed;
    if (lstat(m_name.c_str(), &named) != 0) return errno == ENOENT ? Turn::Again : Turn::Failed;
    if (held.st_dev != named.st_dev || held.st_ino != named.st_ino) return Turn::Again;
    // One that can't be written or has another name too isn't used but removed, while its lock is ours.
    if (bForeign || held.st_nlink > 1 || !S_ISREG(held.st_mode))
        return unlink(m_name.c_str()) == 0 ? Retry() : Turn::Failed;
    m_bOurs = true;
    return Turn::Ours;
}

// After what should be gone at the next try. Where it never is, as in a directory that can't be written,
// there is an end to it.
FileReplacement::Turn FileReplacement::Retry() noexcept
{
    if (++m_retries <= kMaxRetries) return Turn::Again;
    errno = EACCES;
    return Turn::Failed;
}

// Where the group can't be kept, its members get no more than everyone.
void FileReplacement::PassOnStatus()
{
    struct stat old = {};
    struct stat made = {};
    if (stat(m_target.c_str(), &old) != 0 || fstat(m_lock.Get(), &made) != 0) return;
    mode_t mode = old.st_mode & 07777;
    if (made.st_uid != old.st_uid && fchown(m_lock.Get(), old.st_uid, old.st_gid) == 0)
        made.st_gid = old.st_gid;
    if (made.st_gid != old.st_gid && fchown(m_lock.Get(), static_cast<uid_t>(-1), old.st_gid) != 0)
        mode &= ~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3);
    fchmod(m_lock.Get(), mode);
}

DWORD FileReplacement::Commit(std::string_view text)
{
    if (ftruncate(m_lock.Get(), 0) != 0) return ErrorFromErrno(errno);
    PassOnStatus();
    if (const int error = WriteAll(m_lock.Get(), text.data(), text.size())) return ErrorFromErrno(error);
    if (fdatasync(m_lock.Get()) != 0) return ErrorFromErrno(errno);
    if (rename(m_name.c_str(), m_target.c_str()) != 0) return ErrorFromErrno(errno);
    m_bOurs = false;
    return ERROR_SUCCESS;
}

} // namespace kx::profile
