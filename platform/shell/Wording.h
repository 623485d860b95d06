#pragma once

#include "include/platform/Types.h"

#include <string>
#include <string_view>

// The few texts that the database of content types doesn't have, in UTF-8 and the user's language.

namespace kx::shell {

// The kind of a drive, by its DRIVE_... number: "Local Disk".
std::string DriveWording(UINT nDriveType);

std::string FolderWording();

// A file of which nothing is known but its name: "DAT File", "File".
std::string FileWording(std::string_view name);

} // namespace kx::shell
