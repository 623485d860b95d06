#pragma once

// How a program that hosts the library, or a test of it, observes and steers the platform layer. Nothing here
// is needed for normal use. Operations may be called from any thread unless they say otherwise; those that
// set something apply to what begins after them.

#include "../KXExport.h"
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

// Calls the observer with each text sent to the debug channel, on the sender's thread. It may send texts
// itself but must not add or remove observers. Returns its number, never 0.
KX_API int AddDebugObserver(DebugObserver observer);
// No call of the observer runs any more once this has returned.
KX_API void RemoveDebugObserver(int nObserver);

// ---- Clock

enum class VirtualSleep
{
    Blocks,   // Sleep and waits with a time-out end when AdvanceClock passes their end
    Advances, // Sleep moves the clock by its length and returns at once
};

// Replaces the clock by one that stands at `nWallSeconds` (since 1970, UTC) until it is moved.
KX_API void UseVirtualClock(std::int64_t nWallSeconds, VirtualSleep sleep = VirtualSleep::Blocks);
// Moves the virtual clock and wakes what waited for it. Nothing happens on the real clock.
KX_API void AdvanceClock(std::uint64_t nMilliseconds);
KX_API void UseRealClock();
// How many threads now wait, with a time-out or in Sleep, for the clock.
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
// Where the system's mounts and devices are read for removable media: the directory that holds `proc`, `sys`
// and `dev`. Empty: the system's root.
KX_API void SetSystemRoot(const std::string& strDir);
// The Linux path that a path of this library names, or the empty string if it names none. The last
// components need not exist.
KX_API std::string ToSystemPath(const char* pszPath);
// A path of this library for an absolute Linux path, or the empty string where no drive holds it.
KX_API CString FromSystemPath(const std::string& strPath);

// The Linux path that counts as the running executable's; empty: the real one.
KX_API void SetExecutablePath(const std::string& strPath);

// ---- Registry

// The file that holds the per-user values; empty: its place in the user's configuration directory.
KX_API void SetRegistryFile(const std::string& strPath);

// ---- Desktop

struct MessageBoxRecord
{
    CString strText;
    UINT nType = 0;
    UINT nHelpId = 0;
};

// The message boxes since the last call, oldest first; at most the newest 1,000.
KX_API std::vector<MessageBoxRecord> TakeMessageBoxes();

struct SentMessage
{
    UINT nMsg = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

// Puts a top-level window of another process on the headless desktop. What is sent or posted to it is
// recorded (the newest 1,000), with the result 0.
KX_API HWND AddForeignWindow(DWORD dwProcessId, bool bVisible);
KX_API std::vector<SentMessage> TakeForeignMessages(HWND hWnd);
KX_API void RemoveForeignWindow(HWND hWnd);

// ---- Handles

// How many events, threads, searches, registry keys and modules are open.
KX_API int LiveHandles();

} // namespace KXHost
