#include "platform/files/NameCache.h"

#include "platform/Immortal.h"
#include "platform/UniqueFd.h"
#include "platform/files/Directory.h"
#include "platform/sync/Fork.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <linux/magic.h>
#include <list>
#include <mutex>
#include <set>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <utility>

namespace kx::path {

namespace {

constexpr std::size_t kLarge = 256;        // entries from which a directory is worth it
constexpr std::size_t kTooLarge = 100'000; // and no longer, for the memory
constexpr std::size_t kMaxDirectories = 4;

constexpr std::uint32_t kAdded = IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t kRemoved = IN_DELETE | IN_MOVED_FROM;

using Identity = std::pair<dev_t, ino_t>;

std::optional<Identity> IdentityOf(const std::string& directory)
{
    struct stat info;
    if (stat(directory.c_str(), &info) != 0) return std::nullopt;
    return Identity(info.st_dev, info.st_ino);
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

bool EqualsFolded(std::string_view entry, std::string_view folded)
{
    if (!text::IsAscii(entry)) return text::FoldCase(entry) == folded;
    return std::equal(entry.begin(), entry.end(), folded.begin(), folded.end(),
                      [](char a, char b) { return text::ToLower(a) == b; });
}

bool IsDirectory(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Walks through the directory; `count` becomes the number of its entries.
std::optional<std::string> Walk(const std::string& directory, std::string_view folded, bool bDirectory,
                                std::size_t& count)
{
    Directory entries(directory.c_str());
    std::optional<std::string> found;
    for (count = 0; const auto entry = entries.Next(); ++count) {
        if (!EqualsFolded(entry->name, folded) || (found && *found <= entry->name)) continue;
        if (!bDirectory || entries.IsDirectory(*entry)) found = entry->name;
    }
    return found;
}

// The names of one directory while it is watched.
struct Listing
{
    Identity identity;
    int watch = -1;
    std::set<std::pair<std::string, std::string>> names; // folded, and as they are

    void Add(std::string_view name) { names.emplace(text::FoldCase(name), name); }
    void Remove(std::string_view name) { names.erase({text::FoldCase(name), std::string(name)}); }
};

class NameCache
{
public:
    std::mutex& Lock() noexcept { return m_lock; }
    std::optional<std::string> Find(const std::string& directory, std::string_view folded, bool bDirectory)
    {
        const std::lock_guard lock(m_lock);
        const auto identity = IdentityOf(directory);
        if (!identity) return std::nullopt;
        CatchUp();
        if (const Listing* listing = Listed(directory, *identity)) {
            auto name = listing->names.lower_bound({std::string(folded), ""});
            for (; name != listing->names.end() && name->first == folded; ++name)
                if (!bDirectory || IsDirectory(directory + "/" + name->second)) return name->second;
            return std::nullopt;
        }
        std::size_t count = 0;
        auto found = Walk(directory, folded, bDirectory, count);
        if (count >= kLarge && count <= kTooLarge) Remember(*identity);
        return found;
    }

private:
    // The listing of a directory that has one or was found large before; null for others.
    const Listing* Listed(const std::string& directory, const Identity& identity)
    {
        const auto known = std::find_if(m_listings.begin(), m_listings.end(),
                                        [&](const Listing& listing) { return listing.identity == identity; });
        if (known != m_listings.end())
            m_listings.splice(m_listings.begin(), m_listings, known);
        else if (std::find(m_large.begin(), m_large.end(), identity) == m_large.end() ||
                 !Open(directory, identity))
            return nullptr;
        return &m_listings.front();
    }

    void Remember(const Identity& identity)
    {
        m_large.push_front(identity);
        if (m_large.size() > kMaxDirectories) m_large.pop_back();
    }

    // Watches a directory and then reads it, so that no change is missed. The new listing is the first.
    bool Open(const std::string& directory, const Identity& identity)
    {
        if (!m_notices) m_notices.Reset(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
        Directory entries(directory.c_str());
        struct stat info;
        if (!m_notices || !entries || fstat(entries.Fd(), &info) != 0 || !IsLocal(entries.Fd()) ||
            Identity(info.st_dev, info.st_ino) != identity)
            return false;
        const std::string opened = "/proc/self/fd/" + std::to_string(entries.Fd());
        Listing listing{identity, inotify_add_watch(m_notices.Get(), opened.c_str(), kAdded | kRemoved), {}};
        if (listing.watch < 0) return false;
        while (const auto entry = entries.Next())
            listing.Add(entry->name);
        m_listings.push_front(std::move(listing));
        if (m_listings.size() > kMaxDirectories) Drop(std::prev(m_listings.end()));
        return true;
    }

    void Drop(std::list<Listing>::iterator listing)
    {
        inotify_rm_watch(m_notices.Get(), listing->watch);
        m_listings.erase(listing);
    }

    // Takes in what the system told since. The child of a fork shares the queue and leaves it to its parent.
    void CatchUp()
    {
        if (std::exchange(m_process, getpid()) != getpid()) Forget();
        alignas(inotify_event) std::array<char, 16384> events;
        ssize_t got = 0;
        while (m_notices && (got = read(m_notices.Get(), events.data(), events.size())) > 0)
            for (const char* next = events.data(); next < events.data() + got;) {
                const auto& event = *reinterpret_cast<const inotify_event*>(next);
                if (event.mask & IN_Q_OVERFLOW) return Forget();
                TakeIn(event);
                next += sizeof(event) + event.len;
            }
    }

    void TakeIn(const inotify_event& event)
    {
        const auto listing = std::find_if(m_listings.begin(), m_listings.end(),
                                          [&](const Listing& known) { return known.watch == event.wd; });
        if (listing == m_listings.end()) return;
        const std::string_view name(event.len > 0 ? event.name : "");
        if (event.mask & kAdded) listing->Add(name);
        if (event.mask & kRemoved) listing->Remove(name);
        if (event.mask & IN_IGNORED)
            m_listings.erase(listing); // the directory or its file system is gone
        else if (listing->names.size() > kTooLarge)
            Drop(listing);
    }

    void Forget()
    {
        m_notices.Reset();
        m_listings.clear();
        m_large.clear();
    }

    std::mutex m_lock;
    UniqueFd m_notices;
    std::list<Listing> m_listings; // the last used first
    std::list<Identity> m_large;   // the last found first
    pid_t m_process = 0;
};

NameCache& TheCache()
{
    static Immortal<NameCache> cache;
    return cache.Get();
}

[[maybe_unused]] const bool g_atFork = sync::LockAtFork < []() -> auto&
{
    return TheCache().Lock();
}
> (sync::ForkOrder::Names);

} // namespace

std::optional<std::string> FindEntry(const std::string& directory, std::string_view folded, bool bDirectory)
{
    return TheCache().Find(directory, folded, bDirectory);
}

} // namespace kx::path
