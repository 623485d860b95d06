#include "platform/profile/IniCache.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace kx::profile {

CachedIni::CachedIni(std::string path, const FileStamp& read, const timespec& now, std::string text,
                     unsigned nowGeneration)
    : system(std::move(path)),
      stamp(read),
      bSettled(read.IsSettled(now)),
      generation(nowGeneration),
      ini(std::move(text))
{
}

bool CachedIni::IsCurrent(unsigned nowGeneration) const noexcept
{
    struct stat status;
    return bSettled && generation == nowGeneration && ::stat(system.c_str(), &status) == 0 &&
           stamp.IsOf(status);
}

CachedIniPtr IniCache::Find(std::string_view name) const
{
    const std::shared_lock lock(m_lock);
    const auto file = m_files.find(name);
    if (file == m_files.end()) return nullptr;
    // Readers of one file write nothing here, so they don't slow each other.
    auto& lastUse = file->second->lastUse;
    if (lastUse.load(std::memory_order_relaxed) != m_uses.load(std::memory_order_relaxed))
        lastUse.store(m_uses.fetch_add(1, std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    return file->second;
}

void IniCache::Put(std::string_view name, CachedIniPtr file)
{
    const std::size_t bytes = file->ini.Bytes();
    const std::unique_lock lock(m_lock);
    if (const auto old = m_files.find(name); old != m_files.end()) Remove(old);
    if (bytes > kMaxBytes) return;
    while (m_files.size() >= kMaxFiles || m_bytes + bytes > kMaxBytes)
        Remove(std::min_element(m_files.begin(), m_files.end(), [](const auto& a, const auto& b) {
            return a.second->lastUse.load(std::memory_order_relaxed) <
                   b.second->lastUse.load(std::memory_order_relaxed);
        }));
    file->lastUse = ++m_uses;
    m_files.emplace(name, std::move(file));
    m_bytes += bytes;
}

void IniCache::Remove(Files::iterator file)
{
    m_bytes -= file->second->ini.Bytes();
    m_files.erase(file);
}

} // namespace kx::profile
