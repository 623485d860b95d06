#include "platform/files/Drives.h"

#include "platform/Immortal.h"

#include <array>
#include <atomic>
#include <mutex>

namespace kx::drives {

namespace {

constexpr std::size_t kLetters = 26;
std::atomic<unsigned> g_generation{0};

// 0 for `A` to 25 for `Z`; kLetters for no letter.
std::size_t IndexOf(char letter)
{
    if (letter >= 'a' && letter <= 'z') return static_cast<std::size_t>(letter - 'a');
    if (letter >= 'A' && letter <= 'Z') return static_cast<std::size_t>(letter - 'A');
    return kLetters;
}

struct Table
{
    std::mutex lock;
    std::array<std::optional<Drive>, kLetters> host;
};

Table& TheTable()
{
    static Immortal<Table> table;
    return table.Get();
}

std::optional<Drive> FindLocked(Table& table, std::size_t index)
{
    if (table.host[index]) return table.host[index];
    if (index != IndexOf('C')) return std::nullopt;
    Drive system;
    system.root = "";
    return system;
}

bool IsBelow(std::string_view path, std::string_view root)
{
    return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
}

} // namespace

std::optional<Drive> Find(char letter)
{
    const std::size_t index = IndexOf(letter);
    if (index == kLetters) return std::nullopt;
    Table& table = TheTable();
    const std::lock_guard lock(table.lock);
    return FindLocked(table, index);
}

std::optional<Drive> Holding(std::string_view systemPath)
{
    Table& table = TheTable();
    const std::lock_guard lock(table.lock);
    std::optional<Drive> best;
    for (std::size_t i = 0; i < kLetters; ++i) {
        auto drive = FindLocked(table, (i + IndexOf('C')) % kLetters);
        if (!drive || !drive->root || !IsBelow(systemPath, *drive->root)) continue;
        if (!best || best->root->size() < drive->root->size()) best = std::move(drive);
    }
    return best;
}

unsigned Generation() noexcept
{
    return g_generation.load(std::memory_order_acquire);
}

} // namespace kx::drives

bool KXHost::MountDrive(char cLetter, const Drive& drive)
{
    using namespace kx::drives;
    const std::size_t index = IndexOf(cLetter);
    if (index == kLetters || (!drive.strRoot.empty() && drive.strRoot[0] != '/')) return false;
    kx::drives::Drive mounted;
    mounted.letter = static_cast<char>('A' + index);
    mounted.type = drive.nType;
    mounted.label = drive.strLabel;
    mounted.fileSystem = drive.strFileSystem;
    mounted.serial = drive.dwSerial;
    mounted.bHost = true;
    if (!drive.strRoot.empty()) {
        mounted.root = drive.strRoot;
        while (mounted.root->ends_with('/'))
            mounted.root->pop_back();
    }
    const std::lock_guard lock(TheTable().lock);
    TheTable().host[index] = std::move(mounted);
    g_generation.fetch_add(1, std::memory_order_release);
    return true;
}

void KXHost::UnmountDrive(char cLetter)
{
    using namespace kx::drives;
    const std::size_t index = IndexOf(cLetter);
    if (index == kLetters) return;
    const std::lock_guard lock(TheTable().lock);
    TheTable().host[index].reset();
    g_generation.fetch_add(1, std::memory_order_release);
}
