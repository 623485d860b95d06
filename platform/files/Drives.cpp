#include "platform/files/Drives.h"

#include "include/platform/Exception.h"
#include "platform/Immortal.h"
#include "platform/files/MountTable.h"
#include "platform/files/SystemDrives.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <new>

namespace kx::files {

namespace {

std::atomic<unsigned> g_generation{0};

// 0 for `A` to 25 for `Z`; kDriveLetters for no letter.
std::size_t LetterIndex(char letter)
{
    if (letter >= 'a' && letter <= 'z') return static_cast<std::size_t>(letter - 'a');
    if (letter >= 'A' && letter <= 'Z') return static_cast<std::size_t>(letter - 'A');
    return kDriveLetters;
}

class HostDrives
{
public:
    std::optional<Drive> Find(std::size_t index)
    {
        const sync::MutexLock lock(m_lock);
        if (m_drives[index] || index != LetterIndex('C')) return m_drives[index];
        Drive system;
        system.root = "";
        return system;
    }

    std::optional<std::size_t> Peek(std::size_t index, std::span<char> buffer) noexcept
    {
        if (!m_lock.TryLockBriefly()) return std::nullopt;
        const bool bHost = m_drives[index].has_value();
        const auto copied = bHost ? CopyRoot(*m_drives[index], buffer) : std::nullopt;
        m_lock.unlock();
        if (bHost) return copied;
        if (index == LetterIndex('C')) return 0;
        return PeekSystemRoot(index, buffer);
    }

    Letters Taken()
    {
        const sync::MutexLock lock(m_lock);
        Letters taken;
        for (std::size_t i = 0; i < kDriveLetters; ++i)
            taken[i] = m_drives[i].has_value();
        return taken;
    }

    void Set(std::size_t index, std::optional<Drive> drive)
    {
        const sync::MutexLock lock(m_lock);
        m_drives[index] = std::move(drive);
        g_generation.fetch_add(1, std::memory_order_release);
    }

    sync::Mutex& Lock() noexcept KX_RETURN_LOCK(m_lock) { return m_lock; }

private:
    sync::Mutex m_lock;
    std::array<std::optional<Drive>, kDriveLetters> m_drives KX_GUARDED_BY(m_lock);
};

HostDrives& TheHost()
{
    static Immortal<HostDrives> drives;
    return drives.Get();
}

sync::Mutex& LockOfFork() noexcept
{
    return TheHost().Lock();
}
[[maybe_unused]] const bool g_atFork = sync::LockAtFork<LockOfFork>(sync::ForkOrder::Drives);

} // namespace

std::optional<Drive> FindDrive(char letter, bool bLook)
{
    const std::size_t index = LetterIndex(letter);
    if (index == kDriveLetters) return std::nullopt;
    if (auto drive = TheHost().Find(index)) return drive;
    return FindSystemDrive(index, TheHost().Taken(), bLook ? Look::Again : Look::AtMounts);
}

std::optional<std::size_t> PeekRoot(char letter, std::span<char> buffer) noexcept
{
    const std::size_t index = LetterIndex(letter);
    if (index == kDriveLetters) return std::nullopt;
    return TheHost().Peek(index, buffer);
}

std::optional<std::size_t> CopyRoot(const Drive& drive, std::span<char> buffer) noexcept
{
    if (!drive.root || drive.root->size() > buffer.size()) return std::nullopt;
    return drive.root->copy(buffer.data(), buffer.size());
}

std::optional<Drive> DriveHolding(std::string_view systemPath)
{
    std::optional<Drive> best;
    const auto consider = [&](std::optional<Drive> drive) {
        if (!drive || !drive->root || !IsBelow(systemPath, *drive->root)) return;
        if (!best || best->root->size() < drive->root->size()) best = std::move(drive);
    };
    const Letters taken = TheHost().Taken();
    for (std::size_t i = 0; i < kDriveLetters; ++i)
        consider(TheHost().Find((i + LetterIndex('C')) % kDriveLetters));
    for (Drive& drive : AllSystemDrives(taken))
        if (!taken[LetterIndex(drive.letter)]) consider(std::move(drive));
    return best;
}

unsigned DriveGeneration() noexcept
{
    return g_generation.load(std::memory_order_acquire) + SystemGeneration();
}

} // namespace kx::files

bool KXHost::MountDrive(char cLetter, const Drive& drive)
try {
    const std::size_t index = kx::files::LetterIndex(cLetter);
    if (index == kx::files::kDriveLetters || (!drive.strRoot.empty() && drive.strRoot[0] != '/'))
        return false;
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
    kx::files::TheHost().Set(index, std::move(mounted));
    return true;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void KXHost::UnmountDrive(char cLetter)
{
    const std::size_t index = kx::files::LetterIndex(cLetter);
    if (index != kx::files::kDriveLetters) kx::files::TheHost().Set(index, std::nullopt);
}
