#include "include/platform/Module.h"
#include "platform/Errno.h"
#include "platform/files/Path.h"
#include "platform/module/ModuleTable.h"
#include "platform/module/RegularFile.h"
#include "platform/text/CharWalk.h"

#include <new>

using kx::module::Bundle;
using kx::module::ModuleTable;
using kx::module::RegularFile;

HMODULE LoadLibraryA(const char* pszFileName)
{
    const auto file = RegularFile::Open(pszFileName);
    if (!file) return nullptr;
    auto bundle = Bundle::Load(*file);
    if (bundle) return ModuleTable::Instance().Add(std::move(*bundle), file->SystemPath());
    SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
    return nullptr;
}

int FreeLibrary(HMODULE hModule)
{
    return ModuleTable::Instance().Remove(hModule) ? 1 : kx::Fail(ERROR_INVALID_HANDLE);
}

DWORD GetModuleFileNameA(HMODULE hModule, char* pszBuffer, DWORD nSize)
{
    if (!pszBuffer || nSize == 0) return static_cast<DWORD>(kx::Fail(ERROR_INVALID_PARAMETER));
    *pszBuffer = '\0';
    const std::string system = ModuleTable::Instance().PathOf(hModule);
    if (system.empty())
        return static_cast<DWORD>(kx::Fail(hModule ? ERROR_INVALID_HANDLE : ERROR_FILE_NOT_FOUND));
    const auto path = kx::path::FromSystem(system);
    if (!path) return static_cast<DWORD>(kx::Fail(ERROR_INVALID_NAME));
    if (path->View().size() >= nSize) SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return static_cast<DWORD>(kx::text::CopyCut(path->View(), pszBuffer, nSize));
}
