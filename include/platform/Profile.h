#pragma once

// Private profile (INI) files: sections in square brackets, lines of key and value divided by the first "=".
// White space around names and values doesn't count; a value in a pair of matching quotes loses them, and one
// with a NUL ends there; lines that begin with ";" are remarks. Sections and keys are found ignoring the case
// of ASCII letters, the first of several equal ones; keys before the first section are in none. Texts are
// bytes in the process's code page; a UTF-8 mark at the file's start is passed over. A file over 16 MiB, and
// what is no file, counts as unreadable. Any thread; no file stays open.

#include "../KXExport.h"
#include "Types.h"

// Copies the value, cut at a whole character to `nSize` - 1 bytes and ended, and returns its length. Without
// a file, section or key, and for a null name: the default, cut likewise (null counts as empty), with the
// last error set. Each call sees what other processes wrote before it; in between the file is parsed once.
KX_API DWORD GetPrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszDefault,
                                      char* pszBuffer, DWORD nSize, const char* pszFile);

// Sets a key's text, in its place or behind its section's last key; a null text removes the key, a null key
// the section, each with its equals. Everything else in the file stays as it is, line ends too; a new file
// has CR LF. The text is stored as it stands: white space at its ends, or a pair of quotes around it, is lost
// in reading, and a caller who wants to keep it puts the whole in quotes.
//
// Writers of one file, in all processes, wait for each other, and a reader or a kill at any moment finds the
// old file or the new one. To that end the file is replaced by one made beside it, ".<name>.kxnew", which
// keeps its mode and, where that is allowed, its owner, group and access list; a link stays and its target is
// replaced. A writer that another one holds up for five seconds fails with ERROR_SHARING_VIOLATION.
//
// Non-zero on success, also where there is nothing to change. 0, with the last error set and the file as it
// was, where the file can't be read or replaced, would pass 16 MiB, or for a section, key or text that
// wouldn't be found again: a line break in it, "]" in a section, "=" in a key, ";" or "[" at a key's start,
// no key.
KX_API int WritePrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszText,
                                      const char* pszFile);
