#include "include/platform/File.h"
#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/EntryInfo.h"
#include "platform/files/NewFile.h"
#include "platform/files/OpenFile.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

// Within the kernel where it can; a file of `/proc` or one of another file system may have to pass through
// here.
bool CopyContent(int source, int target)
{
    constexpr std::size_t kStep = std::size_t{1} << 30;
    ssize_t copied = 0;
    bool bAny = false;
    while ((copied = copy_file_range(source, nullptr, target, nullptr, kStep, 0)) > 0)
        bAny = true;
    if (copied == 0 && bAny) return true;
    std::array<char, std::size_t{64} << 10> block;
    for (;;) {
        const ssize_t got = kx::RetryEintr([&] { return read(source, block.data(), block.size()); });
        if (got <= 0) return got == 0;
        errno = kx::WriteAll(target, block.data(), static_cast<std::size_t>(got));
        if (errno != 0) return false;
    }
}

// Content, permissions and time; the last two as far as the target's file system has them.
bool CopyInto(int source, int target, const struct stat& info)
{
    if (!CopyContent(source, target)) return false;
    static_cast<void>(fchmod(target, info.st_mode & 0777) == 0);
    const std::array<timespec, 2> times{info.st_atim, info.st_mtim};
    futimens(target, times.data());
    return true;
}

// Whether a target may be replaced, where it exists at all: not for another's writer that doesn't share it.
int CheckTarget(const std::string& target, const struct stat& source)
{
    const auto attributes = kx::path::ReadAttributes(target);
    if (!attributes) return errno == ENOENT || kx::path::FailAt(target);
    if (*attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM))
        return kx::Fail(ERROR_ACCESS_DENIED);
    struct stat info;
    if (stat(target.c_str(), &info) != 0) return 1; // a link to nothing
    if (info.st_dev == source.st_dev && info.st_ino == source.st_ino)
        return kx::Fail(ERROR_SHARING_VIOLATION);
    const unsigned access = CFile::modeWrite | CFile::shareDenyWrite;
    return kx::OpenFile(target, access) || kx::path::FailAt(target);
}

// The file that a target names, behind its links.
std::string BehindLinks(const std::string& path)
{
    std::error_code error;
    const auto real = std::filesystem::canonical(path, error);
    return error ? path : real.native();
}

int CopyRegular(const std::string& source, const std::string& target, bool bFailIfExists)
{
    const kx::UniqueFd from = kx::OpenFile(source, CFile::modeRead);
    struct stat info;
    if (!from || fstat(from.Get(), &info) != 0) return kx::path::FailAt(source);
    if (!S_ISREG(info.st_mode)) return kx::Fail(ERROR_ACCESS_DENIED);
    if (!bFailIfExists && !CheckTarget(target, info)) return 0;
    const std::string final = bFailIfExists ? target : BehindLinks(target);

    struct stat existing; // before the work, which it would be a pity to do in vain
    if (bFailIfExists && lstat(final.c_str(), &existing) == 0) return kx::Fail(ERROR_FILE_EXISTS);
    kx::NewFile copy(kx::path::DirectoryOf(final));
    if (copy && CopyInto(from.Get(), copy.Fd(), info) && copy.Publish(final, !bFailIfExists)) return 1;
    return errno == EEXIST ? kx::Fail(ERROR_FILE_EXISTS) : kx::path::FailAt(final);
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
        unlink(target.c_str());
    }
    if (symlink(text.c_str(), target.c_str()) == 0) return 1;
    return errno == EEXIST ? kx::Fail(ERROR_FILE_EXISTS) : kx::path::FailAt(target);
}

} // namespace

int CopyFileA(const char* pszSource, const char* pszTarget, int bFailIfExists)
{
    const auto source = kx::path::Resolve(pszSource);
    const auto target = source ? kx::path::Resolve(pszTarget) : std::nullopt;
    if (!target) return 0;
    const auto attributes = kx::path::ReadAttributes(source->system);
    if (!attributes) return kx::path::FailAt(source->system);
    if (source->trailing || target->trailing) return kx::Fail(ERROR_DIRECTORY);
    const DWORD kind =
        *attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_REPARSE_POINT);
    if (kind == (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT))
        return CopyLink(source->system, target->system, bFailIfExists != 0);
    if (kind & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM)) return kx::Fail(ERROR_ACCESS_DENIED);
    return CopyRegular(source->system, target->system, bFailIfExists != 0);
}
