#pragma once

#include "include/KXExport.h"
#include "platform/profile/ParsedIni.h"
#include "platform/sync/Mutex.h"

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace kx::profile {

// The kernel's time as it stamps files.
timespec FileTime() noexcept;

// Whether every change made after the instant `now` shows in a file's status. The kernel's time goes by ticks
// of so many nanoseconds, so a file changed in the tick of its last change, to the same size, keeps its
// status; only once that tick is over does an equal status mean an equal file. The time of change is the one
// that counts: it can't be set by hand. A file system whose times have no fraction counts by seconds, or by
// two.
KX_API bool IsSettled(const struct stat& status, const timespec& now, std::int64_t tick) noexcept;

// A larger file counts as unreadable, and none is made larger.
inline constexpr std::size_t kMaxFile = 16 * 1024 * 1024;

// A file as it was read.
struct KX_API CachedIni
{
    // `read` tells of the file as it was then, at the instant `now` or later.
    CachedIni(std::string path, const struct stat& read, const timespec& now, std::string text,
              unsigned nowGeneration);

    std::string system; // its Linux path
    struct stat status;
    bool bSettled;       // whether the status tells every change since
    unsigned generation; // of paths and code page
    ParsedIni ini;

    // Whether the file still is what was read, by one look at it.
    bool IsCurrent(unsigned nowGeneration) const noexcept;
};

using CachedIniPtr = std::shared_ptr<const CachedIni>;

// The files last read, under names of the caller's. Any thread.
class KX_API IniCache
{
public:
    static constexpr std::size_t kMaxFiles = 64;
    static constexpr std::size_t kMaxBytes = 32 * 1024 * 1024;

    // Null without it.
    CachedIniPtr Find(std::string_view name);
    // Takes it in, and the least recently used out while there are too many. One that is too large by itself
    // isn't kept.
    void Put(std::string_view name, CachedIniPtr file);

    sync::Mutex& Lock() noexcept KX_RETURN_LOCK(m_lock) { return m_lock; }

private:
    struct CachedFile
    {
        CachedIniPtr file;
        std::uint64_t lastUse;
    };
    using Files = std::map<std::string, CachedFile, std::less<>>;

    void Remove(Files::iterator file) KX_REQUIRES(m_lock);

    sync::Mutex m_lock;
    Files m_files KX_GUARDED_BY(m_lock);
    std::uint64_t m_uses KX_GUARDED_BY(m_lock) = 0;
    std::size_t m_bytes KX_GUARDED_BY(m_lock) = 0;
};

} // namespace kx::profile
