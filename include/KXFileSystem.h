#pragma once

#include "KXExport.h"
#include "platform/FileSystem.h"
#include "platform/Shell.h"
#include "platform/String.h"
#include "platform/Types.h"

#include <memory>
#include <vector>

// A directory entry, as the enumerations and FindFileInfo deliver it. `szPath` followed by
// `FindData.cFileName` is the entry's full path.
struct tagKXFileInfo
{
    // The entry's name, attributes, size and times.
    WIN32_FIND_DATAA FindData;
    char szPath[260]; // the directory, ending in a backslash
};

// A drive, as EnumDisks delivers it.
struct tagKXDiskInfo
{
    char cDriveLetter;       // `C` to `Z`
    char szDisplayName[260]; // "Local Disk (C:)"
    char szTypeName[80];     // "Local Disk"
    char szVolumeName[32];   // the three that follow are empty and 0 where the volume can't be read
    // The file system's name, and the volume's serial number.
    char szFileSystem[32];
    DWORD dwSerialNumber;
    UINT nDriveType; // DRIVE_REMOVABLE, DRIVE_FIXED or DRIVE_CDROM
};

// Called for each entry or drive, on the enumerating thread. The record is valid during the call only;
// `lParam` is the value that the enumeration was given. The result is not read: no callback ends an
// enumeration.
using KXEnumFileProc = int (*)(tagKXFileInfo* pInfo, long lParam);
using KXEnumDiskProc = int (*)(tagKXDiskInfo* pInfo, long lParam);

// The progress of CopyDir. With `bFile` 1 one file was copied from `strSrc` to `strDst`, and `bResult` is
// non-zero if that succeeded; a result of 0 stops the copy. With `bFile` 0 the copy is over, `bResult` is 1
// and the result isn't read.
using KXCopyDirProc = int (*)(const CString& strSrc, const CString& strDst, int bFile, int bResult,
                              long lParam);

// The application's directories, and questions and changes to the file system.
//
// Paths are 8-bit in the process's code page, at most 259 bytes, with the backslash as separator; one that is
// longer is not found. `C:\` is the system's root (platform/FileSystem.h tells more). Failures give 0 or an
// empty text.
//
// The object holds the four paths of the application, worked out once. All else is static, keeps no state,
// may be called from any thread and needs no object. A fork's child may call all but EnumDisks and the icons
// (platform/Sync.h says what else such a child may call).
class KX_API CKXFileSystem
{
public:
    // The object, made at the first call, which also makes the executable's directory the process's current
    // directory. The first call must not race with another; later ones may come from any thread. Null, or
    // a CMemoryException* from its paths, for lack of memory. The object is the library's and lives until it
    // unloads.
    static CKXFileSystem* GetInstancePtr();

    CKXFileSystem(const CKXFileSystem&) = delete;
    CKXFileSystem& operator=(const CKXFileSystem&) = default;

    // The file name of the running executable, with extension. These four refer into the object and never
    // change; they are empty (GetDataPath: "\data") where the executable's path can't be said in 259 bytes.
    const CString& GetAppExeName() const { return m_strAppExeName; }
    // The executable's directory, ending in a backslash.
    const CString& GetAppPath() const { return m_strAppPath; }
    // The work path followed by "\data", so with a doubled backslash: `C:\App\\data`.
    const CString& GetDataPath() const { return m_strDataPath; }
    // The directory in which the application works: the same as GetAppPath.
    const CString& GetWorkPath() const { return m_strWorkPath; }

    // The directory of a module's file, ending in a backslash; null means the running executable. Empty for a
    // module that isn't open.
    static CString GetModulePath(HINSTANCE hModule);
    // The system's directories and the process's current one, without a trailing backslash (a drive's root
    // has one). Empty where the system gives none that fits 259 bytes.
    static CString GetSystemPath();
    static CString GetWndowsPath();
    static CString GetCurrentPath();

    // 1 if a path, whose last component may hold `*` and `?`, matches an entry that is no directory.
    static int FileExists(const CString& strPath);
    // Non-zero if such a path matches any entry. The first match is copied to `pInfo->FindData` unless
    // `pInfo` is null; `szPath` is not told. Without a match `pInfo` stays as it was.
    static int FindFileInfo(const CString& strPath, tagKXFileInfo* pInfo);

    // The system image list of large icons, or of small ones with `bLarge` 0. It lives as long as the
    // process.
    static _IMAGELIST* GetSystemImageList(int bLarge);
    // The index of a path's icon in that list, in `info.iIcon` or as the result; 0 for a path that doesn't
    // exist. The other fields of `info` stay.
    static void GetFileImage(const CString& strPath, SHFILEINFOA& info, int bLarge);
    static int GetFileImage(const CString& strPath, int bLarge);
    // The name and the type's text that the desktop shows of a path, in the user's language; both empty for a
    // path that doesn't exist.
    static void GetTypeDesc(const CString& strPath, CString& strDisplayName, CString& strTypeName);

    // Delivers the drives from `C` to `Z` that are removable, fixed or optical, also those without a medium.
    // 1 if there was one, else 0. A null `pfn` is passed over here and below.
    static int EnumDisks(KXEnumDiskProc pfn, long lParam);
    // Deliver the entries of a directory that are no directories, or its directories but for those whose
    // names begin with a point, in the order of their names, ignoring case; nothing below them. Non-zero,
    // also where there are none; 0, with nothing delivered, for what can't be searched or leaves no room in
    // 259 bytes for an entry. An empty `strDir` is the root of the current drive.
    static int EnumFiles(CString strDir, KXEnumFileProc pfn, long lParam);
    static int EnumDirs(CString strDir, KXEnumFileProc pfn, long lParam);

    // Splits a path at its last backslash and its last point, each taken by itself: `C:\dir\name.tar.gz`
    // gives the directory `C:\dir\`, the file `name.tar.gz`, the name `name.tar` and the extension `gz`. A
    // point in a directory's name counts: `C:\a.b\file` has the extension `b\file` and no name. Null
    // arguments are passed over. 1 if there is a point, else 0. The file system is not asked.
    static int ParsePathFile(const CString& strPath, CString* pDir, CString* pFile, CString* pName,
                             CString* pExt);

    // Takes a path apart: `C:\a\b\` has the root `C:` and the directories `a` and `b`. What follows the last
    // backslash is a file's name and dropped; the second of two backslashes begins the next directory's name.
    // The results replace what the arguments held. 1 if there is a root or a directory, else 0. The file
    // system is not asked.
    static int ParsePath(const CString& strPath, CString& strRoot, std::vector<CString>& vecDirs);
    // Makes the directories of a path that are not there, by the parts of ParsePath: what follows the last
    // backslash is not made. Without a drive the path begins at the root of the current one. 1 if the whole
    // chain exists at the end; 0 at the first that can't be made, or for a path without a part. What was made
    // stays.
    static int CreatePath(const CString& strPath);
    // Deletes a directory with all that it holds, a link to a directory without what it points at. Non-zero
    // if it is gone. 0 at the first thing that can't be deleted, such as a read-only file; what was deleted
    // before stays deleted. Directories whose names begin with a point are left alone, so a tree that holds
    // one is emptied but for these, with the result 0. An empty path deletes nothing.
    static int DeleteFolder(CString strPath);
    // Copies what a directory holds into another, which exists, over what is there. Directories whose names
    // begin with a point are left out; a link to a directory is copied as a link. A file that can't be copied
    // doesn't stop it. `pfn` may be null; it is told of the files directly in `strSrc`, whose callback can
    // stop the copy, and at the end, also where `strSrc` can't be searched. Of names that differ in case
    // alone only the first that is found is copied: the target would be one. The backslash that either path
    // lacks at its end is added to the caller's string. An empty path copies nothing. The target should not
    // lie in the source: it would be copied into itself until the paths are too long.
    static void CopyDir(CString& strSrc, CString& strDst, KXCopyDirProc pfn, long lParam);

protected:
    // Works out the four paths, and makes the executable's directory the current one.
    CKXFileSystem();
    virtual ~CKXFileSystem();

    // Works out the four paths and sets the current directory.
    void InitPaths();

private:
    friend struct std::default_delete<CKXFileSystem>;

    CString m_strAppExeName;
    CString m_strAppPath;
    CString m_strDataPath;
    CString m_strWorkPath;

    static CKXFileSystem* s_pInstance;
    static std::unique_ptr<CKXFileSystem> s_auto_ptr;
};
