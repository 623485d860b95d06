#pragma once

#include <string>
#include <string_view>

namespace kx::report {

// A text of the crashed process, which is UTF-8 or code page 936, as UTF-8. "?" for bytes that are neither.
std::string ToUtf8(std::string_view text);

// On one line: control characters become blanks.
std::string OneLine(std::string_view text);

// A number in hexadecimal, at least 16 digits.
std::string Hex(unsigned long long nValue);

// A whole file, for those that tell no size, but no more than about so many bytes; empty if it can't be read.
std::string ReadFile(const std::string& path, std::size_t nLimit = 1 << 20);

} // namespace kx::report
