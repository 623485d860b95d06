#pragma once

#include "platform/files/Drives.h"

#include <bitset>
#include <optional>
#include <string>
#include <vector>

// The drives that the system has: mounted removable media and optical drives. A device keeps its letter for
// as long as the process lives. Any thread.

namespace kx::files {

inline constexpr std::size_t kDriveLetters = 26;
using Letters = std::bitset<kDriveLetters>;

enum class Look
{
    AtMounts, // see what was mounted or unmounted since
    Again,    // and drives that were plugged in or out
};

// The drive of a letter, from 0 for `A` on. New devices take none of the letters in `taken`.
std::optional<Drive> FindSystemDrive(std::size_t letter, const Letters& taken, Look look);
std::vector<Drive> AllSystemDrives(const Letters& taken);

// The root at the last look, without heap or waiting, as PeekRoot tells.
std::optional<std::size_t> PeekSystemRoot(std::size_t letter, std::span<char> buffer) noexcept;

// The directory that holds `proc`, `sys` and `dev`; empty for the system's root.
std::string SystemRoot();

// Changes with every change of these drives.
unsigned SystemGeneration() noexcept;

} // namespace kx::files
