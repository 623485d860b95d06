#pragma once

#include "include/platform/Registry.h"

#include <string_view>

namespace test {

// Stores a value of the current user's, as another program may.
inline void StoreValue(const char* pszKey, const char* pszName, DWORD dwType, std::string_view bytes)
{
    HKEY hKey = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, pszKey, 0, nullptr, 0, KEY_WRITE, nullptr, &hKey, nullptr);
    RegSetValueExA(hKey, pszName, 0, dwType, reinterpret_cast<const BYTE*>(bytes.data()),
                   static_cast<DWORD>(bytes.size()));
    RegCloseKey(hKey);
}

} // namespace test
