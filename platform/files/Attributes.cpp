#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/EntryInfo.h"
#include "platform/files/Path.h"

DWORD GetFileAttributesA(const char* pszPath)
{
    const auto path = kx::path::Resolve(pszPath);
    if (!path) return INVALID_FILE_ATTRIBUTES;
    const auto attributes = kx::path::ReadAttributes(path->system);
    if (!attributes) {
        kx::path::FailAt(path->system);
        return INVALID_FILE_ATTRIBUTES;
    }
    if (path->trailing && !(*attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        kx::Fail(ERROR_DIRECTORY);
        return INVALID_FILE_ATTRIBUTES;
    }
    return *attributes;
}

int PathFileExistsA(const char* pszPath)
{
    return GetFileAttributesA(pszPath) != INVALID_FILE_ATTRIBUTES;
}
