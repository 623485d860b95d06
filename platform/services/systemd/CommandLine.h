#pragma once

#include "include/platform/String.h"
#include "include/platform/Types.h"

#include <string>
#include <string_view>
#include <vector>

namespace kx::systemd {

// A service's binary path as its program's Linux path and its arguments, in UTF-8. An ERROR_... code:
// ERROR_INVALID_PARAMETER without a full path or with bytes that are no text, ERROR_INVALID_NAME for a
// program's path that no unit can name, or what the path's drive gives.
DWORD ParseBinaryPath(const CString& binaryPath, std::vector<std::string>& command);

// Appends a command line's arguments: white space parts them but within double quotes, and backslashes are
// plain but before a double quote, where two of them are one and an odd one makes the quote plain.
void SplitArguments(std::string_view line, std::vector<std::string>& arguments);

} // namespace kx::systemd
