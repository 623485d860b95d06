#pragma once

#include "include/platform/String.h"

#include <optional>
#include <string>
#include <string_view>

// Where paths of this library and Linux paths meet. Any thread.

namespace kx::path {

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
std::optional<Resolved> Resolve(const char* pszPath);

// The Linux path alone.
std::optional<std::string> ToSystem(const char* pszPath);

// A path of this library for an absolute Linux path: the drive with the longest matching root. Nothing where
// no drive holds it or the name can't be said in the code page or in 259 bytes.
std::optional<CString> FromSystem(std::string_view systemPath);

// Changes whenever drives, their roots or the code page change, so that what was resolved before is stale.
// Paths that aren't `absolute` are stale too when the current directory changes, which is not counted here.
unsigned Generation() noexcept;

} // namespace kx::path
