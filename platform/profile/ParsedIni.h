#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kx::profile {

// One line of an INI text. Everything that reads or changes such a text goes by these lines, so that what is
// written is what is found.
struct IniLine
{
    enum class Kind
    {
        Other, // blank, a remark, or nothing that has a meaning
        Section,
        Key,
    };

    Kind kind = Kind::Other;
    std::size_t begin = 0;  // positions in the text: the line,
    std::size_t ending = 0; // its line end, "\r\n", "\n" or none at all,
    std::size_t end = 0;    // and what is behind that
    std::string_view name;  // of the section or key, without white space around it
    std::string_view value; // a key's, likewise, with its quotes; in place also when it is empty
};

// Takes a text of any bytes apart, line by line.
class IniLines
{
public:
    // A mark of UTF-8 at the start is passed over. The text must outlive the object.
    explicit IniLines(std::string_view text) noexcept;

    // The next line; false behind the last.
    bool Next(IniLine& line) noexcept;

private:
    std::string_view m_text;
    std::size_t m_pos = 0;
};

// The text without a mark of UTF-8 at its start.
std::string_view WithoutMark(std::string_view text) noexcept;

// The value without a pair of matching quotes around it, up to its first NUL.
std::string_view Unquote(std::string_view value) noexcept;

// An INI text, made ready for lookups. Unchanging once built, so any number of threads may share one.
class ParsedIni
{
public:
    explicit ParsedIni(std::string text);
    ParsedIni(const ParsedIni&) = delete;
    ParsedIni& operator=(const ParsedIni&) = delete;

    bool HasSection(std::string_view section) const;

    // The value without its quotes; nothing where the first section of that name lacks the key. Refers into
    // this object.
    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const;

    // The memory that it holds, about.
    std::size_t Bytes() const noexcept;

private:
    // Section and key, whose names are folded; the section itself has an empty key.
    using Name = std::pair<std::string_view, std::string_view>;

    std::string_view FoldInPlace(std::string_view part) noexcept;

    std::string m_text; // which all names and values refer to
    std::map<Name, std::string_view> m_values;
};

} // namespace kx::profile
