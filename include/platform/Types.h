#pragma once

// The platform's plain types. Those that stand for a memory layout have a fixed width; signatures elsewhere
// keep `long` and `unsigned long`, which hold a pointer here.

#if __cplusplus < 202002L
#error KXCommonClass needs C++20: compile with -std=c++20 or later
#include "TooOldStandard.h" // isn't there, so the compiler stops here
#endif

#include <cstdint>

// Plain numbers and texts.
using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = unsigned int;
using WCHAR = char16_t;
using LPCSTR = const char*;
using LPSTR = char*;

// Numbers that hold a pointer.
using UINT_PTR = std::uintptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

// Handles are opaque; null is never a valid one.
using HANDLE = void*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HWND = struct HWND__*;
using HDESK = struct HDESK__*;
using HKEY = struct HKEY__*;
using HICON = struct HICON__*;
using HCURSOR = HICON;
using HRSRC = struct HRSRC__*;
using HGLOBAL = void*;

// A failed search gives this in place of a handle.
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(std::intptr_t{-1});

#ifndef TRUE
// Not 0.
#define TRUE 1
#endif
#ifndef FALSE
// 0.
#define FALSE 0
#endif

// Size of every path buffer, terminator included.
inline constexpr int MAX_PATH = 260;

// A time in steps of 100 ns since 1601, UTC.
struct FILETIME
{
    // Its lower and upper half.
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
