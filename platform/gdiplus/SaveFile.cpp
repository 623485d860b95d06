#include "platform/gdiplus/SaveFile.h"

#include "platform/Errno.h"
#include "platform/files/NewFile.h"
#include "platform/files/OpenFile.h"
#include "platform/files/Path.h"
#include "platform/files/ReadFile.h"
#include "platform/gdiplus/WidePath.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace kx::gdiplus {

namespace {

Gdiplus::Status FailWith(int nErrno) noexcept
{
    if (nErrno == EISDIR || nErrno == EROFS) return Gdiplus::AccessDenied;
    return StatusOf(ErrorFromErrno(nErrno));
}

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

// The permissions that the file will have; 0 where it may not be made, with `errno`.
mode_t ModeFor(const std::string& path)
{
    struct stat old
    {
    };
    if (stat(path.c_str(), &old) != 0) return errno == ENOENT ? 0666 & ~ModeMask() : 0;
    if (!S_ISREG(old.st_mode)) errno = EISDIR;
    const bool bMay = S_ISREG(old.st_mode) && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
    return bMay ? old.st_mode & 0777 : 0;
}

} // namespace

Gdiplus::Status SaveFile(const WCHAR* pszPath, std::span<const std::uint8_t> bytes)
{
    const auto named = path::Resolve(ToCodePage(pszPath).c_str());
    if (!named) return StatusOf(GetLastError());
    if (named->trailing || named->root) return Gdiplus::AccessDenied;
    std::error_code none;
    auto behindLinks = std::filesystem::canonical(named->system, none);
    const std::string target = none ? named->system : std::move(behindLinks).native();

    const mode_t mode = ModeFor(target);
    if (mode == 0) return FailWith(errno);
    NewFile file(path::DirectoryOf(target));
    if (!file || fchmod(file.Fd(), mode) != 0) return FailWith(errno);
    const int nFailed = WriteAll(file.Fd(), bytes.data(), bytes.size());
    if (nFailed != 0) return FailWith(nFailed);
    return file.Publish(target, true) ? Gdiplus::Ok : FailWith(errno);
}

} // namespace kx::gdiplus
