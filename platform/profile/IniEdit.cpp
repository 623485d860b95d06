#include "platform/profile/IniEdit.h"

#include "platform/profile/ParsedIni.h"
#include "platform/text/CharWalk.h"

#include <initializer_list>
#include <optional>
#include <utility>

namespace kx::profile {

namespace {

using Kind = IniLine::Kind;

bool SameName(std::string_view a, std::string_view b) noexcept
{
    return text::CompareNoCase(a, b) == 0;
}

bool HasLineBreak(std::string_view text) noexcept
{
    return text.find_first_of("\r\n") != text.npos;
}

bool ReadsAs(const std::string& text, Kind kind, std::string_view name)
{
    IniLine line;
    return IniLines(text).Next(line) && line.kind == kind && line.name == name;
}

// The text's own, by its first line.
std::string_view LineEnd(std::string_view text) noexcept
{
    const std::size_t feed = text.find('\n');
    return feed == text.npos || (feed > 0 && text[feed - 1] == '\r') ? "\r\n" : "\n";
}

std::string Replace(std::string_view text, std::size_t begin, std::size_t end, std::string_view by)
{
    return std::string(text.substr(0, begin)).append(by).append(text.substr(end));
}

// Puts lines in at a line's beginning or at the text's end, where the last line may still be open.
std::string Insert(std::string_view text, std::size_t pos, std::initializer_list<std::string> added)
{
    const std::string_view lineEnd = LineEnd(text);
    const std::string_view before = WithoutMark(text.substr(0, pos));
    std::string lines(before.empty() || before.back() == '\n' ? std::string_view() : lineEnd);
    for (const auto& line : added)
        lines.append(line).append(lineEnd);
    return Replace(text, pos, pos, lines);
}

std::string Header(std::string_view section)
{
    return std::string("[").append(section).append("]");
}

std::string KeyLine(std::string_view key, std::string_view value)
{
    return std::string(key).append("=").append(value);
}

// The place where a key's new value begins: right behind the "=", or where the old one began in a line
// written like `key = value`. Leading blanks of the new value replace those after the "=".
std::size_t ValueBegin(std::string_view text, const IniLine& line, std::string_view value) noexcept
{
    const std::size_t equals = text.find('=', line.begin);
    const bool bSpaced = text::IsSpace(text[equals - 1]) && (value.empty() || !text::IsSpace(value.front()));
    return bSpaced ? static_cast<std::size_t>(line.value.data() - text.data()) : equals + 1;
}

// Copies a text but for the pieces cut out of it, from front to back.
struct Cutter
{
    std::string_view text;
    std::string result{};
    std::size_t kept = 0; // where the part begins that isn't yet in the result

    void Cut(std::size_t begin, std::size_t end)
    {
        result.append(text.substr(kept, begin - kept));
        kept = end;
    }
    std::string Finish()
    {
        Cut(text.size(), text.size());
        return std::move(result);
    }
};

} // namespace

bool IsSection(std::string_view section)
{
    return !HasLineBreak(section) && ReadsAs(Header(section), Kind::Section, section);
}

bool IsKey(std::string_view key)
{
    return !HasLineBreak(key) && ReadsAs(KeyLine(key, {}), Kind::Key, key);
}

bool IsValue(std::string_view value) noexcept
{
    return !HasLineBreak(value);
}

std::string SetKey(std::string_view text, std::string_view section, std::string_view key,
                   std::string_view value)
{
    IniLines lines(text);
    std::optional<std::size_t> sectionEnd;
    for (IniLine line; lines.Next(line);) {
        if (line.kind == Kind::Section) {
            if (sectionEnd) break;
            if (SameName(line.name, section)) sectionEnd = line.end;
        } else if (sectionEnd && line.kind == Kind::Key) {
            if (SameName(line.name, key))
                return Replace(text, ValueBegin(text, line, value), line.ending, value);
            sectionEnd = line.end;
        }
    }
    if (sectionEnd) return Insert(text, *sectionEnd, {KeyLine(key, value)});
    return Insert(text, text.size(), {Header(section), KeyLine(key, value)});
}

std::string RemoveKey(std::string_view text, std::string_view section, std::string_view key)
{
    IniLines lines(text);
    Cutter cutter{text};
    bool bInside = false;
    for (IniLine line; lines.Next(line);) {
        if (line.kind == Kind::Section) bInside = SameName(line.name, section);
        if (bInside && line.kind == Kind::Key && SameName(line.name, key)) cutter.Cut(line.begin, line.end);
    }
    return cutter.Finish();
}

std::string RemoveSection(std::string_view text, std::string_view section)
{
    IniLines lines(text);
    Cutter cutter{text};
    std::optional<std::size_t> begin;
    std::size_t end = 0;
    for (IniLine line; lines.Next(line);) {
        if (line.kind == Kind::Section) {
            if (begin) cutter.Cut(*begin, end);
            begin.reset();
            if (SameName(line.name, section)) begin = line.begin;
        }
        if (line.kind != Kind::Other) end = line.end;
    }
    if (begin) cutter.Cut(*begin, end);
    return cutter.Finish();
}

std::string AddSection(std::string_view text, std::string_view section)
{
    IniLines lines(text);
    for (IniLine line; lines.Next(line);)
        if (line.kind == Kind::Section && SameName(line.name, section)) return std::string(text);
    return Insert(text, text.size(), {Header(section)});
}

} // namespace kx::profile
