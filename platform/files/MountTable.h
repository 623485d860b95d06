#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kx::files {

// A line of the system's mount table.
struct Mount
{
    std::string number; // the device, `8:17`
    std::string root;   // what of the file system is mounted; `/` for all of it
    std::string point;  // where, an absolute Linux path
    std::string fileSystem;
    std::string source; // `/dev/sdb1`
    bool bReadOnly = false;
};

// The mounts in their order, later ones on top; none where the table can't be read. `systemRoot` holds
// `proc`.
std::vector<Mount> ReadMounts(const std::string& systemRoot);

// A text in which a mark and so many digits of a base stand for a byte. Other marks are themselves.
std::string Unescape(std::string_view text, std::string_view mark, std::size_t nDigits, int nBase);

// The file of that table.
std::string MountTableFile(const std::string& systemRoot);

// The mount that an absolute Linux path without a trailing slash lies in, or null.
const Mount* FindMount(const std::vector<Mount>& mounts, std::string_view path);

// Whether a path is a directory or lies below it; neither has a trailing slash.
bool IsBelow(std::string_view path, std::string_view directory) noexcept;

// A device with removable media: a whole one or a partition.
struct BlockDevice
{
    std::string name;   // `sdb1`, `sr0`
    std::string number; // `8:17`
    bool bOptical = false;

    bool IsSourceOf(const Mount& mount) const;
};

// All of them in the order of their names. `systemRoot` holds `sys`.
std::vector<BlockDevice> ReadRemovableDevices(const std::string& systemRoot);

// The name of the device that a mount comes from.
std::string DeviceName(const Mount& mount, const std::string& systemRoot);

} // namespace kx::files
