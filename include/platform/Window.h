#pragma once

// Top-level windows and their messages. A window belongs to the thread that made it: its procedure runs on
// that thread alone, when the thread sends to it, dispatches its messages, or asks for one.

#include "../KXExport.h"
#include "Error.h"
#include "Geometry.h"
#include "Types.h"

inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_USER = 0x0400;

inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;
inline constexpr UINT PM_NOREMOVE = 0;
inline constexpr UINT PM_REMOVE = 1;
inline constexpr int GWLP_USERDATA = -21;
inline constexpr DWORD DESKTOP_ENUMERATE = 64;

using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);
using WNDENUMPROC = int (*)(HWND, long);

struct WNDCLASSA
{
    WNDPROC lpfnWndProc = nullptr;
    const char* lpszClassName = nullptr;
};

// What WM_NCCREATE and WM_CREATE carry in their LPARAM, as a pointer.
struct CREATESTRUCTA
{
    void* lpCreateParams;
    const char* lpszName;
    const char* lpszClass;
    int x, y, cx, cy;
    DWORD style;
};

struct MSG
{
    HWND hwnd = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    DWORD time = 0; // GetTickCount of the posting
};

// Makes a class of windows known by its name (ignoring the case of ASCII letters); 0 for a null name or
// procedure or a name already taken.
KX_API WORD RegisterClassA(const WNDCLASSA* pClass);
KX_API int UnregisterClassA(const char* pszClassName);

// Makes a top-level window of the calling thread: WM_NCCREATE, then WM_CREATE, are sent to it; a result of 0
// from the first or of -1 from the second ends it again. Null on failure.
KX_API HWND CreateWindowExA(DWORD dwExStyle, const char* pszClassName, const char* pszName, DWORD dwStyle, int x,
                            int y, int nWidth, int nHeight, void* pParam = nullptr);
// Sends WM_DESTROY and WM_NCDESTROY and ends the window; who waits in SendMessageA for it gets 0. By the
// owning thread only, 0 otherwise.
KX_API int DestroyWindow(HWND hWnd);
KX_API int IsWindow(HWND hWnd) noexcept;
KX_API int IsWindowVisible(HWND hWnd) noexcept;
// Shows or hides; non-zero if the window was visible before.
KX_API int ShowWindow(HWND hWnd, int nCmd);
// Null for no such window.
KX_API WNDPROC GetWindowProcA(HWND hWnd) noexcept;
KX_API std::intptr_t SetWindowLongPtrA(HWND hWnd, int nIndex, std::intptr_t nValue);
KX_API std::intptr_t GetWindowLongPtrA(HWND hWnd, int nIndex);
KX_API int SetWindowTextA(HWND hWnd, const char* pszText);
KX_API int GetWindowTextA(HWND hWnd, char* pszBuffer, int nSize);

// What a window does with a message that it doesn't handle: WM_CLOSE destroys it, WM_NCCREATE gives 1, the
// rest gives 0.
KX_API LRESULT DefWindowProcA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// The owning thread's number, 0 for no such window; `pdwProcessId` may be null.
KX_API DWORD GetWindowThreadProcessId(HWND hWnd, DWORD* pdwProcessId) noexcept;

// Puts a message at the end of the owning thread's queue and returns at once. 0 for no such window or a
// queue of 10,000 messages. A null window posts to the calling thread.
KX_API int PostMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
KX_API int PostThreadMessageA(DWORD dwThreadId, UINT nMsg, WPARAM wParam, LPARAM lParam);
KX_API void PostQuitMessage(int nExitCode);

// Runs the window's procedure and returns its result. On the owning thread it runs at once; from another
// thread the call waits until the owner asks for messages or itself waits in SendMessageA, and serves what
// is sent to its own windows meanwhile. 0 for no such window, and when the window or its thread ends first.
KX_API LRESULT SendMessageA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// Takes the calling thread's next posted message, waiting for one; what is sent is served meanwhile. 0 for
// WM_QUIT, non-zero otherwise. A non-null `hWnd` takes that window's alone, and `nMin`, `nMax` bound the
// numbers unless both are 0.
KX_API int GetMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax);
// The same without waiting: 0 when there is none.
KX_API int PeekMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax, UINT nRemove);
KX_API LRESULT DispatchMessageA(const MSG* pMsg);

// The desktop "Default", the only one; null for another name. Closed with CloseDesktop.
KX_API HDESK OpenDesktopA(const char* pszName, DWORD dwFlags, int bInherit, DWORD dwAccess);
KX_API int CloseDesktop(HDESK hDesk);
// Calls `pfn` for each top-level window of the desktop, of every process, oldest first, until it returns 0.
// Windows made during the walk are not visited, those ended are passed over. Non-zero if it was walked to
// its end.
KX_API int EnumDesktopWindows(HDESK hDesk, WNDENUMPROC pfn, long lParam);
