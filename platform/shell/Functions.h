#pragma once

#include "include/platform/Types.h"
#include "platform/module/OpenModule.h"

#include <optional>
#include <string>

namespace kx::shell {

struct ContentType
{
    std::string type;  // UTF-8, in the user's language: "PNG image"
    std::string icons; // the icon theme's names, best first, divided by blanks
};

// The module for the shell tells what the system's database of content types says. It needs no desktop
// and no session bus; where the database is missing, the answers come from the kind of entry, the head of the
// file and its name alone. Any thread.
struct Functions
{
    module::BundleFunctions bundles;
    // Tells of what a Linux path names, a link's target if it has one. The name decides; where it says
    // nothing, the head of the file does. Nothing, with errno set, if there is no such entry.
    std::optional<ContentType> (*findContentType)(const std::string& path);
    // The kind of a drive by its DRIVE_... number, in UTF-8 and the user's language: "Local Disk".
    std::string (*driveWording)(UINT nDriveType);
};

} // namespace kx::shell
