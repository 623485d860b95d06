#pragma once

// The filter that runs when the process crashes, what it may call, and processes.
//
// A crash is a signal that would end the process: a bad memory access, a stack overflow, a division by zero,
// an illegal instruction, a trap, abort (so also an exception that nobody catches), whoever sent it. The
// filter runs on the thread that crashed, on that thread's alternate stack if it has one, with all else as
// the crash left it: the heap may be locked or torn, any lock may be held. So a filter allocates nothing,
// takes no lock and uses no stdio. What is marked "in a filter too" below keeps to that.

#include "../KXExport.h"
#include "Types.h"

#include <cstdint>
#include <ctime>

// Why it crashed, in the platform's numbers.
inline constexpr DWORD EXCEPTION_DATATYPE_MISALIGNMENT = 0x80000002;
inline constexpr DWORD EXCEPTION_BREAKPOINT = 0x80000003;
inline constexpr DWORD EXCEPTION_ACCESS_VIOLATION = 0xC0000005;
inline constexpr DWORD EXCEPTION_IN_PAGE_ERROR = 0xC0000006; // a mapped file that has become shorter, say
inline constexpr DWORD EXCEPTION_ILLEGAL_INSTRUCTION = 0xC000001D;
inline constexpr DWORD EXCEPTION_FLT_DIVIDE_BY_ZERO = 0xC000008E;
inline constexpr DWORD EXCEPTION_FLT_INVALID_OPERATION = 0xC0000090;
inline constexpr DWORD EXCEPTION_INT_DIVIDE_BY_ZERO = 0xC0000094;
inline constexpr DWORD EXCEPTION_INT_OVERFLOW = 0xC0000095;
inline constexpr DWORD EXCEPTION_STACK_OVERFLOW = 0xC00000FD;
inline constexpr DWORD STATUS_FATAL_APP_EXIT = 0x40000015; // abort

struct EXCEPTION_RECORD
{
    // One of the numbers above.
    DWORD ExceptionCode;
    DWORD ExceptionFlags;              // 1: execution can't go on (abort)
    EXCEPTION_RECORD* ExceptionRecord; // null
    void* ExceptionAddress;            // of the instruction
    DWORD NumberParameters;            // 2 for a bad access: 0 read or 1 written (where the processor tells),
    std::uintptr_t ExceptionInformation[15]; // and the address that was accessed
};

// The thread's state at the crash, as the system hands it over.
struct CONTEXT
{
    // The signal, and the thread that got it.
    std::int32_t nSignal;
    DWORD dwThreadId;
    const void* pSignalInfo;  // a siginfo_t
    const void* pUserContext; // a ucontext_t: registers and signal mask
};

// A filter is given the reason and the state.
struct _EXCEPTION_POINTERS
{
    // Why, and the thread's state.
    EXCEPTION_RECORD* ExceptionRecord;
    CONTEXT* ContextRecord;
};
// The same.
using EXCEPTION_POINTERS = _EXCEPTION_POINTERS;

// The results of a filter.
inline constexpr long EXCEPTION_EXECUTE_HANDLER = 1; // the process ends by the signal that it crashed with
inline constexpr long EXCEPTION_CONTINUE_SEARCH = 0; // the crash takes its course as without a filter
inline constexpr long EXCEPTION_CONTINUE_EXECUTION = -1; // the instruction that crashed runs again

// A filter: gets the two records and gives one of the three numbers above.
using LPTOP_LEVEL_EXCEPTION_FILTER = long (*)(_EXCEPTION_POINTERS*);

// Sets the process's filter; null: none, and the signals are handled as before the first one. Returns the one
// before, null without one. The records that the filter is given stay as they are while it runs. One thread
// at a time is in the filter: who crashes meanwhile waits, so a crash of several threads is one call, and
// where it ends the process they end with it. A crash of the filter itself ends the process at once. In
// either case the parent sees the signal. Gives the calling thread an alternate stack. Any thread; in a
// filter too.
KX_API LPTOP_LEVEL_EXCEPTION_FILTER
SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER pFilter) noexcept;

// How a program is started; nothing in it counts.
struct STARTUPINFOA
{
    DWORD cb; // its size
};
// The same.
using STARTUPINFO = STARTUPINFOA;

// CreateProcessA tells this of the process.
struct PROCESS_INFORMATION
{
    // The process: the caller closes the handle.
    HANDLE hProcess;
    HANDLE hThread; // null: another process's threads have no handles here
    DWORD dwProcessId;
    DWORD dwThreadId;
};

// Starts a program by its path. Each blank of the argument text ends an argument: joined by blanks, the
// program's arguments behind its name (the path, in the system's form) are the text again; quotes and
// brackets are letters like others. The text, of at most 32,767 bytes, is written to meanwhile; it may be
// null. The program has the caller's environment and current directory, no blocked signals, and of its open
// files the standard ones, or all that are not close-on-exec with a non-zero `bInheritHandles`. The security,
// flags and start arguments are accepted and ignored; an environment or directory of its own is refused
// (ERROR_INVALID_PARAMETER). Non-zero on success, with the process's handle, which the caller closes, and its
// number; 0 where it can't be started, the record being all 0 then. The caller may wait for the handle, which
// is signalled when the process has ended, at any time. Any thread; in a filter too, up to four processes,
// which may read and trace the one that crashed.
KX_API int CreateProcessA(const char* pszProgram, char* pszArguments, void* pProcessSecurity,
                          void* pThreadSecurity, int bInheritHandles, DWORD dwFlags, void* pEnvironment,
                          const char* pszDirectory, STARTUPINFOA* pStartup,
                          PROCESS_INFORMATION* pInformation) noexcept;

// GetExitCodeProcess gives this while the process runs.
inline constexpr DWORD STILL_ACTIVE = 259;

// The code with which a process ended, 128 plus the signal that ended it, or STILL_ACTIVE; 0 where the
// program lets the system drop the codes of its children. Non-zero on success; 0 for null or the handle of
// anything but a process (ERROR_INVALID_HANDLE). Any thread; in a filter too, like WaitForSingleObject and
// CloseHandle with such a handle.
KX_API int GetExitCodeProcess(HANDLE hProcess, DWORD* pdwExitCode) noexcept;

namespace KXCrash {

// Gives the calling thread an alternate stack until it ends, so that a filter runs even if the thread's own
// stack is used up. The platform's threads (_beginthreadex) have one, and the one that sets a filter gets
// one; a thread started in another way may call this. True if it has one.
KX_API bool GuardThread() noexcept;

// Heap-free forms of common calls, any thread, in a filter too. In a filter a path is found ignoring the case
// of ASCII letters alone, and a relative one from the current directory.

// Whether a file (no directory) can be opened for reading.
KX_API bool IsFileReadable(const char* pszPath) noexcept;
// Non-zero if the directory was made.
KX_API int MakeDirectory(const char* pszPath) noexcept;
// The clock's present second as local time. In a filter by the zone's rules as they stood when the first
// filter was set; of a zone's changes those from 2000 to ten years from then are known, and the nearest one
// holds beyond. False where the year doesn't fit the record.
KX_API bool GetLocalTime(std::tm* pTime) noexcept;

} // namespace KXCrash
