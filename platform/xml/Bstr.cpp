#include "include/platform/Variant.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

char* BlockOf(BSTR bstr) noexcept
{
    return reinterpret_cast<char*>(bstr) - sizeof(BSTR_LENGTH);
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
