#include "KXFileSystem.h"

#include "files/PathParts.h"
#include "internal/FileSearch.h"
#include "platform/Debug.h"
#include "platform/Module.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

using kx::FileSearch;

namespace {

using PathBuffer = std::array<char, MAX_PATH>;

// The path of a module's file; empty without one.
CString ModuleFile(HINSTANCE hModule)
{
    PathBuffer buffer{};
    const DWORD nLength = GetModuleFileNameA(hModule, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (nLength == 0) kx::ThrowIfNoMemory();
    return CString(buffer.data());
}

UINT ImageFlags(int bLarge)
{
    return bLarge ? SHGFI_SYSICONINDEX : SHGFI_SYSICONINDEX | SHGFI_SMALLICON;
}

// The desktop's view of a path.
SHFILEINFOA Describe(const char* pszPath)
{
    SHFILEINFOA info{};
    SHGetFileInfoA(pszPath, 0, &info, sizeof(info), SHGFI_DISPLAYNAME | SHGFI_TYPENAME);
    return info;
}

void ReadVolume(const char* pszRoot, tagKXDiskInfo& info)
{
    if (GetVolumeInformationA(pszRoot, info.szVolumeName, sizeof(info.szVolumeName), &info.dwSerialNumber,
                              nullptr, nullptr, info.szFileSystem, sizeof(info.szFileSystem)))
        return;
    info.szVolumeName[0] = '\0';
    info.szFileSystem[0] = '\0';
    info.dwSerialNumber = 0;
}

// Calls back for each entry of a directory that `wanted` accepts.
template <class Wanted>
int EnumEntries(CString strDir, KXEnumFileProc pfn, long lParam, Wanted wanted)
{
    kx::files::AddBackslash(strDir);
    tagKXFileInfo info{};
    if (strDir.GetLength() >= static_cast<int>(sizeof(info.szPath))) return 0;
    std::memcpy(info.szPath, strDir.GetString(), strDir.View().size() + 1);
    FileSearch search(strDir + "*", info.FindData);
    if (!search) return 0;
    do {
        if (pfn && wanted(info.FindData)) pfn(&info, lParam);
    } while (search.Next());
    return search.Close();
}

} // namespace

CKXFileSystem* CKXFileSystem::s_pInstance = nullptr;

CKXFileSystem* CKXFileSystem::GetInstancePtr()
{
    if (!s_pInstance)
        s_pInstance = new (std::nothrow) CKXFileSystem; // owned by s_auto_ptr from its constructor on
    return s_pInstance;
}

CKXFileSystem::CKXFileSystem()
{
    s_auto_ptr.reset(this);
    try {
        OutputDebugStringA("CKXFileSystem construction!\n");
        InitPaths();
    } catch (...) { // no memory for the paths: there is no object to own
        static_cast<void>(s_auto_ptr.release());
        throw;
    }
}

CKXFileSystem::~CKXFileSystem()
{
    OutputDebugStringA("CKXFileSystem destroy!\n");
}

void CKXFileSystem::InitPaths()
{
    ParsePathFile(ModuleFile(nullptr), &m_strAppPath, &m_strAppExeName, nullptr, nullptr);
    m_strWorkPath = m_strAppPath;
    m_strDataPath = m_strWorkPath + "\\data";
    SetCurrentDirectoryA(m_strWorkPath);
}

CString CKXFileSystem::GetModulePath(HINSTANCE hModule)
{
    const CString strFile = ModuleFile(hModule);
    return strFile.Left(strFile.ReverseFind('\\') + 1);
}

// A directory that doesn't fit leaves the buffer as it was, which is empty.
CString CKXFileSystem::GetSystemPath()
{
    PathBuffer buffer{};
    GetSystemDirectoryA(buffer.data(), static_cast<UINT>(buffer.size()));
    return CString(buffer.data());
}

CString CKXFileSystem::GetWndowsPath()
{
    PathBuffer buffer{};
    GetWindowsDirectoryA(buffer.data(), static_cast<UINT>(buffer.size()));
    return CString(buffer.data());
}

CString CKXFileSystem::GetCurrentPath()
{
    PathBuffer buffer{};
    GetCurrentDirectoryA(static_cast<DWORD>(buffer.size()), buffer.data());
    return CString(buffer.data());
}

int CKXFileSystem::FileExists(const CString& strPath)
{
    WIN32_FIND_DATAA data;
    FileSearch search(strPath, data);
    if (!search) return 0;
    while (kx::IsDirectory(data))
        if (!search.Next()) return 0;
    return 1;
}

int CKXFileSystem::FindFileInfo(const CString& strPath, tagKXFileInfo* pInfo)
{
    tagKXFileInfo info{};
    FileSearch search(strPath, info.FindData);
    if (!search) return 0;
    if (pInfo) *pInfo = info;
    return search.Close();
}

_IMAGELIST* CKXFileSystem::GetSystemImageList(int bLarge)
{
    SHFILEINFOA info{};
    return reinterpret_cast<_IMAGELIST*>(SHGetFileInfoA("C:\\", 0, &info, sizeof(info), ImageFlags(bLarge)));
}

void CKXFileSystem::GetFileImage(const CString& strPath, SHFILEINFOA& info, int bLarge)
{
    SHGetFileInfoA(strPath, 0, &info, sizeof(info), ImageFlags(bLarge));
}

int CKXFileSystem::GetFileImage(const CString& strPath, int bLarge)
{
    SHFILEINFOA info{};
    GetFileImage(strPath, info, bLarge);
    return info.iIcon;
}

void CKXFileSystem::GetTypeDesc(const CString& strPath, CString& strDisplayName, CString& strTypeName)
{
    const SHFILEINFOA info = Describe(strPath);
    strDisplayName = info.szDisplayName;
    strTypeName = info.szTypeName;
}

int CKXFileSystem::EnumDisks(KXEnumDiskProc pfn, long lParam)
{
    int nCount = 0;
    tagKXDiskInfo info{};
    std::array<char, 4> root{'C', ':', '\\', '\0'};
    for (; root[0] <= 'Z'; ++root[0]) {
        info.cDriveLetter = root[0];
        info.nDriveType = GetDriveTypeA(root.data());
        if (info.nDriveType != DRIVE_REMOVABLE && info.nDriveType != DRIVE_FIXED &&
            info.nDriveType != DRIVE_CDROM)
            continue;
        ReadVolume(root.data(), info);
        const SHFILEINFOA shown = Describe(root.data());
        std::copy(std::begin(shown.szDisplayName), std::end(shown.szDisplayName), info.szDisplayName);
        std::copy(std::begin(shown.szTypeName), std::end(shown.szTypeName), info.szTypeName);
        ++nCount;
        if (pfn) pfn(&info, lParam);
    }
    return nCount > 0;
}

int CKXFileSystem::EnumFiles(CString strDir, KXEnumFileProc pfn, long lParam)
{
    return EnumEntries(std::move(strDir), pfn, lParam,
                       [](const auto& data) { return !kx::IsDirectory(data); });
}

int CKXFileSystem::EnumDirs(CString strDir, KXEnumFileProc pfn, long lParam)
{
    return EnumEntries(std::move(strDir), pfn, lParam, [](const auto& data) {
        return kx::IsDirectory(data) && !kx::files::BeginsWithPoint(data);
    });
}

// The parts are made before the first is handed over, since the path may be the very string that takes one.
int CKXFileSystem::ParsePathFile(const CString& strPath, CString* pDir, CString* pFile, CString* pName,
                                 CString* pExt)
{
    const int nFile = strPath.ReverseFind('\\') + 1;
    const int nPoint = strPath.ReverseFind('.');
    const bool bPoint = nPoint >= 0;
    const struct
    {
        CString* pTarget;
        CString strText;
    } parts[] = {
        {pDir, strPath.Left(nFile)},
        {pFile, strPath.Mid(nFile)},
        {pName, bPoint ? strPath.Mid(nFile, nPoint - nFile) : strPath.Mid(nFile)},
        {pExt, bPoint ? strPath.Mid(nPoint + 1) : CString()},
    };
    for (const auto& part : parts)
        if (part.pTarget) *part.pTarget = part.strText;
    return bPoint;
}
