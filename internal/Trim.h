#pragma once

#include <string_view>

// White space is ASCII, and never the second byte of a letter.
namespace kx::text {

constexpr bool IsSpace(char ch) noexcept
{
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

constexpr std::string_view TrimLeft(std::string_view text) noexcept
{
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    return text;
}

// A part of the text, cut at both ends.
constexpr std::string_view Trim(std::string_view text) noexcept
{
    text = TrimLeft(text);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace kx::text
