#include "include/platform/Com.h"
#include "include/platform/CodePage.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/module/Door.h"
#include "platform/text/Conversion.h"
#include "platform/xml/Functions.h"

#include <algorithm>
#include <cstring>
#include <new>

KX_DOOR(xml, kx::xml::Functions);

namespace {
thread_local int g_nInitialized = 0;
}

HRESULT CoInitialize(void*)
{
    return g_nInitialized++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize()
{
    if (g_nInitialized > 0) --g_nInitialized;
}

HRESULT CoCreateInstance(const GUID& clsid, IUnknown* pOuter, DWORD dwContext, const GUID& iid,
                         void** ppObject)
try {
    constexpr DWORD kInProcess = 1;
    if (!ppObject) return E_POINTER;
    *ppObject = nullptr;
    if (g_nInitialized == 0) {
        kx::debug::Tell("xml", "CoInitialize was not called on this thread; there is no document");
        return CO_E_NOTINITIALIZED;
    }
    if (clsid != CLSID_DOMDocument || !(dwContext & kInProcess)) return REGDB_E_CLASSNOTREG;
    if (pOuter) return CLASS_E_NOAGGREGATION;
    const kx::xml::Functions* const functions = g_door.Open();
    if (!functions) return REGDB_E_CLASSNOTREG;
    IXMLDOMDocument* const document = functions->makeDocument();
    const HRESULT result = document->QueryInterface(iid, ppObject);
    document->Release();
    return result;
} catch (...) {
    kx::NoMemory();
    return E_OUTOFMEMORY;
}

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
