#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kx::registry {

// Any bytes as printable ASCII that an INI file keeps as a name or a value: all but letters, digits and plain
// marks become "%" and two hexadecimal digits. Both bytes of a double-byte character do, so that its second
// is no letter whose case is ignored.
std::string Escape(std::string_view bytes);

// The way back; nothing for a text that isn't of that form.
std::optional<std::string> Unescape(std::string_view text);

} // namespace kx::registry
