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
#include <memory>
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

constexpr std::size_t kLarge = 256;        // entries from which a directory is worth it
constexpr std::size_t kMaxDirectories = 4; // each has a file descriptor

bool Exists(const std::string& path)
{
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

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

// A directory by what stays the same however it is spelled.
using DirectoryId = std::pair<dev_t, ino_t>;

// The names that a large directory may hold are kept up to date by the system's notices. A new file's name
// isn't there in any case, and a walk through all names for each would make the filling of a directory
// quadratic. Names are kept by the hash of their folded form, so that a million takes some 40 MB. Not for
// several threads at once.
class LargeDirectory
{
public:
    // Null where changes might go unnoticed, as on a file system that others change too.
    //
    // Watches a directory and then reads it, so that no change is missed. An entry that went meanwhile may
    // not have been read, so its removal isn't counted: a name too many costs a walk, one too few would hide
    // a file.
    static std::unique_ptr<LargeDirectory> Open(const std::string& directory)
    {
        Directory entries(directory.c_str());
        struct stat info;
        if (!entries || fstat(entries.Fd(), &info) != 0 || !IsLocal(entries.Fd())) return nullptr;
        std::unique_ptr<LargeDirectory> opened(new LargeDirectory({info.st_dev, info.st_ino}));
        opened->m_process = getpid();
        opened->m_notices.Reset(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
        const std::string path = "/proc/self/fd/" + std::to_string(entries.Fd());
        if (!opened->m_notices ||
            inotify_add_watch(opened->m_notices.Get(), path.c_str(), kAdded | kRemoved) < 0)
            return nullptr;
        while (const auto entry = entries.Next()) {
            opened->Add(entry->name);
            if (opened->m_names.size() > kMaxNames) return nullptr;
        }
        return opened->CatchUp(false) ? std::move(opened) : nullptr;
    }

    const DirectoryId& Id() const noexcept { return m_id; }
    // Whether an entry may have that name but for the case, by all changes up to now. Nothing is known any
    // more once `bLost` becomes true.
    bool MayHold(std::string_view folded, bool& bLost)
    {
        const bool bKnown = getpid() == m_process && CatchUp(true);
        bLost = !bKnown;
        return bLost || m_names.contains(HashOf(folded));
    }

private:
    explicit LargeDirectory(const DirectoryId& id) noexcept : m_id(id) {}

    void Add(std::string_view name) { m_names.insert(HashOf(text::FoldCase(name))); }
    void Remove(std::string_view name)
    {
        const auto found = m_names.find(HashOf(text::FoldCase(name)));
        if (found != m_names.end()) m_names.erase(found);
    }
    // Takes in what the system told since; false where it kept no count, or the directory is gone.
    bool CatchUp(bool bRemovals)
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

    DirectoryId m_id;
    UniqueFd m_notices;
    pid_t m_process = 0; // the child of a fork shares the notices and leaves them to its parent
    std::unordered_multiset<std::size_t> m_names;
};

// The large directories in which names were missed last.
class LargeDirectories
{
public:
    // Whether the directory may hold the name; true where that isn't known.
    bool MayHold(const std::string& directory, std::string_view folded)
    {
        struct stat info;
        if (stat(directory.c_str(), &info) != 0) return false;
        const DirectoryId id(info.st_dev, info.st_ino);
        const sync::MutexLock lock(m_lock);
        const auto known = std::find_if(m_known.begin(), m_known.end(),
                                        [&](const auto& large) { return large->Id() == id; });
        if (known == m_known.end()) return true;
        m_known.splice(m_known.begin(), m_known, known);
        bool bLost = true; // also for lack of memory, by which changes are lost
        bool bMayHold = true;
        try {
            bMayHold = m_known.front()->MayHold(folded, bLost);
        } catch (const std::bad_alloc&) {
        }
        if (bLost) m_known.pop_front();
        return bMayHold;
    }

    void Remember(std::unique_ptr<LargeDirectory> directory)
    {
        if (!directory) return;
        const sync::MutexLock lock(m_lock);
        for (const auto& large : m_known)
            if (large->Id() == directory->Id()) return; // another thread was first
        m_known.push_front(std::move(directory));
        if (m_known.size() > kMaxDirectories) m_known.pop_back();
    }

    sync::Mutex& Lock() noexcept KX_RETURN_LOCK(m_lock) { return m_lock; }

private:
    sync::Mutex m_lock;
    std::list<std::unique_ptr<LargeDirectory>> m_known KX_GUARDED_BY(m_lock); // the last used first
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
    if (!found && count >= kLarge) The<LargeDirectories>().Remember(LargeDirectory::Open(directory));
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
