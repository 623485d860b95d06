#pragma once

// Searches, changes and drives. Paths are 8-bit in the process's code page, at most 259 bytes; backslash and
// slash both separate. A drive's root is mapped to a directory (Host.h; `C:` is `/`), `.` and `..` are
// resolved in the text and never lead above a root. An existing name in the exact spelling wins; without
// one each component is matched ignoring case, lowest in byte order first, and what comes before the last
// one must be a directory for that. A path that ends in a separator names only directories. Everything here
// may be called from any thread, sets the last error on failure, and gives 0 or its stated failure for a null
// path.

#include "../KXExport.h"
#include "Error.h"
#include "Types.h"

inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1; // no write permission for anyone
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;   // the name begins with a point
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x4;   // neither file nor directory: a device, socket or pipe
// A directory.
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;        // never given
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;         // none of the others
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400; // a symbolic link; DIRECTORY tells of its target
// GetFileAttributesA gives this where there is nothing.
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

// A directory entry. Times are in steps of 100 ns since 1601-01-01 UTC. Only regular files have a size; a
// link has the size and times of what it leads to.
struct WIN32_FIND_DATAA
{
    // FILE_ATTRIBUTE_ bits; then times, size and name.
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    char cFileName[MAX_PATH];
    char cAlternateFileName[14]; // always empty
};

// Opens a search by a path whose last component may hold `*` (any characters) and `?` (one character),
// compared ignoring case; a closing `.*` also matches no extension, so that `*.*` matches all. Delivers the
// first entry, or INVALID_HANDLE_VALUE. `.` and `..` are delivered first where they match; the others follow
// in the order of their names, ignoring case. Entries whose names can't be said in a path (a backslash in the
// name, bytes that are no UTF-8, or longer than the record's field) are not delivered. The entries are those
// of the moment of opening; one deleted since is passed over. The caller closes the handle with FindClose; a
// handle that isn't open gives 0.
KX_API HANDLE FindFirstFileA(const char* pszPattern, WIN32_FIND_DATAA* pData);
KX_API int FindNextFileA(HANDLE hFind, WIN32_FIND_DATAA* pData);
KX_API int FindClose(HANDLE hFind);

// INVALID_FILE_ATTRIBUTES if there is no such entry. A link is not followed but for the DIRECTORY bit.
KX_API DWORD GetFileAttributesA(const char* pszPath);
KX_API int PathFileExistsA(const char* pszPath);

// Copies content, permissions and time of a regular file; a link to a directory is copied as a link. Fails
// for a target that is read-only, is the source itself, is open for writing without sharing, or exists while
// `bFailIfExists` is non-zero. The target, behind its links, is replaced as a whole and keeps its owner and
// group, for which its directory must be writable: it is the old file or the new one at any moment, and the
// old one after a failure. Holes of a sparse file stay holes.
KX_API int CopyFileA(const char* pszSource, const char* pszTarget, int bFailIfExists);
// Deletes a file or a link to a file; fails for a directory and for a read-only file.
KX_API int DeleteFileA(const char* pszPath);
KX_API int CreateDirectoryA(const char* pszPath, void* pSecurity);
// Deletes an empty directory, or a link to a directory (never what it points at). A drive's root stays.
KX_API int RemoveDirectoryA(const char* pszPath);
KX_API int SetCurrentDirectoryA(const char* pszPath);

// Each writes a directory without a trailing backslash (a drive's root keeps its own) and returns its
// length. Where the buffer is too small the result is the size needed and the buffer stays as it was; 0 on
// failure.
KX_API DWORD GetCurrentDirectoryA(DWORD nSize, char* pszBuffer);
KX_API UINT GetSystemDirectoryA(char* pszBuffer, UINT nSize);  // C:\usr\lib
KX_API UINT GetWindowsDirectoryA(char* pszBuffer, UINT nSize); // C:\usr

// Results of GetDriveTypeA.
inline constexpr UINT DRIVE_UNKNOWN = 0;
inline constexpr UINT DRIVE_NO_ROOT_DIR = 1;
inline constexpr UINT DRIVE_REMOVABLE = 2;
inline constexpr UINT DRIVE_FIXED = 3;
inline constexpr UINT DRIVE_REMOTE = 4;
inline constexpr UINT DRIVE_CDROM = 5;
inline constexpr UINT DRIVE_RAMDISK = 6;

// The kind of a drive from its root path (`X:\`); DRIVE_NO_ROOT_DIR for any other path and where there is no
// drive. `C:` is fixed; mounted removable media and optical drives have the letters from `D` on, in the order
// in which they were first seen (by device name within one look) and for as long as the process lives; the
// host's drives are as it said.
KX_API UINT GetDriveTypeA(const char* pszRoot);

// Label, serial number and file system of a drive. Texts are cut to their buffers at a character.
// Out-arguments may be null. 0 when the drive doesn't exist or holds no medium. The serial number is the last
// eight digits of the file system's UUID, which on FAT and NTFS are the number itself.
KX_API int GetVolumeInformationA(const char* pszRoot, char* pszLabel, DWORD nLabelSize, DWORD* pdwSerial,
                                 DWORD* pdwMaxComponent, DWORD* pdwFlags, char* pszFileSystem,
                                 DWORD nFileSystemSize);
