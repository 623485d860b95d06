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

// The file of that table.
std::string MountTableFile(const std::string& systemRoot);

// The mount that an absolute Linux path without a trailing slash lies in, or null.
const Mount* FindMount(const std::vector<Mount>& mounts, std::string_view path);

// Whether a path is a directory or lies below it; neither has a trailing slash.
bool IsBelow(std::string_view path, std::string_view directory) noexcept;

} // namespace kx::files
