#include "platform/files/File.h"

#include "platform/Errno.h"
#include "platform/files/Path.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace kx::files {

namespace {

constexpr std::int64_t kSecondsTo1970 = 11'644'473'600; // from 1601
constexpr unsigned kWanted = STATX_BASIC_STATS | STATX_BTIME;

FILETIME ToFileTime(const statx_timestamp& time)
{
    const std::int64_t seconds = time.tv_sec + kSecondsTo1970;
    if (seconds < 0) return {};
    const auto steps = static_cast<std::uint64_t>(seconds) * 10'000'000 + time.tv_nsec / 100;
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

DWORD AttributesOf(mode_t mode, bool bHidden)
{
    DWORD attributes = bHidden ? FILE_ATTRIBUTE_HIDDEN : 0;
    if (S_ISDIR(mode))
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    else if (!S_ISREG(mode) && !S_ISLNK(mode))
        attributes |= FILE_ATTRIBUTE_SYSTEM;
    if (!S_ISLNK(mode) && (mode & 0222) == 0) attributes |= FILE_ATTRIBUTE_READONLY;
    return attributes;
}

} // namespace

std::optional<WIN32_FIND_DATAA> ReadEntryInfo(int fd, const char* pszPath, bool bHidden)
{
    struct statx entry;
    if (statx(fd, pszPath, AT_SYMLINK_NOFOLLOW, kWanted, &entry) != 0) return std::nullopt;
    WIN32_FIND_DATAA info{};
    info.dwFileAttributes = AttributesOf(entry.stx_mode, bHidden);
    if (S_ISLNK(entry.stx_mode)) {
        info.dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        struct statx target;
        if (statx(fd, pszPath, 0, kWanted, &target) == 0) {
            if (S_ISDIR(target.stx_mode)) info.dwFileAttributes |= FILE_ATTRIBUTE_DIRECTORY;
            entry = target;
        }
    }
    if (info.dwFileAttributes == 0) info.dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    info.ftCreationTime = ToFileTime((entry.stx_mask & STATX_BTIME) ? entry.stx_btime : entry.stx_mtime);
    info.ftLastAccessTime = ToFileTime(entry.stx_atime);
    info.ftLastWriteTime = ToFileTime(entry.stx_mtime);
    const std::uint64_t size = S_ISREG(entry.stx_mode) ? entry.stx_size : 0;
    info.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    info.nFileSizeLow = static_cast<DWORD>(size);
    return info;
}

std::optional<DWORD> ReadAttributes(const std::string& systemPath)
{
    const auto info = ReadEntryInfo(AT_FDCWD, systemPath.c_str(), LastName(systemPath).starts_with('.'));
    if (!info) return std::nullopt;
    return info->dwFileAttributes;
}

int FailAt(const std::string& systemPath)
{
    const DWORD dwError = ErrorFromErrno(errno);
    if (dwError != ERROR_FILE_NOT_FOUND) return Fail(dwError);
    struct stat info;
    const bool bDirectory = stat(DirectoryOf(systemPath).c_str(), &info) == 0;
    return Fail(bDirectory ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND);
}

} // namespace kx::files
