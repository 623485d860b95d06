#pragma once

#include "platform/files/MountTable.h"

#include <string>
#include <vector>

namespace kx::files {

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
