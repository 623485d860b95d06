#include "platform/profile/ParsedIni.h"

#include "platform/text/CharWalk.h"

namespace kx::profile {

namespace {

// A name whose bracket isn't closed goes to the line's end.
void ReadSection(std::string_view content, IniLine& line) noexcept
{
    const std::size_t close = text::Find(content, ']', 1);
    line.kind = IniLine::Kind::Section;
    line.name = text::Trim(content.substr(1, close == content.npos ? content.npos : close - 1));
}

void ReadKey(std::string_view content, IniLine& line) noexcept
{
    const std::size_t equals = content.find('=');
    if (equals == content.npos) return;
    const std::string_view name = text::Trim(content.substr(0, equals));
    if (name.empty()) return;
    line.kind = IniLine::Kind::Key;
    line.name = name;
    line.value = text::Trim(content.substr(equals + 1));
}

} // namespace

IniLines::IniLines(std::string_view text) noexcept
    : m_text(text), m_pos(text.size() - WithoutMark(text).size())
{
}

bool IniLines::Next(IniLine& line) noexcept
{
    if (m_pos >= m_text.size()) return false;
    line = {};
    line.begin = m_pos;
    const std::size_t feed = m_text.find('\n', m_pos);
    line.end = feed == m_text.npos ? m_text.size() : feed + 1;
    line.ending = feed == m_text.npos ? m_text.size() : feed;
    if (feed != m_text.npos && feed > line.begin && m_text[feed - 1] == '\r') --line.ending;
    m_pos = line.end;

    const std::string_view content = text::Trim(m_text.substr(line.begin, line.ending - line.begin));
    if (content.empty() || content.front() == ';') return true;
    if (content.front() == '[')
        ReadSection(content, line);
    else
        ReadKey(content, line);
    return true;
}

std::string_view WithoutMark(std::string_view text) noexcept
{
    return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

std::string_view Unquote(std::string_view value) noexcept
{
    value = value.substr(0, value.find('\0'));
    const bool bQuoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return bQuoted ? value.substr(1, value.size() - 2) : value;
}

namespace {

std::string Folded(std::string_view name)
{
    std::string folded(text::Trim(name));
    text::LowerAscii(folded.data(), folded.size());
    return folded;
}

} // namespace

// The first of equal names in the text counts. Those behind it are never found, nor are the keys of such a
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
