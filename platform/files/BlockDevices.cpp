#include "platform/files/BlockDevices.h"

#include "platform/files/Directory.h"
#include "platform/files/WholeFile.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace kx::files {

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
