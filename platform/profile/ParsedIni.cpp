#include "platform/profile/ParsedIni.h"

#include "platform/profile/IniLines.h"
#include "platform/text/CharWalk.h"

namespace kx::profile {

namespace {

std::string Folded(std::string_view name)
{
    std::string folded(text::Trim(name));
    text::LowerAscii(folded.data(), folded.size());
    return folded;
}

} // namespace

// Of equal names the first in the text counts. Those behind it are never found, nor are the keys of such a
// section.
ParsedIni::ParsedIni(std::string text) : m_text(std::move(text))
{
    IniLines lines(m_text);
    std::optional<std::string_view> section; // a key before the first is in none
    for (IniLine line; lines.Next(line);) {
        if (line.kind == IniLine::Kind::Section) {
            section = FoldInPlace(line.name);
            if (!m_values.emplace(Name(*section, {}), std::string_view()).second) section.reset();
        } else if (line.kind == IniLine::Kind::Key && section) {
            m_values.emplace(Name(*section, FoldInPlace(line.name)), Unquote(line.value));
        }
    }
}

std::string_view ParsedIni::FoldInPlace(std::string_view part) noexcept
{
    text::LowerAscii(m_text.data() + (part.data() - m_text.data()), part.size());
    return part;
}

bool ParsedIni::HasSection(std::string_view section) const
{
    return m_values.contains(Name(Folded(section), {}));
}

std::optional<std::string_view> ParsedIni::Find(std::string_view section, std::string_view key) const
{
    const std::string name = Folded(key);
    if (name.empty()) return std::nullopt; // that would be the section
    const auto found = m_values.find(Name(Folded(section), name));
    if (found == m_values.end()) return std::nullopt;
    return found->second;
}

std::size_t ParsedIni::Bytes() const noexcept
{
    constexpr std::size_t kNode = sizeof(*m_values.begin()) + 4 * sizeof(void*);
    return m_text.capacity() + m_values.size() * kNode;
}

} // namespace kx::profile
