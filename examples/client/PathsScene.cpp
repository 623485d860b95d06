#include "Scene.h"

#include <cstdio>

namespace {

int PrintEntry(tagKXFileInfo* pInfo, long)
{
    SHFILEINFOA info{};
    CString strDisplay;
    CString strType;
    const CString strPath = CString(pInfo->szPath) + pInfo->FindData.cFileName;
    CKXFileSystem::GetTypeDesc(strPath, strDisplay, strType);
    CKXFileSystem::GetFileImage(strPath, info, 1);
    std::printf("   %-20s %-28s icon %d\n", KXText::ToUtf8(strDisplay).c_str(),
                KXText::ToUtf8(strType).c_str(), info.iIcon);
    return 1;
}

int PrintDisk(tagKXDiskInfo* pInfo, long)
{
    std::printf("   %c: %s, %s, serial %08X\n", pInfo->cDriveLetter,
                KXText::ToUtf8(pInfo->szDisplayName).c_str(), pInfo->szFileSystem, pInfo->dwSerialNumber);
    return 1;
}

} // namespace

bool client::ShowPaths()
{
    const CKXFileSystem& files = *CKXFileSystem::GetInstancePtr();
    std::printf("   executable %s\n", KXText::ToUtf8(files.GetAppExeName()).c_str());
    CKXExeFileInfo::VersionInfo version{};
    if (!CKXExeFileInfo::GetFileInfo(files.GetAppPath() + files.GetAppExeName(), version)) return false;
    std::printf("   version    %u.%u.%u.%u\n", version.dwMajor, version.dwMinor, version.dwRevision,
                version.dwBuild);
    const bool bDisks = CKXFileSystem::EnumDisks(PrintDisk, 0);
    const bool bDirs = CKXFileSystem::EnumDirs(files.GetAppPath(), PrintEntry, 0);
    return CKXFileSystem::EnumFiles(files.GetAppPath(), PrintEntry, 0) && bDirs && bDisks;
}
