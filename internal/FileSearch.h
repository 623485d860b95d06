#pragma once

#include "include/platform/Error.h"
#include "include/platform/Exception.h"
#include "include/platform/FileSystem.h"
#include "include/platform/String.h"

namespace kx {

inline bool IsDirectory(const WIN32_FIND_DATAA& data)
{
    return (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

inline bool IsLink(const WIN32_FIND_DATAA& data)
{
    return (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

// After a call that failed. An entry that isn't found for lack of memory must not count as one that isn't
// there.
inline void ThrowIfNoMemory()
{
    if (GetLastError() == ERROR_NOT_ENOUGH_MEMORY) AfxThrowMemoryException();
}

// An open search, which stands at an entry until Next gives false. It closes itself.
class FileSearch
{
public:
    FileSearch(const CString& strPattern, WIN32_FIND_DATAA& data)
        : m_data(data), m_hFind(FindFirstFileA(strPattern, &data))
    {
        if (!*this) ThrowIfNoMemory();
    }
    FileSearch(const FileSearch&) = delete;
    FileSearch& operator=(const FileSearch&) = delete;
    ~FileSearch() { Close(); }

    explicit operator bool() const { return m_hFind != INVALID_HANDLE_VALUE; }
    bool Next()
    {
        const bool bFound = FindNextFileA(m_hFind, &m_data) != 0;
        if (!bFound) ThrowIfNoMemory();
        return bFound;
    }
    // Non-zero if it was open and is closed now.
    int Close()
    {
        if (!*this) return 0;
        const int bClosed = FindClose(m_hFind);
        m_hFind = INVALID_HANDLE_VALUE;
        return bClosed;
    }

private:
    WIN32_FIND_DATAA& m_data;
    HANDLE m_hFind;
};

} // namespace kx
