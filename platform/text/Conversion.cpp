#include "platform/text/Conversion.h"

#include "platform/text/CharWalk.h"
#include "platform/text/Iconv.h"

#include <algorithm>
#include <clocale>
#include <cwctype>

#include "include/platform/CodePage.h"

namespace kx::text {

bool IsAscii(std::string_view text) noexcept
{
    return std::all_of(text.begin(), text.end(), [](char ch) { return static_cast<signed char>(ch) >= 0; });
}

std::optional<std::string> ToUtf8(std::string_view codePageText)
{
    if (IsAscii(codePageText)) return std::string(codePageText);
    return Iconv::For(GetACP(), Iconv::Direction::ToUtf8).Convert(codePageText);
}

std::optional<std::string> FromUtf8(std::string_view utf8)
{
    if (IsAscii(utf8)) return std::string(utf8);
    return Iconv::For(GetACP(), Iconv::Direction::FromUtf8).Convert(utf8);
}

std::string FromUtf8Lossy(std::string_view utf8)
{
    if (IsAscii(utf8)) return std::string(utf8);
    return Iconv::For(GetACP(), Iconv::Direction::FromUtf8).ConvertLossy(utf8, "?");
}

std::string FoldCase(std::string_view utf8)
{
    std::string folded(utf8);
    if (IsAscii(utf8)) {
        std::transform(folded.begin(), folded.end(), folded.begin(), ToLower);
        return folded;
    }
    const auto wide = Iconv::For(CP_UTF8, Iconv::Direction::ToUtf32).Convert(utf8);
    if (!wide) return folded;
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    std::string units = *wide;
    for (std::size_t i = 0; i + 4 <= units.size(); i += 4) {
        char32_t unit = 0;
        units.copy(reinterpret_cast<char*>(&unit), 4, i);
        if (locale) unit = static_cast<char32_t>(towlower_l(static_cast<wint_t>(unit), locale));
        units.replace(i, 4, reinterpret_cast<const char*>(&unit), 4);
    }
    return Iconv::For(CP_UTF8, Iconv::Direction::FromUtf32).Convert(units).value_or(folded);
}

} // namespace kx::text
