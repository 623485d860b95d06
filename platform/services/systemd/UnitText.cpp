#include "platform/services/systemd/UnitText.h"

#include "platform/text/Conversion.h"

#include <charconv>

namespace kx::services::systemd {

namespace {

constexpr std::string_view kSuffix = ".service";
constexpr std::size_t kMaxUnit = 253; // so that a directory of drop-ins, `UNIT.d`, can have its name

// A point at the beginning would hide the file, and an `@` at either end make no unit or only a template.
bool IsPlain(std::string_view name, std::size_t at) noexcept
{
    const char ch = name[at];
    const bool bLetterOrDigit =
        (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z');
    if (bLetterOrDigit || ch == ':' || ch == '_' || ch == '-') return true;
    if (ch == '.') return at > 0;
    return ch == '@' && at > 0 && at + 1 < name.size();
}

// \xNN.
void AppendHex(std::string& text, char byte)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    text.append({'\\', 'x', kDigits[value >> 4], kDigits[value & 15]});
}

bool IsControl(char ch) noexcept
{
    return static_cast<unsigned char>(ch) < ' ' || ch == '\x7F';
}

// A value that is taken as it stands up to the line's end: "%" is doubled, as it begins a specifier, and a
// space keeps a backslash at the end from joining the next line.
std::string Line(std::string_view text)
{
    std::string line;
    for (const char ch : text) {
        if (ch == '%') line += '%';
        line += IsControl(ch) ? ' ' : ch;
    }
    if (line.ends_with('\\')) line += ' ';
    return line;
}

// One word of a command line.
void AppendWord(std::string& line, std::string_view word)
{
    line += '"';
    for (const char ch : word) {
        if (IsControl(ch)) {
            AppendHex(line, ch);
            continue;
        }
        if (ch == '%') line += '%';
        if (ch == '"' || ch == '\\') line += '\\';
        line += ch;
    }
    line += '"';
}

} // namespace

std::optional<std::string> UnitOf(const CString& name)
{
    const auto utf8 = text::ToUtf8(name.View());
    if (!utf8 || utf8->empty() || utf8->find_first_of("/\\") != utf8->npos) return std::nullopt;
    std::string unit;
    for (std::size_t at = 0; at < utf8->size(); ++at) {
        if (IsPlain(*utf8, at))
            unit += (*utf8)[at];
        else
            AppendHex(unit, (*utf8)[at]);
        if (unit.size() > kMaxUnit - kSuffix.size()) return std::nullopt;
    }
    return unit.append(kSuffix);
}

std::optional<CString> NameOf(std::string_view unit)
{
    if (!unit.ends_with(kSuffix)) return std::nullopt;
    const std::string_view escaped = unit.substr(0, unit.size() - kSuffix.size());
    std::string utf8;
    for (std::size_t at = 0; at < escaped.size(); ++at) {
        unsigned byte = 0;
        if (escaped.substr(at, 2) != "\\x") {
            utf8 += escaped[at];
        } else {
            const std::string_view digits = escaped.substr(at + 2, 2);
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
            utf8 += static_cast<char>(byte);
            at += 3;
        }
    }
    // What isn't escaped in our way would name another unit.
    const auto text = text::FromUtf8(utf8);
    if (!text || text->find('\0') != text->npos) return std::nullopt;
    CString name{std::string_view(*text)};
    if (UnitOf(name) != unit) return std::nullopt;
    return name;
}

std::string UnitText(std::string_view title, const std::vector<std::string>& command, std::string_view target)
{
    std::string text(kMark);
    text.append("[Unit]\nDescription=").append(Line(title));
    text += "\n\n[Service]\nType=exec\nExecStart=";
    // The colon says that a "$" in what follows is no variable.
    for (std::size_t i = 0; i < command.size(); ++i) {
        if (i > 0) text += ' ';
        AppendWord(text, i == 0 ? ":" + command[i] : command[i]);
    }
    text.append("\n\n[Install]\nWantedBy=").append(target).append("\n");
    return text;
}

std::string DescriptionText(std::string_view description)
{
    return std::string(kMark).append("[Unit]\nDescription=").append(Line(description)).append("\n");
}

} // namespace kx::services::systemd
