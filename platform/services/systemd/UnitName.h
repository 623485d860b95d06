#pragma once

#include "include/platform/String.h"

#include <optional>
#include <string>
#include <string_view>

namespace kx::systemd {

// The unit of a service, `NAME.service`, in which all but letters, digits and the marks `:_.-@` is escaped as
// \xNN. Nothing for what can't be a service's name: too long, with slashes or backslashes, no text.
std::optional<std::string> UnitOf(const CString& name);

// The service's name that has this unit, if it is one's.
std::optional<CString> NameOf(std::string_view unit);

} // namespace kx::systemd
