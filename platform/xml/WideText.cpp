#include "platform/xml/WideText.h"

#include "include/platform/CodePage.h"
#include "platform/text/Iconv.h"

#include <algorithm>
#include <cstring>

namespace kx::xml {

namespace {

using text::Iconv;

std::u16string_view Units(BSTR bstr) noexcept
{
    return {bstr, SysStringLen(bstr)};
}

std::string FromUtf16(UINT nCodePage, std::u16string_view units)
{
    std::string text(units.size(), '\0');
    WCHAR all = 0;
    for (std::size_t n = 0; n < units.size(); ++n) {
        text[n] = static_cast<char>(units[n]);
        all |= units[n];
    }
    if (all < 0x80) return text;
    const std::string_view bytes(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(WCHAR));
    return Iconv::For(nCodePage, Iconv::Direction::FromUtf16).ConvertLossy(bytes, "?", sizeof(WCHAR));
}

bool IsControl(char ch) noexcept
{
    return static_cast<unsigned char>(ch) < 0x20 && ch != '\t' && ch != '\n' && ch != '\r';
}

// U+FFFE and U+FFFF are no characters.
void ReplaceNonCharacters(std::string& utf8)
{
    std::size_t at = utf8.find("\xEF\xBF");
    if (at == utf8.npos) return;
    auto to = utf8.begin() + static_cast<std::ptrdiff_t>(at);
    const std::string_view text = utf8;
    while (at < text.size()) {
        const std::string_view rest = text.substr(at);
        const bool bNone =
            rest.starts_with("\xEF\xBF") && rest.size() > 2 && static_cast<unsigned char>(rest[2]) >= 0xBE;
        *to++ = bNone ? '?' : rest[0];
        at += bNone ? 3 : 1;
    }
    utf8.erase(to, utf8.end());
}

} // namespace

std::string ToUtf8(BSTR bstr)
{
    return FromUtf16(CP_UTF8, Units(bstr));
}

std::string ToXmlText(BSTR bstr)
{
    std::string utf8 = ToUtf8(bstr);
    std::replace_if(utf8.begin(), utf8.end(), IsControl, '?');
    ReplaceNonCharacters(utf8);
    return utf8;
}

BSTR ToBstr(std::string_view utf8)
{
    if (utf8.size() > MAX_BSTR_UNITS) return nullptr; // characters take no more units than bytes
    const BSTR ascii = SysAllocStringLen(nullptr, static_cast<UINT>(utf8.size()));
    if (!ascii) return nullptr;
    std::size_t n = 0;
    for (; n < utf8.size() && static_cast<signed char>(utf8[n]) >= 0; ++n)
        ascii[n] = static_cast<WCHAR>(utf8[n]);
    if (n == utf8.size()) return ascii;
    SysFreeString(ascii);
    const std::string wide =
        Iconv::For(CP_UTF8, Iconv::Direction::ToUtf16).ConvertLossy(utf8, std::string_view("\xFD\xFF"));
    const BSTR bstr = SysAllocStringLen(nullptr, static_cast<UINT>(wide.size() / sizeof(WCHAR)));
    if (bstr) std::copy_n(wide.data(), wide.size(), reinterpret_cast<char*>(bstr));
    return bstr;
}

HRESULT Deliver(std::string_view utf8, BSTR* pbstr)
{
    if (!pbstr) return E_POINTER;
    *pbstr = ToBstr(utf8);
    return *pbstr ? S_OK : E_OUTOFMEMORY;
}

std::string ToCodePage(BSTR bstr)
{
    return FromUtf16(GetACP(), Units(bstr));
}

} // namespace kx::xml
