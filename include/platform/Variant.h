#pragma once

// UTF-16 texts that carry their length, and values of several types. Any thread.

#include "../KXExport.h"
#include "Guid.h"
#include "Types.h"
#include "Unknown.h"

// A text with its length before it and a NUL behind. Null counts as the empty text. Who is given one as a
// result frees it; who is given one as an argument doesn't keep it.
using BSTR = WCHAR*;

// The head of a BSTR, before its text: the length in bytes. A caller may lay out an argument in memory of its
// own.
using BSTR_LENGTH = DWORD;
inline constexpr UINT MAX_BSTR_UNITS = 0x3FFFFFF0;

// Copies a text; null for a null text, one that is too long, or a lack of memory.
KX_API BSTR SysAllocString(const WCHAR* pszText);
// The same for `nUnits` units, NULs too. With a null `pText` the units are the caller's to fill.
KX_API BSTR SysAllocStringLen(const WCHAR* pText, UINT nUnits);
// Null does nothing.
KX_API void SysFreeString(BSTR bstr);
// In units; 0 for null.
KX_API UINT SysStringLen(BSTR bstr);

// The kinds of value that a VARIANT holds.
using VARTYPE = WORD;
inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_NULL = 1;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_R8 = 5;
inline constexpr VARTYPE VT_BSTR = 8;

// True or false, as a VARIANT has them.
using VARIANT_BOOL = std::int16_t;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

// Failures of VariantChangeType.
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005);
inline constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008);
inline constexpr HRESULT DISP_E_OVERFLOW = static_cast<HRESULT>(0x8002000A);

// A value and which of the VT_ types it has. It owns its text.
struct VARIANT
{
    // The kind, which says which of the values counts.
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union
    {
        // A number, a fraction, or a text.
        LONG lVal;
        double dblVal;
        BSTR bstrVal;
    };
};

// Makes it VT_EMPTY, whatever was in it.
KX_API void VariantInit(VARIANT* pVariant);
// The same after freeing its text. DISP_E_BADVARTYPE, and nothing done, for an unknown type.
KX_API HRESULT VariantClear(VARIANT* pVariant);

// Puts `*pSource`, turned to type `vt`, in the place of what `*pTarget` holds; both may be the same. A text
// becomes a number if it is one as a whole, blanks around it aside: a sign, decimal digits with a point, an
// exponent. A number becomes a whole one by rounding, a half to the even one, and text by its shortest form.
// VT_EMPTY counts as 0 and the empty text; nothing but itself can be made of VT_NULL.
// On failure the target stays as it is: DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW for a number out of the type's
// range, DISP_E_BADVARTYPE for an unknown type, E_INVALIDARG for a null pointer, E_OUTOFMEMORY. The flags are
// ignored.
KX_API HRESULT VariantChangeType(VARIANT* pTarget, const VARIANT* pSource, WORD wFlags, VARTYPE vt);
