#pragma once

#include "include/KXExport.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The way between paths of this library and Linux paths. Any thread.

namespace kx::files {

constexpr bool IsSeparator(char ch) noexcept
{
    return ch == '\\' || ch == '/';
}

constexpr bool IsLetter(char ch) noexcept
{
    return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z');
}

// A resolved path. `exact` tells that the system path is what the text spells; otherwise a component of it
// was found by ignoring case, and another look may find another entry.
struct Resolved
{
    std::string system;
    bool exact = true;
    bool absolute = true;  // the text names its drive and root, so the current directory plays no part
    bool root = false;     // the drive's root directory itself
    bool trailing = false; // the text ends in a separator, so that only a directory can be meant
};

// The Linux path that a path names; its last components need not exist. Nothing, with the last error set, for
// a null or empty path, one too long, of a drive that isn't there, or with bytes that are no text.
KX_API std::optional<Resolved> Resolve(const char* pszPath);

// The aim of a search: the entries of a directory that match a name with wildcards, or one entry.
struct Pattern
{
    std::string directory; // a Linux path
    std::string name;      // UTF-8
    bool wildcards = false;
};

// Takes the last component off a path and resolves the rest; without wildcards the component too. Fails as
// Resolve does, and for a path that ends in a separator or names a root.
std::optional<Pattern> ResolvePattern(const char* pszPattern);

// The Linux path alone.
std::optional<std::string> ToSystem(const char* pszPath);

// A path of this library for an absolute Linux path: the drive with the longest matching root. Nothing where
// no drive holds it or the name can't be said in the code page or in 259 bytes.
std::optional<std::string> FromSystem(std::string_view systemPath);

// A Linux path's last component, and the directory that holds it.
std::string_view LastName(std::string_view systemPath) noexcept;
std::string DirectoryOf(const std::string& systemPath);

// Changes whenever drives, their roots or the code page change, so that what was resolved before is stale.
// Paths that aren't `absolute` are stale too when the current directory changes, which is not counted here.
unsigned Generation() noexcept;

// Makes an absolute Linux path, of which nothing up to `fixed` is touched, name what exists: where it doesn't
// as it stands, each missing component behind `fixed` is replaced by the entry of its directory that equals
// it ignoring case, the lowest in byte order. What has no such entry stays. True if a component was replaced.
bool MatchExisting(std::string& path, std::size_t fixed);

// The process's current directory as an absolute Linux path; empty where it has none any more. While it is
// the one that SetCurrentDirectoryA chose, links in its path stay as they were spelled there.
std::string CurrentDirectory();

} // namespace kx::files
