#pragma once

#include "platform/profile/FileStamp.h"
#include "platform/profile/ParsedIni.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kx::profile {

// A larger file counts as unreadable, and none is made larger.
inline constexpr std::size_t kMaxFile = 16 * 1024 * 1024;

// A file as it was read.
struct CachedIni
{
    CachedIni(std::string path, const FileStamp& read, const timespec& now, std::string text,
              unsigned nowGeneration);

    std::string system; // its Linux path
    FileStamp stamp;
    bool bSettled;       // whether the stamp tells every change since
    unsigned generation; // of paths and code page
    ParsedIni ini;
    mutable std::atomic<std::uint64_t> lastUse{0};

    // Whether the file still is what was read, by one look at it.
    bool IsCurrent(unsigned nowGeneration) const noexcept;
};

using CachedIniPtr = std::shared_ptr<const CachedIni>;

// The files last read, under names of the caller's. Any thread.
class IniCache
{
public:
    static constexpr std::size_t kMaxFiles = 64;
    static constexpr std::size_t kMaxBytes = 32 * 1024 * 1024;

    // Null without it.
    CachedIniPtr Find(std::string_view name) const;
    // Takes it in, and the least recently used out while there are too many. One that is too large by itself
    // isn't kept.
    void Put(std::string_view name, CachedIniPtr file);

    std::shared_mutex& Lock() const noexcept { return m_lock; }

private:
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const noexcept
        {
            return std::hash<std::string_view>()(name);
        }
    };
    using Files = std::unordered_map<std::string, CachedIniPtr, Hash, std::equal_to<>>;

    void Remove(Files::iterator file);

    mutable std::shared_mutex m_lock;
    mutable std::atomic<std::uint64_t> m_uses{0};
    Files m_files;
    std::size_t m_bytes = 0;
};

} // namespace kx::profile
