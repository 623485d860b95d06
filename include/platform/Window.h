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
#include "Gdi.h"
#include "Types.h"

// Messages; those of input are in Input.h.
inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_ENABLE = 0x000A; // WPARAM: 1 when it is enabled now
// More messages.
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
// The primary monitor has another size (width and height in the low and high 16 bits of the LPARAM), or the
// monitors lie otherwise. Posted to all windows.
inline constexpr UINT WM_DISPLAYCHANGE = 0x007E;
// LPARAM: the icon by which the window manager shows the window, or 0; the caller's. Gives the old one.
inline constexpr UINT WM_SETICON = 0x0080;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_USER = 0x0400;

// A pop-up has no frame of the desktop's and isn't its window manager's business; of the others, those
// without WS_CAPTION have no frame either.
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_CAPTION = 0x00C00000;

// Commands of ShowWindow and of the calls below it.
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNOACTIVATE = 4;
inline constexpr int SW_SHOW = 5;
inline constexpr int SW_SHOWNA = 8;
inline constexpr UINT PM_NOREMOVE = 0;
inline constexpr UINT PM_REMOVE = 1;
inline constexpr int GWLP_USERDATA = -21;
inline constexpr DWORD DESKTOP_ENUMERATE = 64;
inline constexpr int SM_CXSCREEN = 0;
inline constexpr int SM_CYSCREEN = 1;
inline constexpr int SM_CYCAPTION = 4;
inline constexpr int SM_CYFRAME = 33;

// A window's procedure, and what windows are listed to.
using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);
using WNDENUMPROC = int (*)(HWND, long);

// A class's style.
inline constexpr UINT CS_VREDRAW = 1;
inline constexpr UINT CS_HREDRAW = 2;
inline constexpr UINT CS_DBLCLKS = 8;

// A class of windows.
struct WNDCLASSA
{
    // The procedure that its windows call.
    WNDPROC lpfnWndProc = nullptr;
    const char* lpszClassName = nullptr;
    HBRUSH hbrBackground = nullptr; // what the default handling erases with; null: nothing. The caller's.
    UINT style = 0; // CS_VREDRAW, CS_HREDRAW: a new height, width invalidates all of it; CS_DBLCLKS
    HCURSOR hCursor = nullptr; // what the default handling of WM_SETCURSOR sets; null: nothing
    HICON hIcon = nullptr;     // by which the window manager shows its windows; null: none. The caller's.
};

// The record that WM_NCCREATE and WM_CREATE carry in their LPARAM, as a pointer.
struct CREATESTRUCTA
{
    // The argument that CreateWindowExA was given.
    void* lpCreateParams;
    const char* lpszName;
    const char* lpszClass;
    // Place and size.
    int x, y, cx, cy;
    DWORD style;
};

// A message on its way.
struct MSG
{
    // The window, the message, and its two numbers.
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
// does. The parent is the desktop's window or null; menu and instance are accepted and ignored. Null on
// failure, also when the procedure has ended the window meanwhile.
KX_API HWND CreateWindowExA(DWORD dwExStyle, const char* pszClassName, const char* pszName, DWORD dwStyle,
                            int x, int y, int nWidth, int nHeight, HWND hParent = nullptr,
                            void* hMenu = nullptr, HINSTANCE hInstance = nullptr, void* pParam = nullptr);
// Hides the window, sends it WM_DESTROY and WM_NCDESTROY and ends it. What is posted to it is dropped, and
// who waits in SendMessageA for a message that its procedure hasn't begun gets 0. Non-zero on success; 0 from
// a thread that doesn't own it and for a window that is being destroyed already.
KX_API int DestroyWindow(HWND hWnd);
KX_API int IsWindow(HWND hWnd) noexcept;
KX_API int IsWindowVisible(HWND hWnd) noexcept;
// Hides with SW_HIDE, shows with any other number; non-zero if the window was visible before. A change is
// announced to it with WM_SHOWWINDOW, whose WPARAM is 1 for showing, before it takes effect. A window that
// is shown goes on top of the others of its kind, is to be painted whole, and appears with that; it takes the
// focus but for SW_SHOWNOACTIVATE and SW_SHOWNA. One that is hidden loses it. For a call by another thread
// the focus changes when the owner comes to it among its messages.
KX_API int ShowWindow(HWND hWnd, int nCmd);
// The window's value of its client, 0 at first; `nIndex` is GWLP_USERDATA. Set gives the old value.
KX_API std::intptr_t SetWindowLongPtrA(HWND hWnd, int nIndex, std::intptr_t nValue);
KX_API std::intptr_t GetWindowLongPtrA(HWND hWnd, int nIndex);
// The window's text, at first the name that it was made with; null sets the empty text. Get cuts it to the
// buffer at a character, ends it and returns its length.
KX_API int SetWindowTextA(HWND hWnd, const char* pszText);
KX_API int GetWindowTextA(HWND hWnd, char* pszBuffer, int nSize);

// The window that all others lie on: it lies where the primary monitor does, with its top left at 0, 0, so
// that other monitors may have places below 0. It belongs to no process, hears no messages and is always
// there.
KX_API HWND GetDesktopWindow() noexcept;
// Gives the place of a window of this process, or of the desktop's, on the desktop; its client area is all of
// it, and has its top left at 0, 0. 0 for no such window, with the rectangle untouched.
KX_API int GetWindowRect(HWND hWnd, RECT* pRect) noexcept;
KX_API int GetClientRect(HWND hWnd, RECT* pRect) noexcept;
// A measure in pixels: the primary monitor's size (SM_CXSCREEN, SM_CYSCREEN), and of its own windows, the
// classic ones: 19 for the height of their caption (SM_CYCAPTION), 4 for that of their sizing frame
// (SM_CYFRAME). 0 for any other index.
KX_API int GetSystemMetrics(int nIndex) noexcept;

// Places among the other windows, for SetWindowPos.
inline const HWND HWND_TOP = nullptr;
inline const HWND HWND_BOTTOM = reinterpret_cast<HWND>(1);
inline const HWND HWND_TOPMOST = reinterpret_cast<HWND>(-1); // above all that aren't topmost, from now on
inline const HWND HWND_NOTOPMOST = reinterpret_cast<HWND>(-2);
inline constexpr UINT SWP_NOSIZE = 0x01;
inline constexpr UINT SWP_NOMOVE = 0x02;
inline constexpr UINT SWP_NOZORDER = 0x04;
inline constexpr UINT SWP_NOACTIVATE = 0x10;
inline constexpr UINT SWP_SHOWWINDOW = 0x40;
inline constexpr UINT SWP_HIDEWINDOW = 0x80;

// Moves, resizes, reorders, shows or hides a window of the calling thread and gives it the focus, each unless
// a flag says not to, or not asked for. It hears WM_MOVE with its new left and top, WM_SIZE with its new
// width and height (in the low and high 16 bits of the LPARAM) where they changed, and what ShowWindow sends.
// A new size keeps what was painted and invalidates what is new. `hAfter` is one of the HWND_... above, any
// other counts as HWND_TOP. A size below 0 counts as 0. Non-zero on success.
KX_API int SetWindowPos(HWND hWnd, HWND hAfter, int x, int y, int nWidth, int nHeight, UINT nFlags);

// Cuts a window of the calling thread to a region of its own coordinates, outside of which nothing of it is
// seen, or with null to its rectangle again. The region is the system's from then on. Non-zero on success; 0,
// with the region still the caller's, otherwise.
KX_API int SetWindowRgn(HWND hWnd, HRGN hRgn, int bRedraw);

// A disabled window hears nothing of the mouse, the keys and the window manager's wish to close it, and can't
// have the focus; messages that programs post and send reach it. A change is told to it by WM_ENABLE, and it
// loses the focus and the capture. Non-zero if it was disabled before. Any thread.
KX_API int EnableWindow(HWND hWnd, int bEnable);
KX_API int IsWindowEnabled(HWND hWnd) noexcept;

// Gives the keyboard to a window of the calling thread, or with null to none: the one that had it hears
// WM_KILLFOCUS (posted, if it is another thread's), then the new one WM_SETFOCUS with the old one's handle,
// or 0 if that isn't of this thread. A button pressed over a window does so as well. Gives the old one, null
// for none and on failure, as for a disabled window.
KX_API HWND SetFocus(HWND hWnd);
// The window of the calling thread that has the keyboard; null if none has.
KX_API HWND GetFocus() noexcept;

// A timer's procedure; its arguments are the window, WM_TIMER, its id and the tick count.
using TIMERPROC = void (*)(HWND, UINT, UINT_PTR, DWORD);
// Lets a window of the calling thread get WM_TIMER with that id as WPARAM each time that `nPeriod`
// milliseconds (10 at least) of the clock have passed, once the thread has nothing else to do; missed ones
// don't pile up. A timer of the window with that id is replaced. With a procedure DispatchMessageA calls it
// instead of the window's. The id (1 for 0), or 0 on failure. Ends with KillTimer or the window.
KX_API UINT_PTR SetTimer(HWND hWnd, UINT_PTR nId, UINT nPeriod, TIMERPROC pfn);
// 0 if there is no such timer. Its messages that the thread hasn't taken yet are gone.
KX_API int KillTimer(HWND hWnd, UINT_PTR nId);

// Does what a window does with a message that it doesn't handle: WM_CLOSE destroys it, WM_NCCREATE gives 1,
// WM_ERASEBKGND fills with the class's brush and gives 1 if it has one, WM_PAINT erases at most, the rest
// gives 0.
KX_API LRESULT DefWindowProcA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// The owning thread's number, 0 for no such window; `pdwProcessId` may be null.
KX_API DWORD GetWindowThreadProcessId(HWND hWnd, DWORD* pdwProcessId) noexcept;

// Puts a message at the end of the owning thread's queue and returns at once: non-zero, or 0 for no such
// window or a queue of 10,000 messages. A null window posts to the calling thread.
KX_API int PostMessage(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
// Lets the calling thread get WM_QUIT, with the code in its WPARAM, once it has taken what is posted. It
// needs no place in the queue.
KX_API void PostQuitMessage(int nExitCode);

// Runs the window's procedure and returns its result. On the owning thread it runs at once; from another
// thread the call waits until the owner asks for messages or itself waits in SendMessageA, and serves what
// is sent to its own windows meanwhile. 0 for no such window, when the window ends before its procedure
// begins or the thread before it returns, and when the procedure throws.
KX_API LRESULT SendMessageA(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

// Takes the calling thread's next message, waiting for one; what is sent is served meanwhile, and first.
// After what is posted come WM_QUIT, then WM_PAINT for windows that have something to paint (until they have
// painted it), then WM_TIMER. 0 for WM_QUIT, non-zero otherwise. A non-null `hWnd` takes that window's alone,
// and `nMin`, `nMax` bound the numbers unless both are 0; WM_QUIT passes in any case. -1 for a null record
// and for an `hWnd` that isn't, or no longer is, a window of this thread.
KX_API int GetMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax);
// The same without waiting: 0 when there is none and on failure, non-zero for any message. It stays in the
// queue unless `nRemove` has PM_REMOVE.
KX_API int PeekMessageA(MSG* pMsg, HWND hWnd, UINT nMin, UINT nMax, UINT nRemove);
// Runs the procedure of the message's window, which must be one of this thread; 0 otherwise.
KX_API LRESULT DispatchMessageA(const MSG* pMsg);
// Does nothing and gives 0: WM_CHAR follows its WM_KEYDOWN by itself. Here so that loops read as usual.
inline int TranslateMessage(const MSG*)
{
    return 0;
}

// The desktop "Default" (ignoring case), the only one; null for another name. Closed with CloseDesktop.
KX_API HDESK OpenDesktopA(const char* pszName, DWORD dwFlags, int bInherit, DWORD dwAccess);
KX_API int CloseDesktop(HDESK hDesk);
// Calls `pfn` for each top-level window of the desktop, of every process, oldest first, until it returns 0.
// A null handle means the only desktop. The callback may make, end and send to windows: those made during the
// walk are not visited, those ended are passed over. Non-zero if it was walked to its end.
KX_API int EnumDesktopWindows(HDESK hDesk, WNDENUMPROC pfn, long lParam);
