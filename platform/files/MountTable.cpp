#include "platform/files/MountTable.h"

#include "platform/files/Directory.h"
#include "platform/files/WholeFile.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <unistd.h>

namespace kx::files {

namespace {

constexpr std::size_t kMaxTable = std::size_t{4} << 20;

std::string_view TakeUntil(std::string_view& text, char end)
{
    const std::size_t length = std::min(text.find(end), text.size());
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return taken;
}

// Blanks and backslashes stand in the table as `\` and three octal digits.
std::string TakeField(std::string_view& line)
{
    return Unescape(TakeUntil(line, ' '), "\\", 3, 8);
}

bool HasOption(std::string_view options, std::string_view wanted)
{
    while (!options.empty())
        if (TakeUntil(options, ',') == wanted) return true;
    return false;
}

// `id parent major:minor root point options [tags] - type source options`
std::optional<Mount> ParseLine(std::string_view line)
{
    Mount mount;
    TakeUntil(line, ' ');
    TakeUntil(line, ' ');
    mount.number = TakeUntil(line, ' ');
    mount.root = TakeField(line);
    mount.point = TakeField(line);
    mount.bReadOnly = HasOption(TakeUntil(line, ' '), "ro");
    while (!line.empty() && TakeUntil(line, ' ') != "-") {
    }
    mount.fileSystem = TakeField(line);
    mount.source = TakeField(line);
    if (mount.fileSystem.empty() || !mount.point.starts_with('/')) return std::nullopt;
    return mount;
}

} // namespace

std::string MountTableFile(const std::string& systemRoot)
{
    return systemRoot + "/proc/self/mountinfo";
}

std::string Unescape(std::string_view text, std::string_view mark, std::size_t nDigits, int nBase)
{
    std::string plain;
    while (!text.empty()) {
        const std::string_view digits = text.starts_with(mark) ? text.substr(mark.size(), nDigits) : "";
        unsigned byte = 0;
        const char* const end =
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, nBase).ptr;
        const bool bEscape = digits.size() == nDigits && end == digits.data() + nDigits;
        plain += bEscape ? static_cast<char>(byte) : text[0];
        text.remove_prefix(bEscape ? mark.size() + nDigits : 1);
    }
    return plain;
}

std::vector<Mount> ReadMounts(const std::string& systemRoot)
{
    std::vector<Mount> mounts;
    FileContent table;
    ReadFileHead(MountTableFile(systemRoot), kMaxTable, table);
    std::string_view rest = table.bytes;
    while (!rest.empty())
        if (auto mount = ParseLine(TakeUntil(rest, '\n'))) mounts.push_back(std::move(*mount));
    return mounts;
}

bool IsBelow(std::string_view path, std::string_view directory) noexcept
{
    return path.starts_with(directory) && (path.size() == directory.size() || path[directory.size()] == '/');
}

const Mount* FindMount(const std::vector<Mount>& mounts, std::string_view path)
{
    const Mount* found = nullptr;
    for (const Mount& mount : mounts) {
        const std::string_view point = mount.point == "/" ? std::string_view() : mount.point;
        if (IsBelow(path, point) && (!found || mount.point.size() >= found->point.size())) found = &mount;
    }
    return found;
}

namespace {

constexpr std::string_view kScsiOptical = "5"; // the device type of CD and DVD drives

std::string ReadAttribute(const std::string& path)
{
    FileContent attribute;
    ReadFileHead(path, 64, attribute);
    return std::string(text::Trim(attribute.bytes));
}

std::string BaseName(std::string_view path)
{
    return std::string(path.substr(path.rfind('/') + 1));
}

void AddWithPartitions(const std::string& directory, BlockDevice disk, std::vector<BlockDevice>& devices)
{
    Directory entries(directory.c_str());
    while (const auto entry = entries.Next()) {
        if (!entry->name.starts_with(disk.name)) continue;
        BlockDevice partition = disk;
        partition.name = entry->name;
        partition.number = ReadAttribute(directory + "/" + partition.name + "/dev");
        if (!partition.number.empty()) devices.push_back(std::move(partition));
    }
    devices.push_back(std::move(disk));
}

} // namespace

bool BlockDevice::IsSourceOf(const Mount& mount) const
{
    if (!mount.source.starts_with("/dev/")) return false;
    return mount.number == number || mount.source.substr(5) == name;
}

std::vector<BlockDevice> ReadRemovableDevices(const std::string& systemRoot)
{
    std::vector<BlockDevice> devices;
    const std::string all = systemRoot + "/sys/block/";
    Directory entries(all.c_str());
    while (const auto entry = entries.Next()) {
        BlockDevice disk;
        disk.name = entry->name;
        const std::string directory = all + disk.name;
        disk.bOptical = ReadAttribute(directory + "/device/type") == kScsiOptical;
        if (!disk.bOptical && ReadAttribute(directory + "/removable") != "1") continue;
        disk.number = ReadAttribute(directory + "/dev");
        AddWithPartitions(directory, std::move(disk), devices);
    }
    std::sort(devices.begin(), devices.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return devices;
}

// The source's own name may be a link's (`/dev/mapper/...`, `/dev/root`), so the kernel is asked first.
std::string DeviceName(const Mount& mount, const std::string& systemRoot)
{
    std::array<char, 4096> target;
    const std::string link = systemRoot + "/sys/dev/block/" + mount.number;
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    if (length > 0) return BaseName({target.data(), static_cast<std::size_t>(length)});
    return BaseName(mount.source);
}

} // namespace kx::files
