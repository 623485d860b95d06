#include "platform/module/RegularFile.h"

#include "platform/Errno.h"
#include "platform/files/Path.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kx::module {

std::optional<RegularFile> RegularFile::Open(const char* pszPath)
{
    auto path = path::ToSystem(pszPath);
    if (!path) return std::nullopt;
    const auto refuse = [](DWORD dwError) {
        SetLastError(dwError);
        return std::nullopt;
    };

    // Asked before opening, since opening some devices does something, and again after it, since the name may
    // mean another file by then; without waiting, for the same reason.
    struct stat info
    {
    };
    if (stat(path->c_str(), &info) != 0) return refuse(ErrorFromErrno(errno));
    if (!S_ISREG(info.st_mode)) return refuse(ERROR_ACCESS_DENIED);
    UniqueFd fd(
        RetryEintr([&] { return open(path->c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    if (!fd || fstat(fd.Get(), &info) != 0) return refuse(ErrorFromErrno(errno));
    if (!S_ISREG(info.st_mode)) return refuse(ERROR_ACCESS_DENIED);
    return RegularFile(std::move(fd), std::move(*path), static_cast<std::uint64_t>(info.st_size));
}

bool RegularFile::ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) const
{
    while (!target.empty()) {
        const ssize_t got = RetryEintr(
            [&] { return pread(m_fd.Get(), target.data(), target.size(), static_cast<off_t>(offset)); });
        if (got <= 0) return false;
        offset += static_cast<std::uint64_t>(got);
        target = target.subspan(static_cast<std::size_t>(got));
    }
    return true;
}

} // namespace kx::module
