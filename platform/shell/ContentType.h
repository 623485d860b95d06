#pragma once

#include <optional>
#include <string>

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

} // namespace kx::shell
