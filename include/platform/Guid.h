#pragma once

#include "../KXExport.h"
#include "Types.h"

// A number of 128 bits that no other has.
struct GUID
{
    // Its parts, as its text shows them.
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    bool operator==(const GUID&) const = default;
};

// How a call ended: below 0 it failed.
using HRESULT = std::int32_t;
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);

// A new random GUID (version 4) from the system's generator. E_FAIL, with `*pGuid` untouched, where that
// gives nothing. Any thread.
KX_API HRESULT CoCreateGuid(GUID* pGuid);

// Parses "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", in either case. CO_E_CLASSSTRING for any other text,
// with `*pGuid` all zero; null and the empty text give S_OK and all zero.
KX_API HRESULT CLSIDFromString(const WCHAR* pszText, GUID* pGuid);
