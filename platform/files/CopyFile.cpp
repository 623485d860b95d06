#include "include/platform/File.h"
#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/File.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A part of a file, as much of it as there is: within the kernel where it can; a file of `/proc` or one of
// another file system may have to pass through here.
bool CopyRange(int source, int target, off_t begin, off_t end)
{
    constexpr off_t kStep = off_t{1} << 30;
    off_t at = begin;
    off_t put = begin;
    while (at < end && copy_file_range(source, &at, target, &put,
                                       static_cast<std::size_t>(std::min(end - at, kStep)), 0) > 0) {
    }
    if (at < end && lseek(target, at, SEEK_SET) < 0) return false;
    std::array<char, std::size_t{64} << 10> block;
    while (at < end) {
        const auto want = std::min(block.size(), static_cast<std::size_t>(end - at));
        const ssize_t got = kx::RetryEintr([&] { return pread(source, block.data(), want, at); });
        if (got <= 0) return got == 0;
        errno = kx::files::WriteAll(target, block.data(), static_cast<std::size_t>(got));
        if (errno != 0) return false;
        at += got;
    }
    return true;
}

// Holes stay holes.
bool CopyContent(int source, int target, off_t size)
{
    constexpr off_t kEnd = std::numeric_limits<off_t>::max();
    if (size == 0) return CopyRange(source, target, 0, kEnd); // or of a size that isn't told
    for (off_t at = 0; at < size;) {
        const off_t data = lseek(source, at, SEEK_DATA);
        if (data < 0 && errno == ENXIO) return ftruncate(target, size) == 0;
        const off_t hole = data < 0 ? -1 : lseek(source, data, SEEK_HOLE);
        if (hole < 0) return CopyRange(source, target, at, kEnd); // the file system doesn't tell
        if (!CopyRange(source, target, data, hole)) return false;
        at = hole;
    }
    return true;
}

// Content, permissions and time; the last two as far as the target's file system has them. The permissions
// come first, so that nobody reads of the content who may not.
bool CopyInto(int source, int target, const struct stat& info)
{
    static_cast<void>(fchmod(target, info.st_mode & 0777) == 0);
    if (!CopyContent(source, target, info.st_size)) return false;
    const std::array<timespec, 2> times{info.st_atim, info.st_mtim};
    futimens(target, times.data());
    return true;
}

// Whether a target may be replaced, where it exists at all: not for another's writer that doesn't share it.
int CheckTarget(const std::string& target, const struct stat& source)
{
    const auto attributes = kx::files::ReadAttributes(target);
    if (!attributes) return errno == ENOENT || kx::files::FailAt(target);
    if (*attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM))
        return kx::Fail(ERROR_ACCESS_DENIED);
    struct stat info;
    if (stat(target.c_str(), &info) != 0) return 1; // a link to nothing
    if (info.st_dev == source.st_dev && info.st_ino == source.st_ino)
        return kx::Fail(ERROR_SHARING_VIOLATION);
    const unsigned access = CFile::modeWrite | CFile::shareDenyWrite;
    return kx::files::OpenFile(target, access) || kx::files::FailAt(target);
}

int CopyRegular(const std::string& source, const std::string& target, bool bFailIfExists)
{
    struct stat info;
    const kx::UniqueFd from = kx::files::OpenRegularFile(source, info);
    if (!from) return kx::files::FailAt(source);
    if (!bFailIfExists && !CheckTarget(target, info)) return 0;

    using kx::files::FileReplacement;
    FileReplacement copy(bFailIfExists ? FileReplacement::Existing::Refused
                                       : FileReplacement::Existing::Replaced);
    struct stat old;
    const bool bNew = stat(target.c_str(), &old) != 0;
    DWORD error = copy.Begin(target, S_IRUSR | S_IWUSR);
    if (error == ERROR_SUCCESS && !CopyInto(from.Get(), copy.Fd(), info)) return kx::FailErrno();
    // A copy that takes no file's place can be made again, so nobody waits for the disk.
    if (error == ERROR_SUCCESS) error = copy.Commit(!bNew);
    if (error == ERROR_SUCCESS) return 1;
    return kx::Fail(bFailIfExists && error == ERROR_ALREADY_EXISTS ? ERROR_FILE_EXISTS : error);
}

int CopyLink(const std::string& source, const std::string& target, bool bFailIfExists)
{
    std::error_code error;
    const auto text = std::filesystem::read_symlink(source, error);
    if (error) return kx::Fail(ERROR_FILE_NOT_FOUND);
    if (!bFailIfExists) {
        struct stat none
        {
        };
        if (!CheckTarget(target, none)) return 0;
        const std::string part =
            target.substr(0, target.rfind('/') + 1) + ".kx" + std::to_string(gettid()) + ".kxnew";
        unlink(part.c_str()); // of a copy that was killed
        if (symlink(text.c_str(), part.c_str()) == 0) {
            if (rename(part.c_str(), target.c_str()) == 0) return 1; // a link has no content to be lost
            unlink(part.c_str());
        }
        return kx::files::FailAt(target);
    }
    if (symlink(text.c_str(), target.c_str()) == 0) return 1;
    return errno == EEXIST ? kx::Fail(ERROR_FILE_EXISTS) : kx::files::FailAt(target);
}

} // namespace

int CopyFileA(const char* pszSource, const char* pszTarget, int bFailIfExists)
try {
    const auto source = kx::files::Resolve(pszSource);
    const auto target = source ? kx::files::Resolve(pszTarget) : std::nullopt;
    if (!target) return 0;
    const auto attributes = kx::files::ReadAttributes(source->system);
    if (!attributes) return kx::files::FailAt(source->system);
    if (source->trailing || target->trailing) return kx::Fail(ERROR_DIRECTORY);
    const DWORD kind =
        *attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_REPARSE_POINT);
    if (kind == (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT))
        return CopyLink(source->system, target->system, bFailIfExists != 0);
    if (kind & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM)) return kx::Fail(ERROR_ACCESS_DENIED);
    return CopyRegular(source->system, target->system, bFailIfExists != 0);
} catch (...) {
    return kx::NoMemory();
}
