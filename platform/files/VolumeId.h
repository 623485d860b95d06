#pragma once

#include "include/platform/Types.h"
#include "platform/files/MountTable.h"

#include <string>

// What the system's links by label and by UUID tell of a block device. `systemRoot` holds `dev`.

namespace kx::drives {

// In UTF-8; empty without one.
std::string VolumeLabel(const std::string& device, const std::string& systemRoot);

// The last eight hexadecimal digits of its UUID, which are the number itself where a file system has such a
// number; 0 without one.
DWORD VolumeSerial(const std::string& device, const std::string& systemRoot);

} // namespace kx::drives
