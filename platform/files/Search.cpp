// FindFirstFileA, FindNextFileA, FindClose.

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/Handles.h"
#include "platform/files/Directory.h"
#include "platform/files/File.h"
#include "platform/files/Path.h"
#include "platform/sync/Mutex.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kx::files {

namespace {

// The length of the UTF-8 character at the front of a text that isn't empty.
std::size_t FrontLength(std::string_view text) noexcept
{
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        ++length;
    return length;
}

// Only the last `*` met needs to be tried again: whatever an earlier one took, the text between them was
// found at its first place.
bool MatchAll(std::string_view name, std::string_view pattern) noexcept
{
    bool bStar = false;
    std::string_view starName;
    std::string_view starPattern;
    while (!name.empty()) {
        if (!pattern.empty() && pattern.front() == '*') {
            pattern.remove_prefix(1);
            bStar = true;
            starName = name;
            starPattern = pattern;
        } else if (!pattern.empty() && pattern.front() == '?') {
            pattern.remove_prefix(1);
            name.remove_prefix(FrontLength(name));
        } else if (!pattern.empty() && pattern.front() == name.front()) {
            pattern.remove_prefix(1);
            name.remove_prefix(1);
        } else if (bStar) {
            starName.remove_prefix(FrontLength(starName));
            name = starName;
            pattern = starPattern;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*') == pattern.npos;
}

// Whether a name has the form of one with `*` (any characters, also none) and `?` (one character); both are
// in UTF-8 and folded. A closing `.*` also stands for no extension at all, so that `*.*` matches every name.
bool Matches(std::string_view name, std::string_view pattern) noexcept
{
    if (MatchAll(name, pattern)) return true;
    return pattern.ends_with(".*") && MatchAll(name, pattern.substr(0, pattern.size() - 2));
}

// An open search: the names that matched when it was opened, each looked at when it is delivered. Any thread.
class Search
{
public:
    static constexpr HandleKind HANDLE_KIND = HandleKind::Search;

    explicit Search(const Pattern& pattern);

    // Why the directory can't be searched; ERROR_SUCCESS otherwise.
    DWORD Error() const noexcept { return m_error; }
    // Delivers the next entry; false at the end.
    bool Next(WIN32_FIND_DATAA& data);

private:
    void Collect(const std::string& pattern);

    sync::Mutex m_lock;    // of what Next moves on
    Directory m_directory; // open only where there are wildcards: one entry needs no list
    std::string m_prefix;  // what makes that entry's name a path
    DWORD m_error = ERROR_SUCCESS;
    std::vector<std::string> m_names KX_GUARDED_BY(m_lock); // UTF-8
    std::size_t m_next KX_GUARDED_BY(m_lock) = 0;
};

bool IsDots(std::string_view name) noexcept
{
    return name == "." || name == "..";
}

} // namespace

Search::Search(const Pattern& pattern)
{
    if (!pattern.wildcards) {
        m_prefix = pattern.directory + "/";
        const sync::MutexLock lock(m_lock);
        m_names.push_back(pattern.name);
        return;
    }
    m_directory = Directory(pattern.directory.c_str());
    if (m_directory)
        Collect(text::FoldCase(pattern.name));
    else
        m_error = errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno);
}

void Search::Collect(const std::string& pattern)
{
    const sync::MutexLock lock(m_lock);
    for (const char* pszDots : {".", ".."})
        if (Matches(pszDots, pattern)) m_names.emplace_back(pszDots);

    std::vector<std::pair<std::string, std::string>> found; // in order ignoring case, then by bytes
    while (const auto entry = m_directory.Next()) {
        std::string folded = text::FoldCase(entry->name);
        if (Matches(folded, pattern)) found.emplace_back(std::move(folded), entry->name);
    }
    std::sort(found.begin(), found.end());
    for (auto& entry : found)
        m_names.push_back(std::move(entry.second));
}

bool Search::Next(WIN32_FIND_DATAA& data)
{
    const sync::MutexLock lock(m_lock);
    while (m_next < m_names.size()) {
        const std::string name = std::move(m_names[m_next++]);
        const auto bytes = text::FromUtf8(name);
        if (!bytes || bytes->size() >= sizeof(data.cFileName) || name.find('\\') != name.npos) continue;
        const bool bHidden = name[0] == '.' && !IsDots(name);
        const auto info = ReadEntryInfo(m_directory.Fd(), (m_prefix + name).c_str(), bHidden);
        if (!info) continue;
        data = *info;
        std::memcpy(data.cFileName, bytes->data(), bytes->size());
        return true;
    }
    return false;
}

} // namespace kx::files

HANDLE FindFirstFileA(const char* pszPattern, WIN32_FIND_DATAA* pData)
try {
    const auto pattern = kx::files::ResolvePattern(pszPattern);
    if (!pattern) return INVALID_HANDLE_VALUE;
    if (!pData) {
        kx::Fail(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    const auto search = std::make_shared<kx::files::Search>(*pattern);
    if (search->Error() == ERROR_SUCCESS && search->Next(*pData)) {
        const HANDLE handle = kx::AddHandle(search);
        return handle ? handle : INVALID_HANDLE_VALUE;
    }
    errno = ENOENT;
    if (search->Error() != ERROR_SUCCESS)
        kx::Fail(search->Error());
    else
        kx::files::FailAt(pattern->directory + "/" + pattern->name);
    return INVALID_HANDLE_VALUE;
} catch (...) {
    kx::NoMemory();
    return INVALID_HANDLE_VALUE;
}

int FindNextFileA(HANDLE hFind, WIN32_FIND_DATAA* pData)
try {
    const auto search = kx::FindHandle<kx::files::Search>(hFind);
    if (!search) return kx::Fail(ERROR_INVALID_HANDLE);
    if (!pData) return kx::Fail(ERROR_INVALID_PARAMETER);
    return search->Next(*pData) || kx::Fail(ERROR_NO_MORE_FILES);
} catch (...) {
    return kx::NoMemory();
}

int FindClose(HANDLE hFind)
{
    return kx::RemoveHandle<kx::files::Search>(hFind) != nullptr || kx::Fail(ERROR_INVALID_HANDLE);
}
