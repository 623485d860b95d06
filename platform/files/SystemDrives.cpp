#include "platform/files/SystemDrives.h"

#include "include/platform/Exception.h"
#include "include/platform/FileSystem.h"
#include "platform/Immortal.h"
#include "platform/UniqueFd.h"
#include "platform/files/BlockDevices.h"
#include "platform/files/Directory.h"
#include "platform/files/MountTable.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <fcntl.h>
#include <new>
#include <poll.h>
#include <utility>

namespace kx::files {

namespace {

constexpr std::size_t kFirstLetter = 'D' - 'A';
std::atomic<unsigned> g_generation{0};

// Where a device's file system is mounted as a whole, or at least in part; `/` is the drive `C:`.
std::optional<std::string> MountPoint(const BlockDevice& device, const std::vector<Mount>& mounts)
{
    const Mount* found = nullptr;
    for (const Mount& mount : mounts)
        if (device.IsSourceOf(mount) && mount.point != "/" &&
            (!found || (found->root != "/" && mount.root == "/")))
            found = &mount;
    if (!found) return std::nullopt;
    return found->point;
}

class SystemDrives
{
public:
    sync::Mutex& Lock() noexcept KX_RETURN_LOCK(m_lock) { return m_lock; }

    std::optional<Drive> Find(std::size_t letter, const Letters& taken, Look look)
    {
        const sync::MutexLock lock(m_lock);
        Refresh(taken, look);
        return m_drives[letter];
    }

    std::optional<std::size_t> Peek(std::size_t letter, std::span<char> buffer) noexcept
    {
        if (!m_lock.TryLockBriefly()) return std::nullopt;
        const auto copied = m_drives[letter] ? CopyRoot(*m_drives[letter], buffer) : std::nullopt;
        m_lock.unlock();
        return copied;
    }

    std::vector<Drive> All(const Letters& taken)
    {
        const sync::MutexLock lock(m_lock);
        Refresh(taken, Look::AtMounts);
        std::vector<Drive> all;
        for (const auto& drive : m_drives)
            if (drive) all.push_back(*drive);
        return all;
    }

    std::string Root()
    {
        const sync::MutexLock lock(m_lock);
        return m_root;
    }

    void SetRoot(std::string root)
    {
        const sync::MutexLock lock(m_lock);
        m_root = std::move(root);
        m_devices = {};
        m_drives = {};
        m_table.Reset();
        m_disks.clear();
        g_generation.fetch_add(1, std::memory_order_release);
    }

private:
    void Refresh(const Letters& taken, Look look) KX_REQUIRES(m_lock)
    {
        const bool bMounts = MountsChanged();
        const bool bDisks = look == Look::Again && DisksChanged();
        if (bMounts || bDisks) Read(taken);
    }

    // The kernel wakes pollers of its mount table at each change; a table that stands in for it is always
    // read.
    bool MountsChanged() KX_REQUIRES(m_lock)
    {
        if (!m_root.empty()) return true;
        if (!m_table) {
            m_table.Reset(open(MountTableFile(m_root).c_str(), O_RDONLY | O_CLOEXEC));
            return static_cast<bool>(m_table);
        }
        pollfd watch{m_table.Get(), POLLPRI, 0};
        return poll(&watch, 1, 0) > 0 && (watch.revents & (POLLPRI | POLLERR)) != 0;
    }

    bool DisksChanged() KX_REQUIRES(m_lock)
    {
        Directory entries((m_root + "/sys/block").c_str());
        std::vector<std::string> disks;
        while (const auto entry = entries.Next())
            disks.emplace_back(entry->name);
        std::sort(disks.begin(), disks.end());
        return std::exchange(m_disks, disks) != disks;
    }

    void Read(const Letters& taken) KX_REQUIRES(m_lock)
    {
        const auto mounts = ReadMounts(m_root);
        std::array<std::optional<Drive>, kDriveLetters> drives;
        for (const BlockDevice& device : ReadRemovableDevices(m_root)) {
            auto point = MountPoint(device, mounts);
            const std::size_t letter =
                point || device.bOptical ? LetterOf(device.name, taken) : kDriveLetters;
            if (letter == kDriveLetters) continue;
            Drive drive;
            drive.letter = static_cast<char>('A' + letter);
            drive.root = std::move(point);
            drive.type = device.bOptical ? DRIVE_CDROM : DRIVE_REMOVABLE;
            drives[letter] = std::move(drive);
        }
        const auto isSame = [](const auto& a, const auto& b) {
            return a.has_value() == b.has_value() && (!a || (a->root == b->root && a->type == b->type));
        };
        if (!std::equal(drives.begin(), drives.end(), m_drives.begin(), isSame))
            g_generation.fetch_add(1, std::memory_order_release);
        m_drives = std::move(drives);
    }

    // The letter that a device has or gets; kDriveLetters when none is left.
    std::size_t LetterOf(const std::string& device, const Letters& taken) KX_REQUIRES(m_lock)
    {
        const auto found = std::find(m_devices.begin(), m_devices.end(), device);
        if (found != m_devices.end()) return static_cast<std::size_t>(found - m_devices.begin());
        std::size_t letter = kFirstLetter;
        while (letter < kDriveLetters && (taken[letter] || !m_devices[letter].empty()))
            ++letter;
        if (letter < kDriveLetters) m_devices[letter] = device;
        return letter;
    }

    sync::Mutex m_lock; // held while the mount table and the list of disks are read
    std::string m_root KX_GUARDED_BY(m_lock);
    std::array<std::string, kDriveLetters> m_devices KX_GUARDED_BY(m_lock); // which device has each letter
    std::array<std::optional<Drive>, kDriveLetters> m_drives KX_GUARDED_BY(m_lock);
    UniqueFd m_table KX_GUARDED_BY(m_lock);
    std::vector<std::string> m_disks KX_GUARDED_BY(m_lock);
};

SystemDrives& TheDrives()
{
    static Immortal<SystemDrives> drives;
    return drives.Get();
}

sync::Mutex& LockOfFork() noexcept
{
    return TheDrives().Lock();
}
[[maybe_unused]] const bool g_atFork = sync::LockAtFork<LockOfFork>(sync::ForkOrder::SystemDrives);

} // namespace

std::optional<Drive> FindSystemDrive(std::size_t letter, const Letters& taken, Look look)
{
    return TheDrives().Find(letter, taken, look);
}

std::vector<Drive> AllSystemDrives(const Letters& taken)
{
    return TheDrives().All(taken);
}

std::optional<std::size_t> PeekSystemRoot(std::size_t letter, std::span<char> buffer) noexcept
{
    return TheDrives().Peek(letter, buffer);
}

std::string SystemRoot()
{
    return TheDrives().Root();
}

unsigned SystemGeneration() noexcept
{
    return g_generation.load(std::memory_order_acquire);
}

} // namespace kx::files

void KXHost::SetSystemRoot(const std::string& strDir)
try {
    kx::files::TheDrives().SetRoot(strDir);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
