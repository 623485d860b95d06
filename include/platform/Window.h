#pragma once

// Top-level windows and their messages. A window belongs to the thread that made it: its procedure runs on
// that thread alone, when the thread sends to it, dispatches its messages, asks for one, or waits in
// SendMessageA. The library holds no lock meanwhile, and what the procedure throws passes through to whoever
// made the thread run it.
//
// Handles are numbers that are never used again: one that is null, ended or invented is harmless everywhere,
// and each operation then gives 0 (or null) unless it says otherwise. Failures set the last error, but for a
// send that is released with 0. Any thread may call any operation unless it says otherwise.
//
// A thread has a message queue from the first time that it makes a window, asks for a message, posts to
// itself or sends to another thread's window. The thread's end ends its windows and its queue, without a
// message to the windows. A child process made by fork must not use its parent's windows nor, before exec,
// anything here.

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
inline constexpr int SM_CYCAPTION = 4;
inline constexpr int SM_CYFRAME = 33;

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

// Makes a class of windows known by its name (ignoring the case of ASCII letters) and returns its atom, which
// can stand for the name in the calls below; 0 for a null or empty name, a null procedure, a name already
// taken or 16,384 classes.
KX_API WORD RegisterClassA(const WNDCLASSA* pClass);
// 0 for an unknown class and for one that has windows.
KX_API int UnregisterClassA(const char* pszClassName);

// Makes a top-level window of the calling thread: WM_NCCREATE, then WM_CREATE, are sent to it, with the
// address of a CREATESTRUCTA that is valid during the call. With WS_VISIBLE it is shown after that. A result
// of 0 from the first ends it again with WM_NCDESTROY, one of -1 from the second ends it as DestroyWindow
// does. Null on failure, also when the procedure has ended the window meanwhile.
KX_API HWND CreateWindowExA(DWORD dwExStyle, const char* pszClassName, const char* pszName, DWORD dwStyle,
                            int x, int y, int nWidth, int nHeight, void* pParam = nullptr);
// Hides the window, sends it WM_DESTROY and WM_NCDESTROY and ends it. What is posted to it is dropped, and
// who waits in SendMessageA for a message that its procedure hasn't begun gets 0. Non-zero on success; 0 from
// a thread that doesn't own it and for a window that is being destroyed already.
KX_API int DestroyWindow(HWND hWnd);
KX_API int IsWindow(HWND hWnd) noexcept;
KX_API int IsWindowVisible(HWND hWnd) noexcept;
// Hides with SW_HIDE, shows with any other number; non-zero if the window was visible before. A change is
// announced to it with WM_SHOWWINDOW, whose WPARAM is 1 for showing, before it takes effect.
KX_API int ShowWindow(HWND hWnd, int nCmd);
KX_API WNDPROC GetWindowProcA(HWND hWnd) noexcept;
// The window's value of its client, 0 at first; `nIndex` is GWLP_USERDATA. Set gives the old value.
KX_API std::intptr_t SetWindowLongPtrA(HWND hWnd, int nIndex, std::intptr_t nValue);
KX_API std::intptr_t GetWindowLongPtrA(HWND hWnd, int nIndex);
// The window's text, at first the name that it was made with; null sets the empty text. Get cuts it to the
// buffer at a character, ends it and returns its length.
KX_API int SetWindowTextA(HWND hWnd, const char* pszText);
KX_API int GetWindowTextA(HWND hWnd, char* pszBuffer, int nSize);

// The window that all others lie on: it belongs to no process, hears no messages and is always there.
KX_API HWND GetDesktopWindow() noexcept;
// Where a window of this process, or the desktop's, lies on the desktop; its client area is all of it, and
// has its top left at 0, 0. 0 for no such window, with the rectangle untouched.
KX_API int GetWindowRect(HWND hWnd, RECT* pRect) noexcept;
KX_API int GetClientRect(HWND hWnd, RECT* pRect) noexcept;

// A measure of the desktop's own windows in pixels, the classic one: 19 for the height of their caption
// (SM_CYCAPTION), 4 for that of their sizing frame (SM_CYFRAME). 0 for any other index.
KX_API int GetSystemMetrics(int nIndex) noexcept;

// What a window does with a message that it doesn't handle: WM_CLOSE destroys it, WM_NCCREATE gives 1, the
// rest gives 0.
KX_API LRESULT DefWindowProcA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// The owning thread's number, 0 for no such window; `pdwProcessId` may be null.
KX_API DWORD GetWindowThreadProcessId(HWND hWnd, DWORD* pdwProcessId) noexcept;

// Puts a message at the end of the owning thread's queue and returns at once: non-zero, or 0 for no such
// window or a queue of 10,000 messages. A null window posts to the calling thread.
KX_API int PostMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
// The same to a thread, by its number; 0 for one without a queue too.
KX_API int PostThreadMessageA(DWORD dwThreadId, UINT nMsg, WPARAM wParam, LPARAM lParam);
// Lets the calling thread get WM_QUIT, with the code in its WPARAM, once it has taken what is posted. It
// needs no place in the queue.
KX_API void PostQuitMessage(int nExitCode);

// Runs the window's procedure and returns its result. On the owning thread it runs at once; from another
// thread the call waits until the owner asks for messages or itself waits in SendMessageA, and serves what
// is sent to its own windows meanwhile. 0 for no such window, when the window ends before its procedure
// begins or the thread before it returns, and when the procedure throws.
KX_API LRESULT SendMessageA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// Takes the calling thread's next posted message, waiting for one; what is sent is served meanwhile, and
// first. 0 for WM_QUIT, non-zero otherwise. A non-null `hWnd` takes that window's alone, and `nMin`, `nMax`
// bound the numbers unless both are 0; WM_QUIT passes in any case. -1 for a null record and for an `hWnd`
// that isn't, or no longer is, a window of this thread.
KX_API int GetMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax);
// The same without waiting: 0 when there is none and on failure, non-zero for any message. It stays in the
// queue unless `nRemove` has PM_REMOVE.
KX_API int PeekMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax, UINT nRemove);
// Runs the procedure of the message's window, which must be one of this thread; 0 otherwise.
KX_API LRESULT DispatchMessageA(const MSG* pMsg);

// The desktop "Default" (ignoring case), the only one; null for another name. Closed with CloseDesktop.
KX_API HDESK OpenDesktopA(const char* pszName, DWORD dwFlags, int bInherit, DWORD dwAccess);
KX_API int CloseDesktop(HDESK hDesk);
// Calls `pfn` for each top-level window of the desktop, of every process, oldest first, until it returns 0.
// A null handle means the only desktop. The callback may make, end and send to windows: those made during the
// walk are not visited, those ended are passed over. Non-zero if it was walked to its end.
KX_API int EnumDesktopWindows(HDESK hDesk, WNDENUMPROC pfn, long lParam);
