#pragma once

// Modules and the resources that they carry. A resource module is a GResource bundle, in which `/TYPE/NAME`
// is one resource: `/BITMAP/101`, `/IMAGE/LOGO`. Texts of the string table are `/STRING/NUMBER`, in UTF-8.
// A null handle means the running executable, whose bundle is what the program linked in, if anything.
//
// A handle that ended, or never was one, is refused (ERROR_INVALID_HANDLE) and harms nothing. Any thread, but
// for the module state.

#include "../KXExport.h"
#include "Error.h"
#include "Types.h"

// The process's module state. m_hCurrentResourceHandle is where resource look-ups begin.
struct AFX_MODULE_STATE
{
    // The executable, and the module in which resources are looked up first.
    HINSTANCE m_hCurrentInstanceHandle = nullptr;
    HINSTANCE m_hCurrentResourceHandle = nullptr;
};

// Never null; the one record of the process. Not locked: set by one thread at a time.
KX_API AFX_MODULE_STATE* AfxGetModuleState() noexcept;
KX_API HINSTANCE AfxGetResourceHandle() noexcept;
KX_API void AfxSetResourceHandle(HINSTANCE hInstance) noexcept;

// The module that has a resource: the current one, else the executable. The current one without a find.
KX_API HINSTANCE AfxFindResourceHandle(const char* pszName, const char* pszType);

// Opens a bundle file of at most 256 MiB as a resource module. Null, with the last error set, for what can't
// be read (the file system's error) or is no sound bundle (ERROR_RESOURCE_DATA_NOT_FOUND, as for any without
// the library's module for the shell). The file is read
// whole, so it may be replaced meanwhile. Each handle is ended by one FreeLibrary, and the blocks that came
// from it end with it.
KX_API HMODULE LoadLibraryA(const char* pszFileName);
// Non-zero on success; 0 for null.
KX_API int FreeLibrary(HMODULE hModule);

// The full path of a module's file; null: the process's executable, also when that was deleted or replaced.
// Returns the path's length without its terminator. One too long is cut to the buffer at a character and
// ended (ERROR_INSUFFICIENT_BUFFER). 0 and the empty string on failure, as for a path that the code page
// can't say.
KX_API DWORD GetModuleFileNameA(HMODULE hModule, char* pszBuffer, DWORD nSize);

// A resource's number in place of its name, as FindResourceA takes it.
inline const char* MAKEINTRESOURCEA(WORD nId)
{
    return reinterpret_cast<const char*>(static_cast<std::uintptr_t>(nId));
}

// The types of resources that are known by number.
inline const char* const RT_BITMAP = MAKEINTRESOURCEA(2);
inline const char* const RT_ICON = MAKEINTRESOURCEA(3);

// Finds a resource by name and type. Either may be a number, as MAKEINTRESOURCEA(101) or as "#101" (type 2,
// RT_BITMAP, is `BITMAP`; 3, RT_ICON, is `ICON`; any other number its digits), or a text in the process's
// code page without slashes. As it is spelled, else in ASCII upper case. Null without one
// (ERROR_RESOURCE_NAME_NOT_FOUND). The same resource has the same handle, which lives as long as its module.
KX_API HRSRC FindResourceA(HMODULE hModule, const char* pszName, const char* pszType);
// The resource's size in bytes and its bytes, which the module owns; 0 and null for a handle that isn't of
// this module.
KX_API DWORD SizeofResource(HMODULE hModule, HRSRC hResource);
KX_API HGLOBAL LoadResource(HMODULE hModule, HRSRC hResource);
KX_API const void* LockResource(HGLOBAL hResource);
// Nothing to do: the module owns the bytes. 0, which means success here.
KX_API int FreeResource(HGLOBAL hResource);

// A text of the string table in the process's code page, without the line end that a text file closes with,
// cut to the buffer of `nSize` bytes at a character and ended. Characters that the code page lacks become
// "?". Returns its length; 0 and the empty string without one.
KX_API int LoadStringA(HINSTANCE hInstance, UINT nId, char* pszBuffer, int nSize);
