#pragma once

#include "include/platform/Types.h"
#include "platform/profile/ParsedIni.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

// INI files as a whole: what reads and changes them goes through here. Any thread.

namespace kx::profile {

using IniPtr = std::shared_ptr<const ParsedIni>;

// The file as it stands now, parsed anew only where it has changed. Null, with the last error set, where it
// can't be read.
IniPtr Read(const char* pszFile);
IniPtr ReadSystem(const std::string& path);

// Gives the text after the change, or nothing where it can't be made.
using Edit = std::function<std::optional<std::string>(std::string_view text)>;

// Changes a file, by its Linux path, as one step: writers in all processes wait for each other, and a reader
// or a kill at any moment finds the old file or the new one. A link is followed and stays. A missing file is
// edited as an empty one and made with `mode` less the process's mask; a change that isn't one makes or
// writes nothing. Needs to make a file beside it. An ERROR_... code.
DWORD Update(const std::string& path, mode_t mode, const Edit& edit);

} // namespace kx::profile
