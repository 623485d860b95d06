#include "include/platform/Variant.h"

#include "platform/xml/WideText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>

namespace {

char* BlockOf(BSTR bstr) noexcept
{
    return reinterpret_cast<char*>(bstr) - sizeof(BSTR_LENGTH);
}

bool IsKnown(VARTYPE vt) noexcept
{
    return vt == VT_EMPTY || vt == VT_NULL || vt == VT_I4 || vt == VT_R8 || vt == VT_BSTR;
}

// The text without the blanks around it and a plus sign.
std::string_view Plain(std::string_view text) noexcept
{
    constexpr std::string_view kBlanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    text.remove_suffix(text.size() - (text.find_last_not_of(kBlanks) + 1));
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
}

HRESULT ToReal(std::string_view text, double& value) noexcept
{
    text = Plain(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) return DISP_E_TYPEMISMATCH;
    if (error != std::errc()) return DISP_E_OVERFLOW;
    return std::isfinite(value) ? S_OK : DISP_E_TYPEMISMATCH; // "inf", "nan" are words
}

HRESULT ToLong(double real, LONG& value) noexcept
{
    const double rounded = std::nearbyint(real);
    if (!(rounded >= std::numeric_limits<LONG>::min() && rounded <= std::numeric_limits<LONG>::max()))
        return DISP_E_OVERFLOW;
    value = static_cast<LONG>(rounded);
    return S_OK;
}

HRESULT ToReal(const VARIANT& source, double& value)
{
    switch (source.vt) {
    case VT_EMPTY:
        value = 0;
        return S_OK;
    case VT_I4:
        value = source.lVal;
        return S_OK;
    case VT_R8:
        value = source.dblVal;
        return S_OK;
    case VT_BSTR:
        return ToReal(kx::xml::ToUtf8(source.bstrVal), value);
    default:
        return DISP_E_TYPEMISMATCH;
    }
}

template <class Number>
BSTR NumberText(Number value)
{
    std::array<char, 32> text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    return kx::xml::ToBstr({text.data(), static_cast<std::size_t>(result.ptr - text.data())});
}

HRESULT ToText(const VARIANT& source, BSTR& value)
{
    switch (source.vt) {
    case VT_EMPTY:
        value = kx::xml::ToBstr({});
        break;
    case VT_I4:
        value = NumberText(source.lVal);
        break;
    case VT_R8:
        value = NumberText(source.dblVal);
        break;
    case VT_BSTR:
        value = SysAllocStringLen(source.bstrVal, SysStringLen(source.bstrVal));
        break;
    default:
        return DISP_E_TYPEMISMATCH;
    }
    return value ? S_OK : E_OUTOFMEMORY;
}

HRESULT Convert(const VARIANT& source, VARTYPE vt, VARIANT& result)
{
    double real = 0;
    HRESULT hr = S_OK;
    result.vt = vt;
    switch (vt) {
    case VT_BSTR:
        return ToText(source, result.bstrVal);
    case VT_R8:
        return ToReal(source, result.dblVal);
    case VT_I4:
        hr = ToReal(source, real);
        return SUCCEEDED(hr) ? ToLong(real, result.lVal) : hr;
    default: // empty and null are made of themselves alone
        return source.vt == vt ? S_OK : DISP_E_TYPEMISMATCH;
    }
}

} // namespace

BSTR SysAllocString(const WCHAR* pszText)
{
    if (!pszText) return nullptr;
    const std::u16string_view text(pszText);
    return text.size() <= MAX_BSTR_UNITS ? SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))
                                         : nullptr;
}

BSTR SysAllocStringLen(const WCHAR* pText, UINT nUnits)
{
    if (nUnits > MAX_BSTR_UNITS) return nullptr;
    const BSTR_LENGTH nBytes = nUnits * static_cast<BSTR_LENGTH>(sizeof(WCHAR));
    auto* const block = static_cast<char*>(std::malloc(sizeof nBytes + nBytes + sizeof(WCHAR)));
    if (!block) return nullptr;
    std::memcpy(block, &nBytes, sizeof nBytes);
    auto* const bstr = reinterpret_cast<BSTR>(block + sizeof nBytes);
    if (pText && nUnits > 0) std::memcpy(bstr, pText, nBytes);
    bstr[nUnits] = u'\0';
    return bstr;
}

void SysFreeString(BSTR bstr)
{
    if (bstr) std::free(BlockOf(bstr));
}

UINT SysStringLen(BSTR bstr)
{
    if (!bstr) return 0;
    BSTR_LENGTH nBytes;
    std::memcpy(&nBytes, BlockOf(bstr), sizeof nBytes);
    return nBytes / static_cast<UINT>(sizeof(WCHAR));
}

void VariantInit(VARIANT* pVariant)
{
    if (pVariant) *pVariant = VARIANT{};
}

HRESULT VariantClear(VARIANT* pVariant)
{
    if (!pVariant) return E_INVALIDARG;
    if (!IsKnown(pVariant->vt)) return DISP_E_BADVARTYPE;
    if (pVariant->vt == VT_BSTR) SysFreeString(pVariant->bstrVal);
    VariantInit(pVariant);
    return S_OK;
}

HRESULT VariantChangeType(VARIANT* pTarget, const VARIANT* pSource, WORD, VARTYPE vt)
try {
    if (!pTarget || !pSource) return E_INVALIDARG;
    if (!IsKnown(vt) || !IsKnown(pSource->vt) || !IsKnown(pTarget->vt)) return DISP_E_BADVARTYPE;
    if (pTarget == pSource && pSource->vt == vt) return S_OK;
    VARIANT result{};
    const HRESULT hr = Convert(*pSource, vt, result);
    if (FAILED(hr)) return hr;
    VariantClear(pTarget);
    *pTarget = result;
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}
