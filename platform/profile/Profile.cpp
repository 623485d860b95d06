#include "include/platform/Profile.h"

#include "platform/Errno.h"
#include "platform/files/Path.h"
#include "platform/profile/IniEdit.h"
#include "platform/profile/IniStore.h"
#include "platform/text/CharWalk.h"

namespace profile = kx::profile;
namespace text = kx::text;

namespace {

constexpr mode_t kNewFile = 0666;

std::string_view TrimName(const char* psz) noexcept
{
    return text::Trim(psz ? std::string_view(psz) : std::string_view());
}

} // namespace

DWORD GetPrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszDefault,
                               char* pszBuffer, DWORD nSize, const char* pszFile)
{
    if (!pszBuffer || nSize == 0) return 0;
    const std::string_view fallback = pszDefault ? pszDefault : "";
    try {
        const auto ini = pszSection && pszKey ? profile::Read(pszFile) : nullptr;
        const auto value = ini ? ini->Find(pszSection, pszKey) : std::nullopt;
        if (ini && !value) SetLastError(ERROR_FILE_NOT_FOUND);
        return static_cast<DWORD>(text::CopyCut(value.value_or(fallback), pszBuffer, nSize));
    } catch (...) {
        kx::NoMemory();
        return static_cast<DWORD>(text::CopyCut(fallback, pszBuffer, nSize));
    }
}

int WritePrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszText,
                               const char* pszFile)
try {
    const std::string_view section = TrimName(pszSection);
    const std::string_view key = TrimName(pszKey);
    const bool bStorable = pszSection && profile::IsSection(section) && (!pszKey || profile::IsKey(key)) &&
                           (!pszText || profile::IsValue(pszText));
    if (!bStorable) return kx::Fail(ERROR_INVALID_PARAMETER);
    const auto path = kx::files::ToSystem(pszFile);
    if (!path) return 0;

    const DWORD error = profile::Update(*path, kNewFile, [&](std::string_view old) {
        if (!pszKey) return profile::RemoveSection(old, section);
        if (!pszText) return profile::RemoveKey(old, section, key);
        return profile::SetKey(old, section, key, pszText);
    });
    return error == ERROR_SUCCESS ? 1 : kx::Fail(error);
} catch (...) {
    return kx::NoMemory();
}
