#pragma once

#include "include/platform/String.h"
#include "include/platform/Types.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Units' names, and what is written into their files, all of it UTF-8. Whatever the texts hold, each stays
// the value of its one setting.

namespace kx::services::systemd {

// The unit of a service, `NAME.service`, in which all but letters, digits and the marks `:_.-@` is escaped as
// \xNN. Nothing for what can't be a service's name: too long, with slashes or backslashes, no text.
std::optional<std::string> UnitOf(const CString& name);

// The service's name that has this unit, if it is one's.
std::optional<CString> NameOf(std::string_view unit);

// A service's binary path as its program's Linux path and its arguments, in UTF-8. An ERROR_... code:
// ERROR_INVALID_PARAMETER without a full path or with bytes that are no text, ERROR_INVALID_NAME for a
// program's path that no unit can name, or what the path's drive gives.
DWORD ParseBinaryPath(const CString& binaryPath, std::vector<std::string>& command);

// The first line of every file that is written here.
inline constexpr std::string_view kMark = "# Made by KXCommonClass for its service controller\n";

// A unit that runs a program, of a full path and without control characters, quotes and backslashes, with
// arguments. `target` wants it when it is enabled.
std::string UnitText(std::string_view title, const std::vector<std::string>& command,
                     std::string_view target);

// A drop-in that gives a unit another description.
std::string DescriptionText(std::string_view description);

} // namespace kx::services::systemd
