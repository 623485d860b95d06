#include "platform/crash/HeapFree.h"

#include "platform/UniqueFd.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>

namespace kx::crash {

namespace {

bool Exists(const char* pszPath) noexcept
{
    struct stat info;
    return lstat(pszPath, &info) == 0;
}

bool IsSame(std::string_view a, std::string_view b) noexcept
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return text::ToLower(x) == text::ToLower(y); });
}

// Replaces a name, in place, by the directory's entry that equals it; false without one. The calls of
// dirent.h would allocate.
bool Replace(const char* pszDirectory, char* pName, std::size_t length) noexcept
{
    const UniqueFd directory(open(pszDirectory, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    alignas(dirent64) std::array<char, 8192> block;
    std::array<char, NAME_MAX> best;
    if (!directory || length > best.size()) return false;
    bool bFound = false;
    for (ssize_t got; (got = getdents64(directory.Get(), block.data(), block.size())) > 0;) {
        for (ssize_t at = 0; at < got;) {
            const auto* entry = reinterpret_cast<const dirent64*>(block.data() + at);
            at += entry->d_reclen;
            if (!IsSame(entry->d_name, {pName, length})) continue;
            if (!bFound || std::memcmp(entry->d_name, best.data(), length) < 0)
                std::memcpy(best.data(), entry->d_name, length);
            bFound = true;
        }
    }
    if (bFound) std::memcpy(pName, best.data(), length);
    return bFound;
}

} // namespace

void MatchEntries(char* pszPath, std::size_t fixed) noexcept
{
    if (Exists(pszPath)) return;
    char* name = pszPath + fixed;
    while (*name) {
        char* const slash = *name == '/' ? name : nullptr; // none before a relative path's first component
        if (slash) ++name;
        char* const end = name + std::strcspn(name, "/");
        const char behind = *end;
        *end = '\0';
        bool bThere = Exists(pszPath);
        if (!bThere) {
            const char* directory = !slash ? "." : slash == pszPath ? "/" : pszPath;
            if (slash) *slash = '\0';
            bThere = Replace(directory, name, static_cast<std::size_t>(end - name));
            if (slash) *slash = '/';
        }
        *end = behind;
        if (!bThere) return;
        name = end;
    }
}

} // namespace kx::crash
