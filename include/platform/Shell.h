#pragma once

// The desktop's view of a path: its name, its type's text and its icon, by the system's content types.

#include "../KXExport.h"
#include "Types.h"

// The look of a file to people.
struct SHFILEINFOA
{
    // Icon, its number, attributes, name and kind.
    HICON hIcon;
    int iIcon;
    DWORD dwAttributes;
    char szDisplayName[MAX_PATH];
    char szTypeName[80];
};

// Requests to SHGetFileInfoA.
inline constexpr UINT SHGFI_LARGEICON = 0x0;
inline constexpr UINT SHGFI_SMALLICON = 0x1;
inline constexpr UINT SHGFI_DISPLAYNAME = 0x200;
inline constexpr UINT SHGFI_TYPENAME = 0x400;
inline constexpr UINT SHGFI_SYSICONINDEX = 0x4000;

// The system image list, one of large (32 pixels) and one of small (16 pixels) icons; both live as long as
// the process and use the same indices, each naming an icon of the desktop's icon theme. Index 0 is the icon
// of a file of which nothing is known.
struct _IMAGELIST;

// Fills what the flags ask for and leaves the rest of the record, whose size `cbInfo` is; `dwAttributes` is
// ignored. With SHGFI_SYSICONINDEX the result is the image list of the asked size (an _IMAGELIST*), otherwise
// non-zero. 0 for a path that doesn't exist, with the asked fields empty and the index 0, and for a null
// record or one that is too small, with nothing written. Texts are in the process's code page and the user's
// language, cut to their fields at a character. A drive's root (`X:\`) is shown by its label and letter, also
// without a medium; a link shows what it points at. An entry whose name says nothing has the first 4,096
// bytes of its content looked at. Without the library's module for the shell an entry is a "File", "Folder"
// or "Disk" with the icon of an unknown file. The last error tells of a failure. Any thread.
KX_API std::uintptr_t SHGetFileInfoA(const char* pszPath, DWORD dwAttributes, SHFILEINFOA* pInfo, UINT cbInfo,
                                     UINT nFlags);

// How many icons the list has so far; 0 for null.
KX_API int ImageList_GetImageCount(const _IMAGELIST* pList);
// The icons' width and height in pixels; 0 on null pointers.
KX_API int ImageList_GetIconSize(const _IMAGELIST* pList, int* pnWidth, int* pnHeight);
// The icon theme's names of an icon, best first, divided by blanks; empty for an index out of range. The
// text lives as long as the process.
KX_API const char* ImageList_GetIconName(const _IMAGELIST* pList, int nIndex);
