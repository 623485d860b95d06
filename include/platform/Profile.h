#pragma once

// Private profile (INI) files: sections in square brackets, lines of key and value divided by the first "=".
// White space around keys and values doesn't count; a value in a pair of matching quotes loses them; lines
// that begin with ";" are remarks. Sections and keys are found ignoring the case of ASCII letters, the first
// of several equal ones. Texts are bytes in the process's code page. A file over 16 MiB counts as unreadable.

#include "../KXExport.h"
#include "Types.h"

// Copies the value, cut to `nSize` - 1 bytes and ended, and returns its length. Without a file, section or
// key: the default, cut likewise (null counts as empty). Each call sees what other processes wrote before
// it; in between the file is parsed once. Any thread; no file stays open.
KX_API DWORD GetPrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszDefault,
                                      char* pszBuffer, DWORD nSize, const char* pszFile);

// Sets a key's text, in its place or at its section's end; a null text removes the key, a null key the
// section. Comments, order and line ends stay. Writers of one file, in all processes, wait for each other,
// and a reader or a kill at any moment finds the old file or the new one. Line breaks in a section, key or
// text can't be stored and fail. Non-zero on success.
KX_API int WritePrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszText,
                                      const char* pszFile);
