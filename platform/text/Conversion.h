#pragma once

#include "include/KXExport.h"

#include <optional>
#include <string>
#include <string_view>

// Conversions between the process's code page and Unicode. Any thread.

namespace kx::text {

KX_API bool IsAscii(std::string_view text) noexcept;

// Nothing where the text holds bytes that are no character.
KX_API std::optional<std::string> ToUtf8(std::string_view codePageText);
KX_API std::optional<std::string> FromUtf8(std::string_view utf8);

// Like FromUtf8, with "?" for what can't be converted.
KX_API std::string FromUtf8Lossy(std::string_view utf8);

// A UTF-8 text with its letters folded for comparing without case, by Unicode's simple mapping. Bytes that
// are no UTF-8 stay.
std::string FoldCase(std::string_view utf8);

} // namespace kx::text
