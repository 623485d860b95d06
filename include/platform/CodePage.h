#pragma once

// 8-bit text in the process's code page: 936 (GBK) unless the host chose 65001 (see Host.h). Code page 936 is
// GB18030 here, its superset: what GBK lacks takes four bytes, so that every Unicode text survives the round
// trip. Byte 80, which GB18030 lacks, is read as the euro sign, which is written as A2 E3.
// All operations may be called from any thread.

#include "../KXExport.h"
#include "Types.h"

inline constexpr UINT CP_ACP = 0; // whatever GetACP() gives
// The two code pages that a process can have.
inline constexpr UINT CP_UTF8 = 65001;
inline constexpr UINT CP_GBK = 936;

// The process's code page, 936 or 65001.
KX_API UINT GetACP() noexcept;

// Non-zero if the byte begins a character of two or four bytes of the process's code page; always 0 in 65001.
KX_API int IsDBCSLeadByte(BYTE ch) noexcept;

// Converts 8-bit text to UTF-16. `nSource` is in bytes, -1 for a text that ends in a NUL, which is then
// converted along. With `nTarget` 0 nothing is written. Bytes that are no character become U+FFFD. The flags
// are ignored.
// Returns the count of UTF-16 units written or needed; 0 for an unknown code page, a null or empty source,
// or a target that is too small (ERROR_INSUFFICIENT_BUFFER; the target holds nothing usable then).
KX_API int MultiByteToWideChar(UINT nCodePage, DWORD dwFlags, const char* pszSource, int nSource,
                               WCHAR* pTarget, int nTarget);

// The way back, with the same rules; half of a surrogate pair, all that either code page lacks, becomes "?".
// The flags and the two last arguments are accepted and ignored.
KX_API int WideCharToMultiByte(UINT nCodePage, DWORD dwFlags, const WCHAR* pSource, int nSource,
                               char* pszTarget, int nTarget, const char* pszDefault = nullptr,
                               int* pbUsedDefault = nullptr);

// Compares two texts ignoring case, as a path finds its entries: letters of all scripts are folded by
// Unicode's simple mapping. Negative, 0 or positive in the order of the folded texts; a null text counts as
// the empty one. Where memory lacks, or a text has bytes that are no character, bytes are compared.
KX_API int lstrcmpiA(const char* psz1, const char* psz2) noexcept;
