#include "platform/files/MountTable.h"

#include "platform/files/Directory.h"
#include "platform/files/WholeFile.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <array>
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

bool IsOctal(std::string_view digits)
{
    return digits.size() == 3 &&
           std::all_of(digits.begin(), digits.end(), [](char ch) { return ch >= '0' && ch <= '7'; });
}

// Blanks and backslashes stand in the table as `\` and three octal digits.
std::string Unescape(std::string_view field)
{
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const std::string_view digits = field.substr(i + 1, 3);
        if (field[i] == '\\' && IsOctal(digits)) {
            text += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
            i += 3;
        } else {
            text += field[i];
        }
    }
    return text;
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
    mount.root = Unescape(TakeUntil(line, ' '));
    mount.point = Unescape(TakeUntil(line, ' '));
    mount.bReadOnly = HasOption(TakeUntil(line, ' '), "ro");
    while (!line.empty() && TakeUntil(line, ' ') != "-") {
    }
    mount.fileSystem = Unescape(TakeUntil(line, ' '));
    mount.source = Unescape(TakeUntil(line, ' '));
    if (mount.fileSystem.empty() || !mount.point.starts_with('/')) return std::nullopt;
    return mount;
}

} // namespace

std::string MountTableFile(const std::string& systemRoot)
{
    return systemRoot + "/proc/self/mountinfo";
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
