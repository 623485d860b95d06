#pragma once

// Per-user values, kept in the file "registry.ini" below $XDG_CONFIG_HOME/kxcommon/ ($HOME/.config where
// that isn't set), or where the host says. Key paths are divided by backslashes; names of keys and values
// are found ignoring the case of ASCII letters. Results are error codes, ERROR_SUCCESS (0) on success. Any
// thread; writers in all processes wait for each other.

#include "../KXExport.h"
#include "Error.h"
#include "Types.h"

inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});

inline constexpr DWORD KEY_READ = 0x20019;
inline constexpr DWORD KEY_WRITE = 0x20006;

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;

// Opens a key that exists, below HKEY_CURRENT_USER or an open key. The caller closes it with RegCloseKey.
// An access mask with KEY_WRITE fails where the file can't be written.
KX_API long RegOpenKeyExA(HKEY hKey, const char* pszSubKey, DWORD dwOptions, DWORD dwAccess, HKEY* phResult);

// Opens a key, making it and those above it where they lack. `pdwDisposition` (may be null) becomes 1 for a
// new key, 2 for an old one.
KX_API long RegCreateKeyExA(HKEY hKey, const char* pszSubKey, DWORD dwReserved, char* pszClass,
                            DWORD dwOptions, DWORD dwAccess, void* pSecurity, HKEY* phResult,
                            DWORD* pdwDisposition);

// Reads a value. `*pcbData` goes in as the buffer's size and comes out as the value's, NUL included where it
// was stored with one. ERROR_MORE_DATA when it doesn't fit: the buffer is then untouched. `pdwType` and
// `pData` may be null.
KX_API long RegQueryValueExA(HKEY hKey, const char* pszValue, DWORD* pdwReserved, DWORD* pdwType, BYTE* pData,
                             DWORD* pcbData);

// Stores a value's bytes as they are. At most 1 MiB.
KX_API long RegSetValueExA(HKEY hKey, const char* pszValue, DWORD dwReserved, DWORD dwType, const BYTE* pData,
                           DWORD cbData);

KX_API long RegCloseKey(HKEY hKey);
