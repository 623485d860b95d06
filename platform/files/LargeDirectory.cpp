#include "platform/files/LargeDirectory.h"

#include "platform/text/Conversion.h"

#include <algorithm>
#include <array>
#include <functional>
#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace kx::files {

namespace {

constexpr std::size_t kMaxNames = 2'000'000; // for the memory

constexpr std::uint32_t kAdded = IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t kRemoved = IN_DELETE | IN_MOVED_FROM;

// Whether all changes of a directory's file system go through this kernel, which then tells of them.
bool IsLocal(int fd)
{
    constexpr std::array<decltype(statfs::f_type), 6> kLocal{EXT4_SUPER_MAGIC,  XFS_SUPER_MAGIC,
                                                             BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC,
                                                             TMPFS_MAGIC,       OVERLAYFS_SUPER_MAGIC};
    struct statfs info;
    return fstatfs(fd, &info) == 0 && std::find(kLocal.begin(), kLocal.end(), info.f_type) != kLocal.end();
}

std::size_t HashOf(std::string_view folded) noexcept
{
    return std::hash<std::string_view>()(folded);
}

} // namespace

// Watches a directory and then reads it, so that no change is missed. An entry that went meanwhile may not
// have been read, so its removal isn't counted: a name too many costs a walk, one too few would hide a file.
std::unique_ptr<LargeDirectory> LargeDirectory::Open(const std::string& directory)
{
    Directory entries(directory.c_str());
    struct stat info;
    if (!entries || fstat(entries.Fd(), &info) != 0 || !IsLocal(entries.Fd())) return nullptr;
    std::unique_ptr<LargeDirectory> opened(new LargeDirectory({info.st_dev, info.st_ino}));
    opened->m_process = getpid();
    opened->m_notices.Reset(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    const std::string path = "/proc/self/fd/" + std::to_string(entries.Fd());
    if (!opened->m_notices || inotify_add_watch(opened->m_notices.Get(), path.c_str(), kAdded | kRemoved) < 0)
        return nullptr;
    while (const auto entry = entries.Next()) {
        opened->Add(entry->name);
        if (opened->m_names.size() > kMaxNames) return nullptr;
    }
    return opened->CatchUp(false) ? std::move(opened) : nullptr;
}

void LargeDirectory::Add(std::string_view name)
{
    m_names.insert(HashOf(text::FoldCase(name)));
}

void LargeDirectory::Remove(std::string_view name)
{
    const auto found = m_names.find(HashOf(text::FoldCase(name)));
    if (found != m_names.end()) m_names.erase(found);
}

bool LargeDirectory::MayHold(std::string_view folded, bool& bLost)
{
    const bool bKnown = getpid() == m_process && CatchUp(true);
    bLost = !bKnown;
    return bLost || m_names.contains(HashOf(folded));
}

// Takes in what the system told since; false where it kept no count, or the directory is gone.
bool LargeDirectory::CatchUp(bool bRemovals)
{
    alignas(inotify_event) std::array<char, 16384> events;
    ssize_t got = 0;
    while ((got = read(m_notices.Get(), events.data(), events.size())) > 0)
        for (const char* next = events.data(); next < events.data() + got;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(next);
            if (event.mask & (IN_Q_OVERFLOW | IN_IGNORED)) return false;
            const std::string_view name(event.len > 0 ? event.name : "");
            if (event.mask & kAdded) Add(name);
            if ((event.mask & kRemoved) && bRemovals) Remove(name);
            next += sizeof(event) + event.len;
        }
    return m_names.size() <= kMaxNames;
}

} // namespace kx::files
