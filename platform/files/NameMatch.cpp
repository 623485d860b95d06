#include "platform/files/Path.h"

#include "platform/Immortal.h"
#include "platform/files/Directory.h"
#include "platform/files/LargeDirectory.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <list>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace kx::files {

namespace {

constexpr std::size_t kLarge = 256;        // entries from which a directory is worth it
constexpr std::size_t kMaxDirectories = 4; // each has a file descriptor

bool Exists(const std::string& path)
{
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

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

LargeDirectories& TheLarge()
{
    static Immortal<LargeDirectories> large;
    return large.Get();
}

sync::Mutex& LockOfFork() noexcept
{
    return TheLarge().Lock();
}
[[maybe_unused]] const bool g_atFork = sync::LockAtFork<LockOfFork>(sync::ForkOrder::Names);

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
    if (!TheLarge().MayHold(directory, folded)) return std::nullopt;
    Directory entries(directory.c_str());
    std::optional<std::string> found;
    std::size_t count = 0;
    for (; const auto entry = entries.Next(); ++count) {
        if (!EqualsFolded(entry->name, folded) || (found && *found <= entry->name)) continue;
        if (!bDirectory || entries.IsDirectory(*entry)) found = entry->name;
    }
    if (!found && count >= kLarge) TheLarge().Remember(LargeDirectory::Open(directory));
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
