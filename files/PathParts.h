#pragma once

#include "platform/FileSystem.h"
#include "platform/String.h"

namespace kx::files {

inline bool EndsInBackslash(const CString& strPath)
{
    return !strPath.IsEmpty() && strPath.ReverseFind('\\') == strPath.GetLength() - 1;
}

inline void AddBackslash(CString& strPath)
{
    if (!EndsInBackslash(strPath)) strPath += '\\';
}

// `.`, `..` and every other directory that the walks pass over.
inline bool BeginsWithPoint(const WIN32_FIND_DATAA& data)
{
    return data.cFileName[0] == '.';
}

} // namespace kx::files
