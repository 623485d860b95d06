#include "platform/profile/FileText.h"

#include "platform/Errno.h"
#include "platform/UniqueFd.h"

#include <fcntl.h>

namespace kx::profile {

namespace {

DWORD CheckReadable(const struct stat& status) noexcept
{
    const bool bReadable = S_ISREG(status.st_mode) && status.st_size <= static_cast<off_t>(kMaxFile);
    return bReadable ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

// Up to the size that the file had; a file cut short meanwhile gives what is left of it.
DWORD ReadAll(int fd, std::size_t size, std::string& text)
{
    text.resize(size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = RetryEintr([&] { return read(fd, text.data() + done, size - done); });
        if (got < 0) return ErrorFromErrno(errno);
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    text.resize(done);
    return ERROR_SUCCESS;
}

} // namespace

DWORD ReadFileText(const std::string& path, FileText& file)
{
    const timespec now = FileTime();
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return ErrorFromErrno(errno);
    if (const DWORD error = CheckReadable(status)) return error;

    // What stands there may have changed since.
    const UniqueFd fd(
        RetryEintr([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    if (!fd || fstat(fd.Get(), &status) != 0) return ErrorFromErrno(errno);
    if (const DWORD error = CheckReadable(status)) return error;

    file.stamp = FileStamp(status);
    file.bSettled = file.stamp.IsSettled(now);
    return ReadAll(fd.Get(), static_cast<std::size_t>(status.st_size), file.text);
}

} // namespace kx::profile
