#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "include/platform/Types.h"

// What the system's database of content types says of an entry. It needs no desktop and no session bus; where
// the database is missing, the answers come from the kind of entry, the head of the file and its name alone.
// Any thread.

namespace kx::shell {

struct ContentType
{
    std::string type;  // UTF-8, in the user's language: "PNG image"
    std::string icons; // the icon theme's names, best first, divided by blanks
};

// Of what a Linux path names, a link's target if it has one. The name decides; where it says nothing, the
// head of the file does. Nothing, with errno set, if there is no such entry.
std::optional<ContentType> FindContentType(const std::string& path);

// Whether the path names a directory or a link to one.
bool IsDirectory(const std::string& path) noexcept;

// The few texts that the database of content types doesn't have, in UTF-8 and the user's language.

// The kind of a drive, by its DRIVE_... number: "Local Disk".
std::string DriveWording(UINT nDriveType);

std::string FolderWording();

// A file of which nothing is known but its name: "DAT File", "File".
std::string FileWording(std::string_view name);

} // namespace kx::shell
