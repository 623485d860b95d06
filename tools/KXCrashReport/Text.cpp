#include "tools/KXCrashReport/Text.h"

#include "platform/files/WholeFile.h"

#include <array>
#include <charconv>
#include <iconv.h>
#include <iterator>
#include <optional>
#include <utility>

namespace kx::report {

namespace {

std::optional<std::string> Convert(std::string_view text, const char* pszFrom)
{
    const iconv_t converter = iconv_open("UTF-8", pszFrom);
    if (converter == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
    std::string out(text.size() * 4, '\0');
    char* from = const_cast<char*>(text.data());
    char* to = out.data();
    std::size_t left = text.size();
    std::size_t room = out.size();
    const bool bDone = iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
    iconv_close(converter);
    if (!bDone) return std::nullopt;
    out.resize(out.size() - room);
    return out;
}

} // namespace

std::string ToUtf8(std::string_view text)
{
    for (const char* page : {"UTF-8", "GB18030"})
        if (auto converted = Convert(text, page)) return *converted;
    std::string plain(text);
    for (char& ch : plain)
        if (static_cast<signed char>(ch) < 0) ch = '?';
    return plain;
}

std::string OneLine(std::string_view text)
{
    std::string line(text);
    for (char& ch : line)
        if (static_cast<unsigned char>(ch) < ' ' || ch == '\x7F') ch = ' ';
    return line;
}

std::string Hex(unsigned long long nValue)
{
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), nValue, 16).ptr;
    const auto count = static_cast<std::size_t>(std::distance(digits.begin(), end));
    return "0x" + std::string(digits.size() - count, '0') + std::string(digits.data(), count);
}

std::string ReadFile(const std::string& path, std::size_t nLimit)
{
    files::FileContent content;
    files::ReadWholeFile(path, nLimit, content); // where there is more, it has the beginning
    return std::move(content.bytes);
}

} // namespace kx::report
