#include "include/platform/Variant.h"

#include "platform/Errno.h"
#include "platform/text/CharWalk.h"
#include "platform/xml/Functions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
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

HRESULT ToReal(std::string_view text, double& value) noexcept
{
    text = kx::text::Trim(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) return DISP_E_TYPEMISMATCH;
    if (error != std::errc()) return DISP_E_OVERFLOW;
    return std::isfinite(value) ? S_OK : DISP_E_TYPEMISMATCH; // "inf", "nan" are words
}

HRESULT ToReal(const VARIANT& source, double& value)
{
    if (source.vt == VT_NULL) return DISP_E_TYPEMISMATCH;
    if (source.vt == VT_BSTR) return ToReal(kx::xml::ToUtf8(source.bstrVal), value);
    value = source.vt == VT_I4 ? source.lVal : source.vt == VT_R8 ? source.dblVal : 0;
    return S_OK;
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
    if (source.vt == VT_NULL) return DISP_E_TYPEMISMATCH;
    value = source.vt == VT_I4     ? NumberText(source.lVal)
            : source.vt == VT_R8   ? NumberText(source.dblVal)
            : source.vt == VT_BSTR ? SysAllocStringLen(source.bstrVal, SysStringLen(source.bstrVal))
                                   : kx::xml::ToBstr({});
    return value ? S_OK : E_OUTOFMEMORY;
}

HRESULT Convert(const VARIANT& source, VARTYPE vt, VARIANT& result)
{
    result.vt = vt;
    if (vt == VT_BSTR) return ToText(source, result.bstrVal);
    if (vt == VT_R8) return ToReal(source, result.dblVal);
    if (vt != VT_I4) return source.vt == vt ? S_OK : DISP_E_TYPEMISMATCH; // made of themselves alone
    double real = 0;
    if (const HRESULT hr = ToReal(source, real); FAILED(hr)) return hr;
    real = std::nearbyint(real);
    using Limits = std::numeric_limits<LONG>;
    if (!(real >= Limits::min() && real <= Limits::max())) return DISP_E_OVERFLOW;
    result.lVal = static_cast<LONG>(real);
    return S_OK;
}

} // namespace

BSTR SysAllocString(const WCHAR* pszText)
{
    if (!pszText) return nullptr;
    const std::size_t nUnits = std::u16string_view(pszText).size();
    return SysAllocStringLen(
        pszText, static_cast<UINT>(std::min<std::size_t>(nUnits, std::numeric_limits<UINT>::max())));
}

BSTR SysAllocStringLen(const WCHAR* pText, UINT nUnits)
{
    const BSTR_LENGTH nBytes = nUnits * static_cast<BSTR_LENGTH>(sizeof(WCHAR));
    void* const memory =
        nUnits > MAX_BSTR_UNITS ? nullptr : std::malloc(sizeof nBytes + nBytes + sizeof(WCHAR));
    if (!memory) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    auto* const block = static_cast<char*>(memory);
    std::memcpy(block, &nBytes, sizeof nBytes);
    auto* const bstr = reinterpret_cast<BSTR>(block + sizeof nBytes);
    if (pText) std::memcpy(bstr, pText, nBytes);
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
} catch (...) {
    kx::NoMemory();
    return E_OUTOFMEMORY;
}
