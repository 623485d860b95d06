#include "platform/profile/IniCache.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kx::profile {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

std::int64_t Nanoseconds(const timespec& time) noexcept
{
    return static_cast<std::int64_t>(time.tv_sec) * kSecond + time.tv_nsec;
}

std::int64_t Tick() noexcept
{
    static const std::int64_t tick = [] {
        timespec resolution{};
        return clock_getres(CLOCK_REALTIME_COARSE, &resolution) == 0 ? Nanoseconds(resolution)
                                                                     : kSecond / 100;
    }();
    return tick;
}

bool IsSame(const struct stat& a, const struct stat& b) noexcept
{
    const auto same = [](const timespec& c, const timespec& d) {
        return c.tv_nsec == d.tv_nsec && c.tv_sec == d.tv_sec;
    };
    return a.st_ino == b.st_ino && a.st_dev == b.st_dev && a.st_size == b.st_size &&
           same(a.st_mtim, b.st_mtim) && same(a.st_ctim, b.st_ctim);
}

} // namespace

timespec FileTime() noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

bool IsSettled(const struct stat& status, const timespec& now, std::int64_t tick) noexcept
{
    const bool bWholeSeconds = status.st_mtim.tv_nsec == 0 && status.st_ctim.tv_nsec == 0;
    const std::int64_t unsettled = bWholeSeconds ? 2 * kSecond + 2 * tick : 2 * tick;
    return Nanoseconds(now) - Nanoseconds(status.st_ctim) > unsettled;
}

CachedIni::CachedIni(std::string path, const struct stat& read, const timespec& now, std::string text,
                     unsigned nowGeneration)
    : system(std::move(path)),
      status(read),
      bSettled(IsSettled(read, now, Tick())),
      generation(nowGeneration),
      ini(std::move(text))
{
}

bool CachedIni::IsCurrent(unsigned nowGeneration) const noexcept
{
    struct stat now;
    return bSettled && generation == nowGeneration && stat(system.c_str(), &now) == 0 && IsSame(now, status);
}

CachedIniPtr IniCache::Find(std::string_view name)
{
    const sync::MutexLock lock(m_lock);
    const auto file = m_files.find(name);
    if (file == m_files.end()) return nullptr;
    file->second.lastUse = ++m_uses;
    return file->second.file;
}

void IniCache::Put(std::string_view name, CachedIniPtr file)
{
    const std::size_t bytes = file->ini.Bytes();
    const sync::MutexLock lock(m_lock);
    if (const auto old = m_files.find(name); old != m_files.end()) Remove(old);
    if (bytes > kMaxBytes) return;
    while (m_files.size() >= kMaxFiles || m_bytes + bytes > kMaxBytes)
        Remove(std::min_element(m_files.begin(), m_files.end(), [](const auto& a, const auto& b) {
            return a.second.lastUse < b.second.lastUse;
        }));
    m_files.emplace(name, CachedFile{std::move(file), ++m_uses});
    m_bytes += bytes;
}

void IniCache::Remove(Files::iterator file)
{
    m_bytes -= file->second.file->ini.Bytes();
    m_files.erase(file);
}

} // namespace kx::profile
