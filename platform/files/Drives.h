#pragma once

#include "include/platform/Host.h"

#include <optional>
#include <string>
#include <string_view>

// Which directory each drive letter stands for: the host's drives, else `C:` at `/`, else the system's
// removable and optical drives. Any thread.

namespace kx::drives {

struct Drive
{
    char letter = 'C';
    // The Linux directory without a trailing slash, so `/` is the empty text; nothing: no medium.
    std::optional<std::string> root;
    UINT type = 3; // a DRIVE_... number
    bool bHost =
        false; // the host mounted it; what it left empty or 0 the system is asked for, but for the label
    std::string label;
    std::string fileSystem;
    DWORD serial = 0;
};

// The drive of a letter in either case; nothing where there is none. `bLook` also finds drives that were
// plugged in since, which takes longer; what was mounted is found in any case.
std::optional<Drive> Find(char letter, bool bLook = false);

// The drive whose root holds an absolute Linux path: the longest root, then the lowest letter from `C` on.
std::optional<Drive> Holding(std::string_view systemPath);

// Changes whenever a letter's drive or root does.
unsigned Generation() noexcept;

} // namespace kx::drives
