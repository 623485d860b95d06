#include "platform/module/RegularFile.h"

#include "platform/Errno.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"

#include <sys/stat.h>
#include <unistd.h>

namespace kx::module {

std::optional<RegularFile> RegularFile::Open(const char* pszPath)
{
    auto path = files::ToSystem(pszPath);
    if (!path) return std::nullopt;
    struct stat info = {};
    UniqueFd fd = files::OpenRegularFile(*path, info);
    if (!fd) {
        FailErrno();
        return std::nullopt;
    }
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
