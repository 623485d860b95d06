#include "platform/files/Search.h"

#include "platform/Errno.h"
#include "platform/files/EntryInfo.h"
#include "platform/files/Wildcard.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kx::path {

namespace {

bool IsDots(std::string_view name) noexcept
{
    return name == "." || name == "..";
}

} // namespace

Search::Search(const Pattern& pattern)
{
    if (!pattern.wildcards) {
        m_prefix = pattern.directory + "/";
        m_names.push_back(pattern.name);
        return;
    }
    m_directory = Directory(pattern.directory.c_str());
    if (m_directory)
        Collect(pattern.name);
    else
        m_error = errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno);
}

void Search::Collect(const std::string& pattern)
{
    const Wildcard wildcard(pattern);
    for (const char* pszDots : {".", ".."})
        if (wildcard.Matches(pszDots)) m_names.emplace_back(pszDots);

    std::vector<std::pair<std::string, std::string>> found; // in order ignoring case, then by bytes
    while (const auto entry = m_directory.Next()) {
        std::string folded = text::FoldCase(entry->name);
        if (wildcard.Matches(folded)) found.emplace_back(std::move(folded), entry->name);
    }
    std::sort(found.begin(), found.end());
    for (auto& entry : found)
        m_names.push_back(std::move(entry.second));
}

bool Search::Next(WIN32_FIND_DATAA& data)
{
    const std::lock_guard lock(m_lock);
    while (m_next < m_names.size()) {
        const std::string name = std::move(m_names[m_next++]);
        const auto bytes = text::FromUtf8(name);
        if (!bytes || bytes->size() >= sizeof(data.cFileName) || name.find('\\') != name.npos) continue;
        const bool bHidden = name[0] == '.' && !IsDots(name);
        const auto info = ReadEntryInfo(m_directory.Fd(), (m_prefix + name).c_str(), bHidden);
        if (!info) continue;
        data = {};
        data.dwFileAttributes = info->dwAttributes;
        data.ftCreationTime = info->ftCreation;
        data.ftLastAccessTime = info->ftAccess;
        data.ftLastWriteTime = info->ftWrite;
        data.nFileSizeHigh = static_cast<DWORD>(info->size >> 32);
        data.nFileSizeLow = static_cast<DWORD>(info->size);
        std::memcpy(data.cFileName, bytes->data(), bytes->size());
        return true;
    }
    return false;
}

} // namespace kx::path
