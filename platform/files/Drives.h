#pragma once

#include "include/platform/Host.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// The directory that each drive letter stands for: the host's drives, else `C:` at `/`, else the system's
// removable and optical drives. Any thread.

namespace kx::files {

struct Drive
{
    char letter = 'C';
    // The Linux directory without a trailing slash, so `/` is the empty text; nothing: no medium.
    std::optional<std::string> root;
    UINT type = 3; // a DRIVE_... number
    // The host mounted it; what it left empty or 0 the system is asked for, but for the label.
    bool bHost = false;
    std::string label;
    std::string fileSystem;
    DWORD serial = 0;
};

// The drive of a letter in either case; nothing where there is none. `bLook` also finds drives that were
// plugged in since, which takes longer; what was mounted is found in any case.
std::optional<Drive> FindDrive(char letter, bool bLook = false);

// The drive whose root holds an absolute Linux path: the longest root, then the lowest letter from `C` on.
std::optional<Drive> DriveHolding(std::string_view systemPath);

// A drive's root without heap and without waiting for long, for a process that has crashed: the length of
// what is written to the buffer; nothing where there is none, where it doesn't fit, and where a lock stays
// held. A drive of the system's is where it was at the last look.
std::optional<std::size_t> PeekRoot(char letter, std::span<char> buffer) noexcept;

// The directory that holds `proc`, `sys` and `dev`; empty for the system's root.
std::string SystemRoot();

// Changes whenever a letter's drive or root does.
unsigned DriveGeneration() noexcept;

} // namespace kx::files
