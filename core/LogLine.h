#pragma once

#include "platform/String.h"

#include <string_view>

namespace kx::log {

// The line of a message: "[stamp] level message" and a line end, stamped with the local time of the call.
CString MakeLine(int nLevel, std::string_view message);

} // namespace kx::log
