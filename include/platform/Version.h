#pragma once

// The version of an executable file: the fixed version record of a PE image's version resource, or the note
// of name "KXVersion" in a little-endian ELF file of 64 bits (kx_file_version in CMake puts it there). Only
// regular files are read, and of those the headers alone. Any thread.

#include "../KXExport.h"
#include "Types.h"

// A binary's version.
struct VS_FIXEDFILEINFO
{
    DWORD dwSignature; // 0xFEEF04BD
    // The record's version, as the platform has it.
    DWORD dwStrucVersion;
    DWORD dwFileVersionMS; // major and minor, in the high and the low word
    DWORD dwFileVersionLS; // revision and build, likewise
    // Further fields, as the platform has them.
    DWORD dwProductVersionMS;
    DWORD dwProductVersionLS;
    DWORD dwFileFlagsMask;
    DWORD dwFileFlags;
    DWORD dwFileOS;
    DWORD dwFileType;
    DWORD dwFileSubtype;
    DWORD dwFileDateMS;
    DWORD dwFileDateLS;
};

// The size in bytes of the block that GetFileVersionInfoA fills. `pdwHandle` may be null and becomes 0. 0 for
// a file without a version (ERROR_RESOURCE_DATA_NOT_FOUND) or one that can't be read.
KX_API DWORD GetFileVersionInfoSizeA(const char* pszFile, DWORD* pdwHandle);
// Fills the caller's block of `nSize` bytes; `dwHandle` is ignored. Non-zero if it was filled; 0, with the
// block untouched, also when it is too small (ERROR_INSUFFICIENT_BUFFER).
KX_API int GetFileVersionInfoA(const char* pszFile, DWORD dwHandle, DWORD nSize, void* pBlock);
// With the sub-block "\": points `*ppRecord` at the VS_FIXEDFILEINFO inside the block and gives its size in
// `*pnSize`, which may be null. 0, with both untouched, for another sub-block or a block that
// GetFileVersionInfoA didn't fill.
KX_API int VerQueryValueA(const void* pBlock, const char* pszSubBlock, void** ppRecord, UINT* pnSize);
