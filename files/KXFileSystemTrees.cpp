// The operations of CKXFileSystem that change directory trees.

#include "KXFileSystem.h"
#include "files/PathParts.h"
#include "internal/FileSearch.h"
#include "platform/CodePage.h"
#include "platform/Exception.h"

#include <new>
#include <utility>

using kx::FileSearch;

namespace {

// An entry that the walks go into. A link is an entry like a file: what it points at is not part of the tree,
// and following it might never end.
bool IsWalked(const WIN32_FIND_DATAA& data)
{
    return kx::IsDirectory(data) && !kx::IsLink(data);
}

int DeleteTree(const CString& strPath);

int DeleteEntry(const CString& strEntry, const WIN32_FIND_DATAA& data)
{
    if (!kx::IsDirectory(data)) return DeleteFileA(strEntry);
    if (kx::files::BeginsWithPoint(data)) return 1;
    return IsWalked(data) ? DeleteTree(strEntry + '\\') : RemoveDirectoryA(strEntry);
}

bool DeleteContent(const CString& strPath)
{
    WIN32_FIND_DATAA data;
    FileSearch search(strPath + "*", data);
    if (!search) return true; // what becomes of the directory itself decides
    do {
        if (!DeleteEntry(strPath + data.cFileName, data)) return false;
    } while (search.Next());
    return true;
}

// The path is a directory's and ends in a backslash.
int DeleteTree(const CString& strPath)
{
    return DeleteContent(strPath) ? RemoveDirectoryA(strPath) : 0;
}

void CopySubdirectory(CString strSrc, CString strDst, const WIN32_FIND_DATAA& data)
{
    if (kx::files::BeginsWithPoint(data)) return;
    if (!IsWalked(data)) {
        CopyFileA(strSrc, strDst, FALSE);
        return;
    }
    CreateDirectoryA(strDst, nullptr);
    CKXFileSystem::CopyDir(strSrc, strDst, nullptr, 0);
}

// False when the callback stopped it.
bool CopyContent(const CString& strSrc, const CString& strDst, KXCopyDirProc pfn, long lParam)
{
    WIN32_FIND_DATAA data;
    FileSearch search(strSrc + "*", data);
    if (!search) return true;
    CString strLast;
    do {
        const CString strFrom = strSrc + data.cFileName;
        const CString strTo = strDst + data.cFileName;
        // Names that differ in case alone come one after the other; a later one would be copied
        // over the first, since paths are found ignoring case.
        const bool bFirst = lstrcmpiA(strLast, data.cFileName) != 0;
        strLast = data.cFileName;
        if (kx::IsDirectory(data)) {
            if (bFirst) CopySubdirectory(strFrom, strTo, data);
            continue;
        }
        const int bCopied = bFirst ? CopyFileA(strFrom, strTo, FALSE) : 0;
        if (pfn && !pfn(strFrom, strTo, 1, bCopied, lParam)) return false;
    } while (search.Next());
    return true;
}

} // namespace

// The results are handed over at the end, since the path may be the very string that takes the root.
int CKXFileSystem::ParsePath(const CString& strPath, CString& strRoot, std::vector<CString>& vecDirs)
try {
    CString strFound;
    std::vector<CString> vecFound;
    int nStart = 0;
    for (int nPos = strPath.Find('\\'); nPos >= 0; nPos = strPath.Find('\\', nPos + 1)) {
        if (nPos == nStart) continue; // it begins the next name
        CString strPart = strPath.Mid(nStart, nPos - nStart);
        nStart = nPos + 1;
        if (strPart.GetAt(strPart.GetLength() - 1) == ':')
            strFound = std::move(strPart);
        else
            vecFound.push_back(std::move(strPart));
    }
    strRoot = std::move(strFound);
    vecDirs = std::move(vecFound);
    return !strRoot.IsEmpty() || !vecDirs.empty();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

int CKXFileSystem::CreatePath(const CString& strPath)
{
    CString strRunning;
    std::vector<CString> vecDirs;
    if (!ParsePath(strPath, strRunning, vecDirs)) return 0;
    for (const CString& strDir : vecDirs) {
        strRunning += '\\';
        strRunning += strDir;
        const bool bThere = PathFileExistsA(strRunning) || CreateDirectoryA(strRunning, nullptr) ||
                            GetLastError() == ERROR_ALREADY_EXISTS; // another thread was first
        if (!bThere) return 0;
    }
    return 1;
}

int CKXFileSystem::DeleteFolder(CString strPath)
{
    if (strPath.IsEmpty()) return 0; // with its backslash it would be the root of the current drive
    const DWORD dwAttributes = GetFileAttributesA(strPath);
    const bool bLink =
        dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_REPARSE_POINT);
    kx::files::AddBackslash(strPath);
    return bLink ? RemoveDirectoryA(strPath) : DeleteTree(strPath);
}

void CKXFileSystem::CopyDir(CString& strSrc, CString& strDst, KXCopyDirProc pfn, long lParam)
try {
    const bool bNamed = !strSrc.IsEmpty() && !strDst.IsEmpty();
    kx::files::AddBackslash(strSrc);
    kx::files::AddBackslash(strDst);
    const CString strFrom = strSrc; // the callback may change its caller's strings
    const CString strTo = strDst;
    if (bNamed && !CopyContent(strFrom, strTo, pfn, lParam)) return;
    if (pfn) pfn(strFrom, strTo, 0, 1, lParam);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
