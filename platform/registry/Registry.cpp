#include "include/platform/Registry.h"

#include "platform/Immortal.h"
#include "platform/LiveHandles.h"
#include "platform/registry/RegistryFile.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace registry = kx::registry;

namespace {

constexpr DWORD kQueryValue = 0x1; // of the bits of KEY_READ and KEY_WRITE
constexpr DWORD kSetValue = 0x2;
constexpr DWORD kCreateSubKey = 0x4;

constexpr DWORD kMaxData = 1024 * 1024;
constexpr std::size_t kMaxValueName = 16383;

struct Key
{
    registry::KeyPath path;
    DWORD access = kQueryValue | kSetValue | kCreateSubKey;
};

using KeyPtr = std::shared_ptr<const Key>;

// The open keys by their numbers. A number is never given twice, so a key that was closed stays unknown.
class KeyTable
{
public:
    HKEY Add(Key key)
    {
        auto entry = std::make_shared<const Entry>(std::move(key));
        const std::lock_guard lock(m_lock);
        m_last += 4; // never HKEY_CURRENT_USER's, which is odd
        const HKEY hKey = reinterpret_cast<HKEY>(m_last);
        m_keys.emplace(hKey, std::move(entry));
        return hKey;
    }

    // Null for what is no open key.
    KeyPtr Find(HKEY hKey)
    {
        if (hKey == HKEY_CURRENT_USER) return m_root;
        const std::lock_guard lock(m_lock);
        const auto found = m_keys.find(hKey);
        if (found == m_keys.end()) return nullptr;
        return {found->second, &found->second->key};
    }

    bool Remove(HKEY hKey)
    {
        const std::lock_guard lock(m_lock);
        return m_keys.erase(hKey) > 0;
    }

private:
    struct Entry
    {
        explicit Entry(Key opened) : key(std::move(opened)) {}
        Key key;
        kx::LiveHandle live;
    };

    const KeyPtr m_root = std::make_shared<const Key>();
    std::mutex m_lock;
    std::unordered_map<HKEY, std::shared_ptr<const Entry>> m_keys;
    std::uintptr_t m_last = 0;
};

KeyTable& Keys()
{
    static kx::Immortal<KeyTable> keys;
    return keys.Get();
}

std::string_view ViewOf(const char* psz) noexcept
{
    return psz ? std::string_view(psz) : std::string_view();
}

// What opening and creating have in common: the path, or an error.
DWORD FindPath(HKEY hKey, const char* pszSubKey, DWORD dwAccess, HKEY* phResult, registry::KeyPath& path)
{
    if (!phResult) return ERROR_INVALID_PARAMETER;
    *phResult = nullptr;
    const KeyPtr parent = Keys().Find(hKey);
    if (!parent) return ERROR_INVALID_HANDLE;
    auto joined = registry::Join(parent->path, ViewOf(pszSubKey));
    if (!joined) return ERROR_INVALID_PARAMETER;
    path = std::move(*joined);
    return dwAccess & (kSetValue | kCreateSubKey) ? registry::CheckWritable() : ERROR_SUCCESS;
}

} // namespace

long RegOpenKeyExA(HKEY hKey, const char* pszSubKey, DWORD, DWORD dwAccess, HKEY* phResult)
{
    registry::KeyPath path;
    if (const DWORD error = FindPath(hKey, pszSubKey, dwAccess, phResult, path)) return error;
    if (!registry::HasKey(path)) return ERROR_FILE_NOT_FOUND;
    *phResult = Keys().Add({std::move(path), dwAccess});
    return ERROR_SUCCESS;
}

long RegCreateKeyExA(HKEY hKey, const char* pszSubKey, DWORD, char*, DWORD, DWORD dwAccess, void*,
                     HKEY* phResult, DWORD* pdwDisposition)
{
    registry::KeyPath path;
    if (const DWORD error = FindPath(hKey, pszSubKey, dwAccess, phResult, path)) return error;
    bool bNew = false;
    if (const DWORD error = registry::MakeKey(path, bNew)) return error;
    if (pdwDisposition) *pdwDisposition = bNew ? 1 : 2;
    *phResult = Keys().Add({std::move(path), dwAccess});
    return ERROR_SUCCESS;
}

long RegQueryValueExA(HKEY hKey, const char* pszValue, DWORD*, DWORD* pdwType, BYTE* pData, DWORD* pcbData)
{
    const KeyPtr key = Keys().Find(hKey);
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
}

long RegSetValueExA(HKEY hKey, const char* pszValue, DWORD, DWORD dwType, const BYTE* pData, DWORD cbData)
{
    const KeyPtr key = Keys().Find(hKey);
    if (!key) return ERROR_INVALID_HANDLE;
    if (!(key->access & kSetValue)) return ERROR_ACCESS_DENIED;
    const std::string_view name = ViewOf(pszValue);
    const bool bStorable = (pData || cbData == 0) && cbData <= kMaxData && name.size() <= kMaxValueName;
    if (!bStorable) return ERROR_INVALID_PARAMETER;
    registry::Value value{dwType, {}};
    if (cbData > 0) value.data.assign(reinterpret_cast<const char*>(pData), cbData);
    return registry::SetValue(key->path, name, value);
}

long RegCloseKey(HKEY hKey)
{
    if (hKey == HKEY_CURRENT_USER || Keys().Remove(hKey)) return ERROR_SUCCESS;
    return ERROR_INVALID_HANDLE;
}
