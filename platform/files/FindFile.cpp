// FindFirstFileA, FindNextFileA, FindClose.

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/files/EntryInfo.h"
#include "platform/files/Search.h"

#include <memory>
#include <unordered_map>

namespace {

// The open searches. Handles are numbers that are never given twice, so that a stale one names nothing.
class Searches
{
public:
    HANDLE Add(std::shared_ptr<kx::path::Search> search)
    {
        const std::lock_guard lock(m_lock);
        m_open.emplace(++m_last, std::move(search));
        return reinterpret_cast<HANDLE>(m_last);
    }

    std::shared_ptr<kx::path::Search> Find(HANDLE hFind)
    {
        const std::lock_guard lock(m_lock);
        const auto found = m_open.find(reinterpret_cast<std::uintptr_t>(hFind));
        return found != m_open.end() ? found->second : nullptr;
    }

    bool Remove(HANDLE hFind)
    {
        const std::lock_guard lock(m_lock);
        return m_open.erase(reinterpret_cast<std::uintptr_t>(hFind)) > 0;
    }

private:
    std::mutex m_lock;
    std::uintptr_t m_last = 0;
    std::unordered_map<std::uintptr_t, std::shared_ptr<kx::path::Search>> m_open;
};

Searches& TheSearches()
{
    static kx::Immortal<Searches> searches;
    return searches.Get();
}

} // namespace

HANDLE FindFirstFileA(const char* pszPattern, WIN32_FIND_DATAA* pData)
{
    const auto pattern = kx::path::ResolvePattern(pszPattern);
    if (!pattern) return INVALID_HANDLE_VALUE;
    if (!pData) {
        kx::Fail(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    const auto search = std::make_shared<kx::path::Search>(*pattern);
    if (search->Error() == ERROR_SUCCESS && search->Next(*pData)) return TheSearches().Add(search);
    errno = ENOENT;
    if (search->Error() != ERROR_SUCCESS)
        kx::Fail(search->Error());
    else
        kx::path::FailAt(pattern->directory + "/" + pattern->name);
    return INVALID_HANDLE_VALUE;
}

int FindNextFileA(HANDLE hFind, WIN32_FIND_DATAA* pData)
{
    const auto search = TheSearches().Find(hFind);
    if (!search) return kx::Fail(ERROR_INVALID_HANDLE);
    if (!pData) return kx::Fail(ERROR_INVALID_PARAMETER);
    return search->Next(*pData) || kx::Fail(ERROR_NO_MORE_FILES);
}

int FindClose(HANDLE hFind)
{
    return TheSearches().Remove(hFind) || kx::Fail(ERROR_INVALID_HANDLE);
}
