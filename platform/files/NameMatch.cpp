#include "platform/files/Path.h"

#include "platform/Immortal.h"
#include "platform/UniqueFd.h"
#include "platform/files/Directory.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <array>
#include <functional>
#include <linux/magic.h>
#include <list>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>

namespace kx::files {

namespace {

constexpr std::size_t kLarge = 256;          // entries from which a directory is worth it
constexpr std::size_t kMaxDirectories = 4;   // each has a file descriptor
constexpr std::size_t kMaxNames = 2'000'000; // of a directory: some 80 MB
constexpr std::uint32_t kAdded = IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t kRemoved = IN_DELETE | IN_MOVED_FROM;

bool Exists(const std::string& path)
{
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

// Whether all changes of a directory's file system go through this kernel, which then tells of them.
bool IsLocal(int fd)
{
    constexpr std::array<decltype(statfs::f_type), 6> kLocal{EXT4_SUPER_MAGIC,  XFS_SUPER_MAGIC,
                                                             BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC,
                                                             TMPFS_MAGIC,       OVERLAYFS_SUPER_MAGIC};
    struct statfs info;
    return fstatfs(fd, &info) == 0 && std::find(kLocal.begin(), kLocal.end(), info.f_type) != kLocal.end();
}

// The names that a large directory may hold, by the hash of their folded form, kept up to date by the
// system's notices. A new file's name isn't there in any case, and changes the directory's time: a walk
// through all names for each would make the filling of a directory quadratic.
struct LargeDirectory
{
    explicit LargeDirectory(const struct stat& info) noexcept : id(info.st_dev, info.st_ino) {}

    const std::pair<dev_t, ino_t> id; // what stays the same however it is spelled
    const pid_t process = getpid();   // the child of a fork shares the notices and leaves them to its parent
    const UniqueFd notices{inotify_init1(IN_CLOEXEC | IN_NONBLOCK)};
    std::unordered_multiset<std::size_t> names;

    static std::size_t HashOf(std::string_view name)
    {
        return std::hash<std::string>()(text::FoldCase(name));
    }

    // Watches the directory and then reads it, so that no change is missed. An entry that went meanwhile may
    // not have been read, so its removal isn't counted: a name too many costs a walk, one too few would hide
    // a file. False where changes might go unnoticed, as on a file system that others change too.
    bool Read(Directory& entries)
    {
        const std::string path = "/proc/self/fd/" + std::to_string(entries.Fd());
        if (!IsLocal(entries.Fd()) || !notices ||
            inotify_add_watch(notices.Get(), path.c_str(), kAdded | kRemoved) < 0)
            return false;
        for (auto entry = entries.Next(); entry && names.size() <= kMaxNames; entry = entries.Next())
            names.insert(HashOf(entry->name));
        return CatchUp(false);
    }
    // Takes in what the system told since; false where it kept no count, or the directory is gone.
    bool CatchUp(bool bRemovals)
    {
        alignas(inotify_event) std::array<char, 16384> events;
        ssize_t got = 0;
        while ((got = read(notices.Get(), events.data(), events.size())) > 0)
            for (const char* next = events.data(); next < events.data() + got;) {
                const auto& event = *reinterpret_cast<const inotify_event*>(next);
                if (event.mask & (IN_Q_OVERFLOW | IN_IGNORED)) return false;
                const std::size_t hash = HashOf(event.len > 0 ? event.name : "");
                if (event.mask & kAdded) names.insert(hash);
                const auto gone = bRemovals && (event.mask & kRemoved) ? names.find(hash) : names.end();
                if (gone != names.end()) names.erase(gone);
                next += sizeof(event) + event.len;
            }
        return names.size() <= kMaxNames;
    }
};

// The large directories in which names were missed last.
class LargeDirectories
{
public:
    // Whether the directory may hold the name but for the case; true where that isn't known.
    bool MayHold(const std::string& directory, std::string_view folded)
    {
        struct stat info;
        if (stat(directory.c_str(), &info) != 0) return false;
        const sync::MutexLock lock(m_lock);
        const auto known =
            std::ranges::find(m_known, std::pair(info.st_dev, info.st_ino), &LargeDirectory::id);
        if (known == m_known.end()) return true;
        m_known.splice(m_known.begin(), m_known, known);
        try {
            if (known->process == getpid() && known->CatchUp(true))
                return known->names.contains(std::hash<std::string_view>()(folded));
        } catch (const std::bad_alloc&) { // by which changes are lost
        }
        m_known.pop_front();
        return true;
    }

    // The walk is done without the lock.
    void Remember(const std::string& directory)
    {
        Directory entries(directory.c_str());
        struct stat info;
        if (!entries || fstat(entries.Fd(), &info) != 0) return;
        std::list<LargeDirectory> one;
        if (!one.emplace_back(info).Read(entries)) return;
        const sync::MutexLock lock(m_lock);
        m_known.splice(m_known.begin(), one);
        if (m_known.size() > kMaxDirectories) m_known.pop_back();
    }

    sync::Mutex& Lock() noexcept KX_RETURN_LOCK(m_lock) { return m_lock; }

private:
    sync::Mutex m_lock;
    std::list<LargeDirectory> m_known KX_GUARDED_BY(m_lock); // the last used first
};

[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Names, []() -> sync::Mutex& { return The<LargeDirectories>().Lock(); });

bool EqualsFolded(std::string_view entry, std::string_view folded)
{
    if (!text::IsAscii(entry)) return text::FoldCase(entry) == folded;
    return std::equal(entry.begin(), entry.end(), folded.begin(), folded.end(),
                      [](char a, char b) { return text::ToLower(a) == b; });
}

// The entry of a directory that equals a name ignoring case, the lowest in byte order; with `bDirectory` a
// file doesn't count.
std::optional<std::string> FindEntry(const std::string& directory, std::string_view folded, bool bDirectory)
{
    if (!The<LargeDirectories>().MayHold(directory, folded)) return std::nullopt;
    Directory entries(directory.c_str());
    std::optional<std::string> found;
    std::size_t count = 0;
    for (; const auto entry = entries.Next(); ++count) {
        if (!EqualsFolded(entry->name, folded) || (found && *found <= entry->name)) continue;
        if (!bDirectory || entries.IsDirectory(*entry)) found = entry->name;
    }
    if (!found && count >= kLarge) The<LargeDirectories>().Remember(directory);
    return found;
}

} // namespace

bool MatchExisting(std::string& path, std::size_t fixed)
{
    if (path.size() <= fixed || Exists(path)) return false;
    // The longest head that exists as it stands; most often only the last component is missing.
    std::size_t end = path.rfind('/');
    while (end > fixed && !Exists(path.substr(0, end)))
        end = path.rfind('/', end - 1);

    bool bReplaced = false;
    for (std::size_t begin = end; begin < path.size(); begin = end) {
        end = std::min(path.find('/', begin + 1), path.size());
        if (bReplaced && Exists(path.substr(0, end))) continue;
        const std::string_view name = std::string_view(path).substr(begin + 1, end - begin - 1);
        const std::string directory = begin == 0 ? "/" : path.substr(0, begin);
        const auto entry = FindEntry(directory, text::FoldCase(name), end < path.size());
        if (!entry) break;
        path.replace(begin + 1, name.size(), *entry);
        end = begin + 1 + entry->size();
        bReplaced = true;
    }
    return bReplaced;
}

} // namespace kx::files
