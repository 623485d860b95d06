#include "platform/services/systemd/UnitText.h"

namespace kx::systemd {

namespace {

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

void AppendHex(std::string& text, char byte)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    text.append({'\\', 'x', kDigits[value >> 4], kDigits[value & 15]});
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

} // namespace kx::systemd
