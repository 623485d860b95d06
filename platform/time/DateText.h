#pragma once

#include "platform/time/DayCount.h"

#include <optional>
#include <string_view>

namespace kx::clock {

// The fields of a text as COleDateTime::ParseDateTime takes it, which may be no real date; nothing for a text
// of another form.
std::optional<DateFields> ParseDateText(std::string_view text);

} // namespace kx::clock
