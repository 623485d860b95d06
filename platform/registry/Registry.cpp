#include "include/platform/Registry.h"

#include "platform/Errno.h"
#include "platform/Handles.h"
#include "platform/Immortal.h"
#include "platform/registry/RegistryFile.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace registry = kx::registry;

namespace {

constexpr DWORD kQueryValue = 0x1; // of the bits of KEY_READ and KEY_WRITE
constexpr DWORD kSetValue = 0x2;
constexpr DWORD kCreateSubKey = 0x4;

constexpr DWORD kMaxData = 1024 * 1024;
constexpr std::size_t kMaxValueName = 16383;

struct Key
{
    static constexpr kx::HandleKind HANDLE_KIND = kx::HandleKind::RegistryKey;

    registry::KeyPath path;
    DWORD access = kQueryValue | kSetValue | kCreateSubKey;
};

using KeyPtr = std::shared_ptr<Key>;

// Null for what is no open key.
KeyPtr FindKey(HKEY hKey)
{
    static kx::Immortal<KeyPtr> root(std::make_shared<Key>());
    return hKey == HKEY_CURRENT_USER ? root.Get() : kx::FindHandle<Key>(hKey);
}

DWORD OpenKey(registry::KeyPath path, DWORD dwAccess, HKEY* phResult)
{
    *phResult = static_cast<HKEY>(kx::AddHandle(std::make_shared<Key>(Key{std::move(path), dwAccess})));
    return *phResult ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY;
}

std::string_view ViewOf(const char* psz) noexcept
{
    return psz ? std::string_view(psz) : std::string_view();
}

// The part that opening and creating have in common: the path, or an error.
DWORD FindPath(HKEY hKey, const char* pszSubKey, DWORD dwAccess, HKEY* phResult, registry::KeyPath& path)
{
    if (!phResult) return ERROR_INVALID_PARAMETER;
    *phResult = nullptr;
    const KeyPtr parent = FindKey(hKey);
    if (!parent) return ERROR_INVALID_HANDLE;
    auto joined = registry::Join(parent->path, ViewOf(pszSubKey));
    if (!joined) return ERROR_INVALID_PARAMETER;
    path = std::move(*joined);
    return dwAccess & (kSetValue | kCreateSubKey) ? registry::CheckWritable() : ERROR_SUCCESS;
}

} // namespace

long RegOpenKeyExA(HKEY hKey, const char* pszSubKey, DWORD, DWORD dwAccess, HKEY* phResult)
try {
    registry::KeyPath path;
    if (const DWORD error = FindPath(hKey, pszSubKey, dwAccess, phResult, path)) return error;
    if (!registry::HasKey(path)) return ERROR_FILE_NOT_FOUND;
    return static_cast<long>(OpenKey(std::move(path), dwAccess, phResult));
} catch (...) {
    kx::NoMemory();
    return ERROR_NOT_ENOUGH_MEMORY;
}

long RegCreateKeyExA(HKEY hKey, const char* pszSubKey, DWORD, char*, DWORD, DWORD dwAccess, void*,
                     HKEY* phResult, DWORD* pdwDisposition)
try {
    registry::KeyPath path;
    if (const DWORD error = FindPath(hKey, pszSubKey, dwAccess, phResult, path)) return error;
    bool bNew = false;
    if (const DWORD error = registry::MakeKey(path, bNew)) return error;
    if (pdwDisposition) *pdwDisposition = bNew ? 1 : 2;
    return static_cast<long>(OpenKey(std::move(path), dwAccess, phResult));
} catch (...) {
    kx::NoMemory();
    return ERROR_NOT_ENOUGH_MEMORY;
}

long RegQueryValueExA(HKEY hKey, const char* pszValue, DWORD*, DWORD* pdwType, BYTE* pData, DWORD* pcbData)
try {
    const KeyPtr key = FindKey(hKey);
    if (!key) return ERROR_INVALID_HANDLE;
    if (!(key->access & kQueryValue)) return ERROR_ACCESS_DENIED;
    if (pData && !pcbData) return ERROR_INVALID_PARAMETER;
    const auto value = registry::FindValue(key->path, ViewOf(pszValue));
    if (!value) return ERROR_FILE_NOT_FOUND;

    if (pdwType) *pdwType = value->type;
    if (!pcbData) return ERROR_SUCCESS;
    const DWORD room = *pcbData;
    *pcbData = static_cast<DWORD>(value->data.size());
    if (!pData) return ERROR_SUCCESS;
    if (room < *pcbData) return ERROR_MORE_DATA;
    std::copy_n(value->data.data(), value->data.size(), pData);
    return ERROR_SUCCESS;
} catch (...) {
    kx::NoMemory();
    return ERROR_NOT_ENOUGH_MEMORY;
}

long RegSetValueExA(HKEY hKey, const char* pszValue, DWORD, DWORD dwType, const BYTE* pData, DWORD cbData)
try {
    const KeyPtr key = FindKey(hKey);
    if (!key) return ERROR_INVALID_HANDLE;
    if (!(key->access & kSetValue)) return ERROR_ACCESS_DENIED;
    const std::string_view name = ViewOf(pszValue);
    const bool bStorable = (pData || cbData == 0) && cbData <= kMaxData && name.size() <= kMaxValueName;
    if (!bStorable) return ERROR_INVALID_PARAMETER;
    registry::Value value{dwType, {}};
    if (cbData > 0) value.data.assign(reinterpret_cast<const char*>(pData), cbData);
    return registry::SetValue(key->path, name, value);
} catch (...) {
    kx::NoMemory();
    return ERROR_NOT_ENOUGH_MEMORY;
}

long RegCloseKey(HKEY hKey)
{
    if (hKey == HKEY_CURRENT_USER || kx::RemoveHandle<Key>(hKey)) return ERROR_SUCCESS;
    return ERROR_INVALID_HANDLE;
}
