#include "platform/files/ReplaceFile.h"

#include "platform/files/NewFile.h"
#include "platform/files/OpenFile.h"
#include "platform/files/Path.h"
#include "platform/files/ReadFile.h"
#include "platform/files/WholeFile.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace kx {

namespace {

// What a new file's permissions are without: it can only be asked by changing it, which other threads would
// see, or here.
mode_t ModeMask()
{
    constexpr std::size_t kLongest = 65536;
    const auto status = ReadFile("/proc/self/status", kLongest);
    const std::size_t at = status ? status->find("\nUmask:") : std::string::npos;
    if (at == std::string::npos) return S_IWGRP | S_IWOTH;
    return static_cast<mode_t>(std::strtoul(status->c_str() + at + 7, nullptr, 8));
}

// The permissions that the file will have; nothing where it may not be made, with `errno`.
std::optional<mode_t> ModeFor(const std::string& path)
{
    struct stat old
    {
    };
    if (stat(path.c_str(), &old) != 0)
        return errno == ENOENT ? std::optional(0666 & ~ModeMask()) : std::nullopt;
    if (!S_ISREG(old.st_mode)) {
        errno = EISDIR;
        return std::nullopt;
    }
    if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return std::nullopt;
    return old.st_mode & 0777;
}

} // namespace

int ReplaceFile(const std::string& systemPath, const void* pBytes, std::size_t nCount)
{
    std::error_code none;
    auto behindLinks = std::filesystem::canonical(systemPath, none);
    const std::string target = none ? systemPath : std::move(behindLinks).native();

    const auto mode = ModeFor(target);
    if (!mode) return errno;
    NewFile file(path::DirectoryOf(target));
    if (!file || fchmod(file.Fd(), *mode) != 0) return errno;
    const int nFailed = WriteAll(file.Fd(), pBytes, nCount);
    if (nFailed != 0) return nFailed;
    return file.Publish(target, true) ? 0 : errno;
}

} // namespace kx
