#include "platform/files/Drives.h"

#include "include/platform/Exception.h"
#include "include/platform/FileSystem.h"
#include "platform/Immortal.h"
#include "platform/UniqueFd.h"
#include "platform/files/Directory.h"
#include "platform/files/MountTable.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <new>
#include <poll.h>
#include <utility>
#include <vector>

namespace kx::files {

namespace {

constexpr std::size_t kLetters = 26;
std::atomic<unsigned> g_generation{0};

// 0 for `A` to 25 for `Z`; kLetters for no letter.
constexpr std::size_t LetterIndex(char letter) noexcept
{
    if (letter >= 'a' && letter <= 'z') return static_cast<std::size_t>(letter - 'a');
    if (letter >= 'A' && letter <= 'Z') return static_cast<std::size_t>(letter - 'A');
    return kLetters;
}

constexpr std::size_t kSystemLetter = LetterIndex('C');

// A device's file system may be mounted as a whole, which goes first, or in part; `/` is the drive `C:`.
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

// The drives that the host mounted, and those of the system that are left: removable and optical ones, of
// which a device keeps its letter for as long as the process lives.
class Drives
{
public:
    std::optional<Drive> Find(std::size_t index, bool bLook)
    {
        const sync::MutexLock lock(m_lock);
        if (index != kSystemLetter && !m_host[index]) Refresh(bLook);
        return At(index);
    }

    std::optional<Drive> Holding(std::string_view systemPath)
    {
        const sync::MutexLock lock(m_lock);
        Refresh(false);
        std::optional<Drive> best;
        for (std::size_t n = 0; n < kLetters; ++n) {
            auto drive = At((n + kSystemLetter) % kLetters);
            if (!drive || !drive->root || !IsBelow(systemPath, *drive->root)) continue;
            if (!best || best->root->size() < drive->root->size()) best = std::move(drive);
        }
        return best;
    }

    std::optional<std::size_t> Peek(std::size_t index, std::span<char> buffer) noexcept
    {
        if (!m_lock.TryLockBriefly()) return std::nullopt;
        const auto& drive = m_host[index] ? m_host[index] : m_system[index];
        std::optional<std::size_t> length;
        if (drive && drive->root && drive->root->size() <= buffer.size())
            length = drive->root->copy(buffer.data(), buffer.size());
        else if (!drive && index == kSystemLetter)
            length = 0;
        m_lock.unlock();
        return length;
    }

    void Set(std::size_t index, std::optional<Drive> drive)
    {
        const sync::MutexLock lock(m_lock);
        m_host[index] = std::move(drive);
        g_generation.fetch_add(1, std::memory_order_release);
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
        m_system = {};
        m_table.Reset();
        m_disks.clear();
        g_generation.fetch_add(1, std::memory_order_release);
    }

    sync::Mutex& Lock() noexcept KX_RETURN_LOCK(m_lock) { return m_lock; }

private:
    std::optional<Drive> At(std::size_t index) KX_REQUIRES(m_lock)
    {
        if (m_host[index]) return m_host[index];
        if (index != kSystemLetter) return m_system[index];
        Drive drive;
        drive.root = "";
        return drive;
    }

    void Refresh(bool bLook) KX_REQUIRES(m_lock)
    {
        const bool bMounts = MountsChanged();
        const bool bDisks = bLook && DisksChanged();
        if (bMounts || bDisks) Read();
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
        return poll(&watch, 1, 0) > 0;
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

    void Read() KX_REQUIRES(m_lock)
    {
        const auto mounts = ReadMounts(m_root);
        std::array<std::optional<Drive>, kLetters> drives;
        for (const BlockDevice& device : ReadRemovableDevices(m_root)) {
            auto point = MountPoint(device, mounts);
            const std::size_t index = point || device.bOptical ? LetterOf(device.name) : kLetters;
            if (index == kLetters) continue;
            Drive drive;
            drive.letter = static_cast<char>('A' + index);
            drive.root = std::move(point);
            drive.type = device.bOptical ? DRIVE_CDROM : DRIVE_REMOVABLE;
            drives[index] = std::move(drive);
        }
        const auto isSame = [](const auto& a, const auto& b) {
            return a.has_value() == b.has_value() && (!a || (a->root == b->root && a->type == b->type));
        };
        if (!std::ranges::equal(drives, m_system, isSame))
            g_generation.fetch_add(1, std::memory_order_release);
        m_system = std::move(drives);
    }

    // The letter that a device has or gets, from `D` on; kLetters when none is left.
    std::size_t LetterOf(const std::string& device) KX_REQUIRES(m_lock)
    {
        const auto found = std::find(m_devices.begin(), m_devices.end(), device);
        if (found != m_devices.end()) return static_cast<std::size_t>(found - m_devices.begin());
        std::size_t index = kSystemLetter + 1;
        while (index < kLetters && (m_host[index] || !m_devices[index].empty()))
            ++index;
        if (index < kLetters) m_devices[index] = device;
        return index;
    }

    sync::Mutex m_lock; // held while the mount table and the list of disks are read
    std::array<std::optional<Drive>, kLetters> m_host KX_GUARDED_BY(m_lock);
    std::string m_root KX_GUARDED_BY(m_lock);
    std::array<std::string, kLetters> m_devices KX_GUARDED_BY(m_lock); // which device has each letter
    std::array<std::optional<Drive>, kLetters> m_system KX_GUARDED_BY(m_lock);
    UniqueFd m_table KX_GUARDED_BY(m_lock);
    std::vector<std::string> m_disks KX_GUARDED_BY(m_lock);
};

[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Drives, []() -> sync::Mutex& { return The<Drives>().Lock(); });

} // namespace

std::optional<Drive> FindDrive(char letter, bool bLook)
{
    const std::size_t index = LetterIndex(letter);
    return index == kLetters ? std::nullopt : The<Drives>().Find(index, bLook);
}

std::optional<Drive> DriveHolding(std::string_view systemPath)
{
    return The<Drives>().Holding(systemPath);
}

std::optional<std::size_t> PeekRoot(char letter, std::span<char> buffer) noexcept
{
    const std::size_t index = LetterIndex(letter);
    return index == kLetters ? std::nullopt : The<Drives>().Peek(index, buffer);
}

std::string SystemRoot()
{
    return The<Drives>().Root();
}

unsigned DriveGeneration() noexcept
{
    return g_generation.load(std::memory_order_acquire);
}

} // namespace kx::files

bool KXHost::MountDrive(char cLetter, const Drive& drive)
try {
    const std::size_t index = kx::files::LetterIndex(cLetter);
    if (index == kx::files::kLetters || (!drive.strRoot.empty() && drive.strRoot[0] != '/')) return false;
    kx::files::Drive mounted;
    mounted.letter = static_cast<char>('A' + index);
    mounted.type = drive.nType;
    mounted.bHost = true;
    mounted.label = drive.strLabel;
    mounted.fileSystem = drive.strFileSystem;
    mounted.serial = drive.dwSerial;
    if (!drive.strRoot.empty()) {
        mounted.root = std::filesystem::path(drive.strRoot).lexically_normal().native();
        while (mounted.root->ends_with('/'))
            mounted.root->pop_back();
    }
    kx::The<kx::files::Drives>().Set(index, std::move(mounted));
    return true;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void KXHost::UnmountDrive(char cLetter)
{
    const std::size_t index = kx::files::LetterIndex(cLetter);
    if (index != kx::files::kLetters) kx::The<kx::files::Drives>().Set(index, std::nullopt);
}

void KXHost::SetSystemRoot(const std::string& strDir)
try {
    kx::The<kx::files::Drives>().SetRoot(strDir);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
