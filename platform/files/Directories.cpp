// The process's current directory and the system's own ones.

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/CurrentDirectory.h"
#include "platform/files/EntryInfo.h"
#include "platform/files/Path.h"

#include <cstring>

namespace {

UINT Deliver(std::string_view text, char* pszBuffer, UINT nSize)
{
    const auto length = static_cast<UINT>(text.size());
    if (!pszBuffer || nSize <= length) return length + 1;
    std::memcpy(pszBuffer, text.data(), length);
    pszBuffer[length] = '\0';
    return length;
}

} // namespace

int SetCurrentDirectoryA(const char* pszPath)
{
    const auto path = kx::path::ToSystem(pszPath);
    return path && (kx::path::ChangeDirectory(*path) || kx::path::FailAt(*path));
}

DWORD GetCurrentDirectoryA(DWORD nSize, char* pszBuffer)
{
    const auto path = kx::path::FromSystem(kx::path::CurrentDirectory());
    if (!path) return static_cast<DWORD>(kx::Fail(ERROR_PATH_NOT_FOUND));
    return Deliver(path->View(), pszBuffer, nSize);
}

UINT GetSystemDirectoryA(char* pszBuffer, UINT nSize)
{
    return Deliver("C:\\usr\\lib", pszBuffer, nSize);
}

UINT GetWindowsDirectoryA(char* pszBuffer, UINT nSize)
{
    return Deliver("C:\\usr", pszBuffer, nSize);
}
