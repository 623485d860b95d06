#include "platform/xml/Functions.h"

#include "include/platform/CodePage.h"
#include "platform/text/Conversion.h"
#include "platform/text/Iconv.h"

#include <algorithm>
#include <cstring>

namespace kx::xml {

namespace {

using text::Iconv;

std::string FromUtf16(UINT nCodePage, std::u16string_view units)
{
    if (std::all_of(units.begin(), units.end(), [](WCHAR unit) { return unit < 0x80; }))
        return {units.begin(), units.end()};
    const std::string_view bytes(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(WCHAR));
    return Iconv::For(nCodePage, Iconv::Direction::FromUtf16).ConvertLossy(bytes, "?", sizeof(WCHAR));
}

} // namespace

std::string ToUtf8(BSTR bstr)
{
    return FromUtf16(CP_UTF8, {bstr, SysStringLen(bstr)});
}

std::string ToXmlText(BSTR bstr)
{
    std::u16string units(bstr, SysStringLen(bstr));
    const auto isNone = [](char16_t unit) {
        return (unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r') || unit >= 0xFFFE;
    };
    std::replace_if(units.begin(), units.end(), isNone, u'?');
    return FromUtf16(CP_UTF8, units);
}

BSTR ToBstr(std::string_view utf8)
{
    if (utf8.size() > MAX_BSTR_UNITS) return nullptr; // characters take no more units than bytes
    if (text::IsAscii(utf8)) {
        const BSTR ascii = SysAllocStringLen(nullptr, static_cast<UINT>(utf8.size()));
        if (ascii) std::copy(utf8.begin(), utf8.end(), ascii);
        return ascii;
    }
    const std::string wide =
        Iconv::For(CP_UTF8, Iconv::Direction::ToUtf16).ConvertLossy(utf8, std::string_view("\xFD\xFF"));
    const BSTR bstr = SysAllocStringLen(nullptr, static_cast<UINT>(wide.size() / sizeof(WCHAR)));
    if (bstr) std::copy_n(wide.data(), wide.size(), reinterpret_cast<char*>(bstr));
    return bstr;
}

std::string ToCodePage(BSTR bstr)
{
    return FromUtf16(GetACP(), {bstr, SysStringLen(bstr)});
}

} // namespace kx::xml
