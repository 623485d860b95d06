#include "platform/services/systemd/UnitText.h"

#include "include/platform/Error.h"
#include "platform/files/Path.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <charconv>
#include <sys/stat.h>

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
    // A name that isn't escaped in our way would be another unit's.
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

namespace {

constexpr std::size_t kMaxBinaryPath = 32'767;
constexpr std::string_view kSpace = " \t\r\n\v\f";

struct Parts
{
    std::string_view program;
    std::string_view rest;
};

// Double quotes and white space are no trail bytes, so bytes may be looked at one by one.
Parts SplitProgram(std::string_view line)
{
    const bool bQuoted = line.starts_with('"');
    if (bQuoted) line.remove_prefix(1);
    const std::size_t end = std::min(bQuoted ? line.find('"') : line.find_first_of(kSpace), line.size());
    return {line.substr(0, end), line.substr(std::min(end + bQuoted, line.size()))};
}

bool IsFile(const std::string& path) noexcept
{
    struct stat info = {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// The program by a full path alone: a unit is started in another directory.
DWORD FindProgram(std::string_view program, std::string& path)
{
    const CString spelled(program);
    const auto resolved = files::Resolve(spelled);
    if (!resolved) return GetLastError();
    const bool bRooted = spelled[0] == '\\' || spelled[0] == '/';
    if (!resolved->absolute && !bRooted) return ERROR_INVALID_PARAMETER;
    path = resolved->system;
    const bool bNameable = std::none_of(path.begin(), path.end(), [](char ch) {
        return static_cast<unsigned char>(ch) < ' ' || ch == '\x7F' || ch == '"' || ch == '\'' || ch == '\\';
    });
    return bNameable && text::FromUtf8(path) ? ERROR_SUCCESS : ERROR_INVALID_NAME;
}

// Appends a command line's arguments: white space parts them but within double quotes, and backslashes are
// plain but before a double quote, where two of them are one and an odd one makes the quote plain.
void SplitArguments(std::string_view line, std::vector<std::string>& arguments)
{
    std::size_t at = 0;
    while ((at = line.find_first_not_of(kSpace, at)) < line.size()) {
        std::string argument;
        bool bQuoted = false;
        for (; at < line.size() && (bQuoted || kSpace.find(line[at]) == kSpace.npos); ++at) {
            const std::size_t past = std::min(line.find_first_not_of('\\', at), line.size());
            const std::size_t slashes = past - at;
            const bool bQuote = past < line.size() && line[past] == '"';
            if (slashes > 0) {
                argument.append(bQuote ? slashes / 2 : slashes, '\\');
                at = past - 1;
                if (!bQuote) continue;
                at = past;
            }
            if (!bQuote)
                argument += line[at];
            else if (slashes % 2 == 1)
                argument += '"';
            else
                bQuoted = !bQuoted;
        }
        arguments.push_back(std::move(argument));
    }
}

} // namespace

DWORD ParseBinaryPath(const CString& binaryPath, std::vector<std::string>& command)
{
    const std::string_view line = text::Trim(binaryPath.View());
    if (line.empty() || line.size() > kMaxBinaryPath) return ERROR_INVALID_PARAMETER;
    std::string program;
    // A path with spaces that nobody quoted, as it is and never a part of it.
    if (FindProgram(line, program) == ERROR_SUCCESS && IsFile(program)) {
        command.assign({std::move(program)});
        return ERROR_SUCCESS;
    }
    const Parts parts = SplitProgram(line);
    const auto rest = text::ToUtf8(parts.rest);
    if (!rest || parts.program.empty()) return ERROR_INVALID_PARAMETER;
    if (const DWORD error = FindProgram(parts.program, program)) return error;
    command.assign({std::move(program)});
    SplitArguments(*rest, command);
    return ERROR_SUCCESS;
}

} // namespace kx::services::systemd
