#include "platform/xml/libxml/Markup.h"

#include "include/platform/CodePage.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <libxml/encoding.h>

namespace kx::xml::libxml {

namespace {

using text::Iconv;

constexpr const char* kUtf8 = "UTF-8";

// The bytes that stand first in a file in an encoding that can't be read as ASCII. A mark is no part of the
// text.
struct Start
{
    std::string_view bytes;
    const char* encoding; // null for UTF-8
    bool bMark;
};
using namespace std::string_view_literals;
constexpr Start kStarts[] = {
    {"\xEF\xBB\xBF"sv, nullptr, true},    {"\xFF\xFE\0\0"sv, "UTF-32LE", true},
    {"\0\0\xFE\xFF"sv, "UTF-32BE", true}, {"\xFF\xFE"sv, "UTF-16LE", true},
    {"\xFE\xFF"sv, "UTF-16BE", true},     {"<\0\0\0"sv, "UTF-32LE", false},
    {"\0\0\0<"sv, "UTF-32BE", false},     {"<\0?\0"sv, "UTF-16LE", false},
    {"\0<\0?"sv, "UTF-16BE", false},
};
constexpr std::string_view kEbcdic = "\x4C\x6F\xA7\x94"; // "<?xm", as all its code pages have it

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) noexcept
{
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view known) { return text::CompareNoCase(name, known) == 0; });
}

// Names that stand for code page 936, whichever of its subsets they belong to.
bool IsChinese(std::string_view name) noexcept
{
    return IsOneOf(name, {"gb2312", "gbk", "cp936", "gb18030"});
}

std::optional<std::string> ToUtf8(std::string_view bytes, const std::string& encoding)
{
    if (IsChinese(encoding)) return Iconv::For(CP_GBK, Iconv::Direction::ToUtf8).Convert(bytes);
    if (auto text = Iconv(kUtf8, encoding.c_str()).Convert(bytes)) return text;
    const char* const pszOther = xmlGetCharEncodingName(xmlParseCharEncoding(encoding.c_str()));
    return pszOther ? Iconv(kUtf8, pszOther).Convert(bytes) : std::nullopt;
}

// The converter's name of an encoding that is kept; null for others. Windows-1255 and 1258 are none: what
// they spell as a letter and its mark is read as one character.
const char* KeptAs(const std::string& encoding) noexcept
{
    const auto begins = [&](std::string_view prefix) {
        return text::CompareNoCase(std::string_view(encoding).substr(0, prefix.size()), prefix) == 0;
    };
    if (IsChinese(encoding)) return IsOneOf(encoding, {"gb18030"}) ? "GB18030" : "GBK";
    const bool bKept = begins("iso-8859-") || begins("windows-125") ||
                       IsOneOf(encoding, {"utf-16", "big5", "euc-jp", "euc-kr"});
    return bKept && !IsOneOf(encoding, {"windows-1255", "windows-1258"}) ? encoding.c_str() : nullptr;
}

// Takes the character at the text's front, which is UTF-8, out of it.
std::string TakeReference(std::string_view& utf8)
{
    int nLength = static_cast<int>(std::min<std::size_t>(utf8.size(), 4));
    const int nCode = xmlGetUTF8Char(ToXml(utf8.data()), &nLength);
    utf8.remove_prefix(static_cast<std::size_t>(std::max(nLength, 1)));
    return "&#" + std::to_string(nCode) + ";";
}

} // namespace

std::string DeclaredEncoding(std::string_view document)
{
    constexpr std::size_t kLongest = 1000;
    constexpr std::string_view kStart = "<?xml";
    constexpr std::string_view kName = "encoding";
    if (!document.starts_with(kStart) || document.size() == kStart.size()) return {};
    if (!text::IsSpace(document[kStart.size()])) return {}; // an instruction with a longer name
    std::string_view rest = document.substr(0, std::min(document.find("?>"), kLongest));
    const std::size_t at = rest.find(kName);
    if (at == rest.npos) return {};
    rest.remove_prefix(at + kName.size());
    const std::size_t open = rest.find_first_not_of(" \t\r\n=");
    if (open == rest.npos || (rest[open] != '"' && rest[open] != '\'')) return {};
    const std::string_view name = rest.substr(open + 1, rest.find(rest[open], open + 1) - open - 1);
    constexpr const char* kNameChars =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.:"; // nothing that iconv_open obeys
    return name.find_first_not_of(kNameChars) == name.npos ? std::string(name) : std::string();
}

std::optional<std::string> Decode(std::string bytes)
{
    for (const Start& start : kStarts) {
        if (!bytes.starts_with(start.bytes)) continue;
        if (start.bMark) bytes.erase(0, start.bytes.size());
        if (!start.encoding) return bytes;
        return Iconv(kUtf8, start.encoding).Convert(bytes);
    }
    std::string declared = DeclaredEncoding(bytes);
    if (bytes.starts_with(kEbcdic)) {
        const auto text = Iconv(kUtf8, "IBM037").Convert(std::string_view(bytes).substr(0, 1000));
        declared = text ? DeclaredEncoding(*text) : std::string();
        if (declared.empty()) declared = "IBM037";
    }
    if (declared.empty() || IsOneOf(declared, {kUtf8, "utf8"})) return bytes;
    return ToUtf8(bytes, declared);
}

std::optional<std::string> Encode(std::string_view utf8, const std::string& encoding)
{
    const char* const pszKept = KeptAs(encoding);
    if (!pszKept) return std::nullopt;
    const bool bWide = IsOneOf(encoding, {"utf-16"});
    Iconv converter(bWide ? "UTF-16LE" : pszKept, kUtf8);
    std::string bytes(bWide ? "\xFF\xFE" : "");
    while (!converter.Append(utf8, bytes)) {
        if (!converter) return std::nullopt;
        bytes += TakeReference(utf8); // ASCII is the same in all that lack a character
    }
    return bytes;
}

} // namespace kx::xml::libxml
