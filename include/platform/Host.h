#pragma once

// How a program that hosts the library, or a test of it, observes and steers the platform layer. Nothing here
// is needed for normal use. Operations may be called from any thread unless they say otherwise; those that
// set something apply to what begins after them.

#include "../KXExport.h"
#include "Gdi.h"
#include "ServiceManager.h"
#include "String.h"
#include "Types.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace KXHost {

// ---- Debug channel

using DebugObserver = std::function<void(std::string_view)>;

// Calls the observer with each text sent to the debug channel from now on, on the sender's thread, so on
// several threads at once if they send at once. The text is valid during the call. What an observer throws
// ends there. It may send texts itself: they go to all observers but those that are being called on that
// thread, so it never hears itself. With `bDiagnostics` it hears diagnostics too: a line, ended by LF, for
// each quiet fallback, which begins with its family, as in "skin: ...". Returns its number, never 0; an empty
// function is never called.
KX_API int AddDebugObserver(DebugObserver observer, bool bDiagnostics = false);
// Waits for the observer's running calls and frees it: no call of it runs or begins once this has returned.
// So don't hold what such a call waits for. From within an observer's call it doesn't wait: no further call
// begins, and the observer is freed after its last one. An unknown number changes nothing.
KX_API void RemoveDebugObserver(int nObserver);

// ---- Clock

enum class VirtualSleep
{
    Blocks,   // Sleep and waits with a time-out end when AdvanceClock reaches their end
    Advances, // Sleep moves the clock by its length, for all, and returns at once; waits end as above
};

// Replaces the clock by one that stands at `nWallSeconds` (since 1970, UTC) until it is moved. The tick count
// goes on from where it is, here and in UseRealClock, and never back. Threads that are waiting for the clock
// stay so for what is left of their time, which from then on passes on the new clock. On a virtual clock it
// sets the wall time and the kind of sleep anew.
KX_API void UseVirtualClock(std::int64_t nWallSeconds, VirtualSleep sleep = VirtualSleep::Blocks);
// Moves the virtual clock and wakes those whose time has come. Nothing happens on the real clock. The clock
// stops before its range of 190 years is passed.
KX_API void AdvanceClock(std::uint64_t nMilliseconds);
// Back to the system's clock. Nothing happens if that is in use already.
KX_API void UseRealClock();
// How many threads now sleep for the clock: in Sleep or in a wait with a time-out. Who has been released and
// only has yet to wake up doesn't count, so a test can await the number and then move the clock.
KX_API int ClockWaiters();

// ---- Code page

// 936 or 65001; false for any other.
KX_API bool SetCodePage(UINT nCodePage);

// ---- Drives

struct Drive
{
    std::string strRoot;       // the Linux directory; empty: a drive that holds no medium
    UINT nType = 3;            // a DRIVE_... number
    std::string strLabel;      // UTF-8
    std::string strFileSystem; // empty: as the system says
    DWORD dwSerial = 0;        // 0: as the system says
};

// Mounts a drive under a letter, in place of what it was. False for no letter or a root that isn't absolute.
KX_API bool MountDrive(char cLetter, const Drive& drive);
// Back to what the system has under that letter; `C:` becomes `/` again.
KX_API void UnmountDrive(char cLetter);
// Sets the place where the system's mounts and devices are read for removable media: the directory that holds
// `proc`, `sys` and `dev`. Empty: the system's root.
KX_API void SetSystemRoot(const std::string& strDir);
// The Linux path that a path of this library names, or the empty string if it names none. The last
// components need not exist.
KX_API std::string ToSystemPath(const char* pszPath);
// A path of this library for an absolute Linux path, or the empty string where no drive holds it.
KX_API CString FromSystemPath(const std::string& strPath);

// The Linux path that counts as the running executable's; empty: the real one.
KX_API void SetExecutablePath(const std::string& strPath);

// ---- Registry

// The file that holds the per-user values, a relative path from the working directory of the call on; empty:
// its place in the user's configuration directory.
KX_API void SetRegistryFile(const std::string& strPath);

// ---- Desktop

// How long an X server is waited for, in milliseconds: until all is known that windows need, and later by
// each thread that asks it something. Windows on one that then hasn't answered end as with one that is gone.
inline constexpr DWORD ANSWER_LIMIT = 5'000;

// Windows appear on the X server that DISPLAY names if it answers in time, else on a desktop in
// memory. These choose another; false, with nothing changed, while there are windows. The size is at most
// 16,384 each way.
KX_API bool UseMemoryDesktop(int nWidth = 1024, int nHeight = 768);
// A null name is DISPLAY's. False also without the library's module for X11, and when the display doesn't
// answer within the limit, which also holds later.
// Windows of other processes are found there, but messages don't reach them: what is posted or sent to one
// gives 0. Windows need a screen of 24 bits and more, and end with the server, as if each was destroyed.
KX_API bool UseDisplay(const char* pszDisplay = nullptr, DWORD dwLimit = ANSWER_LIMIT);
// Whether windows appear in memory alone.
KX_API bool IsMemoryDesktop();
// Writes what is seen on the desktop as a PNG file under a Linux path, in the place of an older one as a
// whole; false if that fails, as it does for a device.
KX_API bool SaveDesktop(const std::string& strPath);

// Posts what a person does to a window of this process, as the desktop's mouse, keys and window manager do:
// one of the messages of Input.h, or WM_CLOSE. A disabled window doesn't hear it, a captured mouse goes to
// the window that has it, a second press may become a double click, and keys count for GetKeyState. 0 for no
// such window and a full queue.
KX_API int PostInput(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

struct MessageBoxRecord
{
    CString strText;
    UINT nType = 0;
    UINT nHelpId = 0;
};

// The message boxes since the last call, oldest first; at most the newest 1,000.
KX_API std::vector<MessageBoxRecord> TakeMessageBoxes();

// A message that a window of another process was sent.
struct SentMessage
{
    // The message and its two numbers.
    UINT nMsg = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

// Puts a top-level window of another process on the desktop in memory. What is sent or posted to it is
// recorded (the newest 1,000); a sent message gives 0. Its thread's number is the process's. Null for a
// process of 0.
KX_API HWND AddForeignWindow(DWORD dwProcessId, bool bVisible);
// Gives what it received since the last call, oldest first; nothing for another handle.
KX_API std::vector<SentMessage> TakeForeignMessages(HWND hWnd);
KX_API void RemoveForeignWindow(HWND hWnd);

// ---- Drawing

enum class CopyKind
{
    BitBlt,
    StretchBlt,
    TransparentBlt,
};

// A block copy as it was called.
struct CopyRecord
{
    // The call, and its arguments under their names.
    CopyKind kind = CopyKind::BitBlt;
    HDC hDst = nullptr;
    int x = 0;
    int y = 0;
    int cx = 0;
    int cy = 0;
    HDC hSrc = nullptr;
    int xSrc = 0;
    int ySrc = 0;
    int cxSrc = 0;       // for BitBlt `cx`
    int cySrc = 0;       // for BitBlt `cy`
    COLORREF clrKey = 0; // of TransparentBlt alone
};
// Is told of each block copy.
using CopyObserver = std::function<void(const CopyRecord&)>;

// Calls the observer, in place of the one before, at the start of each BitBlt, StretchBlt and TransparentBlt
// that this library or its client makes, also one that will paint nothing or fail; on the caller's thread, so
// on several at once if they copy at once. What it throws ends there. It may draw itself and isn't told of
// that. An empty function ends it; a call that has begun on another thread may still be running then.
KX_API void SetCopyObserver(CopyObserver observer);

// ---- Services
//
// SetServiceManager and what it takes: see ServiceManager.h.

// ---- Handles

// How many events, threads, processes, searches, registry keys, service handles, modules, surfaces, drawing
// objects and icons are open, and XML documents or parts of them in use; stock objects don't count.
KX_API int LiveHandles();

} // namespace KXHost
