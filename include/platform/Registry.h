#pragma once

// Per-user values, kept in the file "registry.ini" below $XDG_CONFIG_HOME/kxcommon/ ($HOME/.config where
// that isn't set), or where the host says; the directory is made at the first write. Key paths are divided by
// backslashes, empty names in them counting for nothing; names of keys and values, of any bytes, are found
// ignoring the case of ASCII letters. Any thread; each call sees what other processes wrote before it, and
// writers in all processes wait for each other.
//
// Results are error codes: ERROR_SUCCESS (0); ERROR_FILE_NOT_FOUND without the key or value;
// ERROR_INVALID_HANDLE for what is no open key; ERROR_ACCESS_DENIED where the key wasn't opened for the
// access or the file doesn't allow it; ERROR_INVALID_PARAMETER for a null that isn't allowed, a key name over
// 255 bytes, a value name over 16,383 or data over 1 MiB; or what else kept the file from being written.

#include "../KXExport.h"
#include "Error.h"
#include "Types.h"

// The user's values.
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});

// Uses that a key is opened for.
inline constexpr DWORD KEY_READ = 0x20019;
inline constexpr DWORD KEY_WRITE = 0x20006;

// Kinds of value.
inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;

// Opens a key that exists, below HKEY_CURRENT_USER or an open key; without a name, that key again. The caller
// closes it with RegCloseKey. An access mask with KEY_WRITE fails where the file can't be written. On failure
// `*phResult` becomes null.
KX_API long RegOpenKeyExA(HKEY hKey, const char* pszSubKey, DWORD dwOptions, DWORD dwAccess, HKEY* phResult);

// Opens a key, making it and those above it where they lack. `pdwDisposition` (may be null) becomes 1 for a
// new key, 2 for an old one.
KX_API long RegCreateKeyExA(HKEY hKey, const char* pszSubKey, DWORD dwReserved, char* pszClass,
                            DWORD dwOptions, DWORD dwAccess, void* pSecurity, HKEY* phResult,
                            DWORD* pdwDisposition);

// Reads a value; a null or empty name is the key's own. `*pcbData` goes in as the buffer's size and comes out
// as the value's, NUL included where it was stored with one. ERROR_MORE_DATA when it doesn't fit: the buffer
// is then untouched. `pdwType` and `pData` may be null.
KX_API long RegQueryValueExA(HKEY hKey, const char* pszValue, DWORD* pdwReserved, DWORD* pdwType, BYTE* pData,
                             DWORD* pcbData);

// Stores a value's bytes as they are.
KX_API long RegSetValueExA(HKEY hKey, const char* pszValue, DWORD dwReserved, DWORD dwType, const BYTE* pData,
                           DWORD cbData);

// Ends a handle, which then is none. HKEY_CURRENT_USER stays open.
KX_API long RegCloseKey(HKEY hKey);
