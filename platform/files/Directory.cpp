#include "platform/files/Directory.h"

#include <fcntl.h>
#include <sys/stat.h>

std::optional<kx::Directory::Entry> kx::Directory::Next() noexcept
{
    while (const dirent* entry = m_dir ? readdir(m_dir.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") return Entry{name, entry->d_type};
    }
    return std::nullopt;
}

bool kx::Directory::IsDirectory(const Entry& entry) const noexcept
{
    if (entry.type != DT_LNK && entry.type != DT_UNKNOWN) return entry.type == DT_DIR;
    struct stat info;
    return fstatat(Fd(), entry.name.data(), &info, 0) == 0 && S_ISDIR(info.st_mode);
}
