#include "platform/files/Wildcard.h"

#include "platform/text/Conversion.h"

namespace kx::path {

namespace {

// The length of the UTF-8 character at the front of a text that isn't empty.
std::size_t FrontLength(std::string_view text) noexcept
{
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        ++length;
    return length;
}

// Only the last `*` met needs to be tried again: whatever an earlier one took, the text between them was
// found at its first place.
bool MatchAll(std::string_view name, std::string_view pattern) noexcept
{
    bool bStar = false;
    std::string_view starName;
    std::string_view starPattern;
    while (!name.empty()) {
        if (!pattern.empty() && pattern.front() == '*') {
            pattern.remove_prefix(1);
            bStar = true;
            starName = name;
            starPattern = pattern;
        } else if (!pattern.empty() && pattern.front() == '?') {
            pattern.remove_prefix(1);
            name.remove_prefix(FrontLength(name));
        } else if (!pattern.empty() && pattern.front() == name.front()) {
            pattern.remove_prefix(1);
            name.remove_prefix(1);
        } else if (bStar) {
            starName.remove_prefix(FrontLength(starName));
            name = starName;
            pattern = starPattern;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*') == pattern.npos;
}

} // namespace

Wildcard::Wildcard(std::string_view utf8Pattern) : m_pattern(text::FoldCase(utf8Pattern))
{
}

bool Wildcard::Matches(std::string_view folded) const noexcept
{
    const std::string_view pattern = m_pattern;
    if (MatchAll(folded, pattern)) return true;
    return pattern.ends_with(".*") && MatchAll(folded, pattern.substr(0, pattern.size() - 2));
}

} // namespace kx::path
