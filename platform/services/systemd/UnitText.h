#pragma once

#include <string>
#include <string_view>
#include <vector>

// What is written into unit files, all of it UTF-8. Whatever the texts hold, each stays the value of its one
// setting.

namespace kx::systemd {

// The first line of every file that is written here.
inline constexpr std::string_view kMark = "# Made by KXCommonClass for its service controller\n";

// \xNN.
void AppendHex(std::string& text, char byte);

// A unit that runs a program, of a full path and without control characters, quotes and backslashes, with
// arguments. `target` wants it when it is enabled.
std::string UnitText(std::string_view title, const std::vector<std::string>& command,
                     std::string_view target);

// A drop-in that gives a unit another description.
std::string DescriptionText(std::string_view description);

} // namespace kx::systemd
