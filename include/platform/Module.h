#pragma once

// Modules and the resources that they carry. A resource module is a GResource bundle, in which `/TYPE/NAME`
// is one resource: `/BITMAP/101`, `/IMAGE/LOGO`. Texts of the string table are `/STRING/NUMBER`, in UTF-8.
// A null handle means the running executable, whose bundle is what the program linked in, if anything.

#include "../KXExport.h"
#include "Error.h"
#include "Types.h"

// The process's module state. m_hCurrentResourceHandle is where resource look-ups begin.
struct AFX_MODULE_STATE
{
    HINSTANCE m_hCurrentInstanceHandle = nullptr;
    HINSTANCE m_hCurrentResourceHandle = nullptr;
};

// Never null; the one record of the process. Not locked: set by one thread at a time.
KX_API AFX_MODULE_STATE* AfxGetModuleState() noexcept;
KX_API HINSTANCE AfxGetResourceHandle() noexcept;
KX_API void AfxSetResourceHandle(HINSTANCE hInstance) noexcept;

// The module that has a resource: the current one, else the executable. The current one without a find.
KX_API HINSTANCE AfxFindResourceHandle(const char* pszName, const char* pszType);

// Opens a bundle file as a resource module, or null. Ended with FreeLibrary; the texts and blocks that came
// from it end with it.
KX_API HMODULE LoadLibraryA(const char* pszFileName);
KX_API int FreeLibrary(HMODULE hModule);

// The full path of a module's file, cut to the buffer and ended; returns its length, 0 on failure. Null: the
// process's executable.
KX_API DWORD GetModuleFileNameA(HMODULE hModule, char* pszBuffer, DWORD nSize);

// A resource's number in place of its name, as FindResourceA takes it.
inline const char* MAKEINTRESOURCEA(WORD nId)
{
    return reinterpret_cast<const char*>(static_cast<std::uintptr_t>(nId));
}

inline const char* const RT_BITMAP = MAKEINTRESOURCEA(2);
inline const char* const RT_ICON = MAKEINTRESOURCEA(3);

// Finds a resource by name and type, either of which may be a number (RT_BITMAP is `BITMAP`, RT_ICON is
// `ICON`). Null without one. The handle lives as long as its module.
KX_API HRSRC FindResourceA(HMODULE hModule, const char* pszName, const char* pszType);
// The resource's size in bytes and its bytes, which the module owns; 0 and null for a null handle.
KX_API DWORD SizeofResource(HMODULE hModule, HRSRC hResource);
KX_API HGLOBAL LoadResource(HMODULE hModule, HRSRC hResource);
KX_API const void* LockResource(HGLOBAL hResource);

// A text of the string table in the process's code page, cut to the buffer at a character and ended;
// returns its length, 0 without one.
KX_API int LoadStringA(HINSTANCE hInstance, UINT nId, char* pszBuffer, int nSize);
