#pragma once

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace kx::files {

// Reads a directory's entries, `.` and `..` left out. A directory that can't be opened has none.
class Directory
{
public:
    struct Entry
    {
        std::string_view name; // until the next call of Next
        unsigned char type;    // a DT_... number
    };

    Directory() = default;
    // `errno` tells why a directory didn't open, but for a lack of memory, which is thrown.
    explicit Directory(const char* pszPath) : m_dir(opendir(pszPath))
    {
        if (!m_dir && errno == ENOMEM) throw std::bad_alloc();
    }

    explicit operator bool() const noexcept { return m_dir != nullptr; }
    // Nothing at the end, also where reading fails.
    std::optional<Entry> Next() noexcept
    {
        while (const dirent* entry = m_dir ? readdir(m_dir.get()) : nullptr) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") return Entry{name, entry->d_type};
        }
        return std::nullopt;
    }
    // Whether an entry just read is a directory or a link to one.
    bool IsDirectory(const Entry& entry) const noexcept
    {
        if (entry.type != DT_LNK && entry.type != DT_UNKNOWN) return entry.type == DT_DIR;
        struct stat info;
        return fstatat(Fd(), entry.name.data(), &info, 0) == 0 && S_ISDIR(info.st_mode);
    }
    // For calls that take names relative to it; the current directory's where it isn't open.
    int Fd() const noexcept { return m_dir ? dirfd(m_dir.get()) : AT_FDCWD; }

private:
    struct Closer
    {
        void operator()(DIR* dir) const noexcept { closedir(dir); }
    };

    std::unique_ptr<DIR, Closer> m_dir;
};

} // namespace kx::files
