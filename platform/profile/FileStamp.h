#pragma once

#include <ctime>
#include <sys/stat.h>
#include <sys/types.h>

namespace kx::profile {

// What tells one state of a file from another without reading it.
struct FileStamp
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified{};
    timespec changed{};

    FileStamp() = default;
    explicit FileStamp(const struct stat& status) noexcept
        : device(status.st_dev),
          inode(status.st_ino),
          size(status.st_size),
          modified(status.st_mtim),
          changed(status.st_ctim)
    {
    }

    bool IsOf(const struct stat& status) const noexcept
    {
        return inode == status.st_ino && device == status.st_dev && size == status.st_size &&
               Same(modified, status.st_mtim) && Same(changed, status.st_ctim);
    }

    // Whether every change made after the instant `now` shows in the stamp. The kernel's time goes by ticks,
    // so a file changed in the tick of its last change, to the same size, keeps its stamp; only once that
    // tick is over does an equal stamp mean an equal file.
    bool IsSettled(const timespec& now) const noexcept;

private:
    static bool Same(const timespec& a, const timespec& b) noexcept
    {
        return a.tv_nsec == b.tv_nsec && a.tv_sec == b.tv_sec;
    }
};

// The kernel's time as it stamps files.
timespec FileTime() noexcept;

} // namespace kx::profile
