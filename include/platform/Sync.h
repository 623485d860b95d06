#pragma once

// Locks, events, threads and waits. No operation here needs the library's static objects: all of them work
// from static constructors and destructors too.

#include "../KXExport.h"
#include "Types.h"

#include <atomic>
#include <cstdint>

// A lock that its owner may take again; each taking needs its leaving. It spins briefly before it sleeps, and
// who has slept for a millisecond without getting it is handed it next. Not copyable: a copy of a lock in use
// means nothing.
struct CRITICAL_SECTION
{
    CRITICAL_SECTION() = default;
    CRITICAL_SECTION(const CRITICAL_SECTION&) = delete;
    CRITICAL_SECTION& operator=(const CRITICAL_SECTION&) = delete;

    std::atomic<std::uint32_t> state{0};  // bit 0 taken, bit 1 others sleep, bit 2 one of them has to be next
    int recursion = 0;                    // takings of the owner behind its first, touched by it alone
    std::atomic<std::uintptr_t> owner{0}; // the thread that holds it, 0 without one
};

// A null section is left alone by all of these.
KX_API void InitializeCriticalSection(CRITICAL_SECTION* pSection) noexcept;
// Nobody may hold it or wait for it.
KX_API void DeleteCriticalSection(CRITICAL_SECTION* pSection) noexcept;
// Waits as long as it takes.
KX_API void EnterCriticalSection(CRITICAL_SECTION* pSection) noexcept;
// For the owner; called by another thread it changes nothing.
KX_API void LeaveCriticalSection(CRITICAL_SECTION* pSection) noexcept;

// A wait without a limit, and what a wait gives.
inline constexpr DWORD INFINITE = 0xFFFFFFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// Makes an event. Manual-reset: a signal releases every wait from then on. Auto-reset: a signal releases
// one wait, the one that began first, or the next to come. The first and last arguments (security, name) are
// accepted and ignored. The caller owns the handle and ends it with CloseHandle; null for lack of memory.
KX_API HANDLE CreateEventA(void* pSecurity, int bManualReset, int bInitialState, const char* pszName);

// Non-zero on success; 0 for a handle that is closed, null or no event's (ERROR_INVALID_HANDLE). Any thread.
// Threads that the signal releases see all that this one did before SetEvent. A released thread may close the
// event at once.
KX_API int SetEvent(HANDLE hEvent) noexcept;

// Waits until the object (event, thread, process) is signalled: WAIT_OBJECT_0; WAIT_TIMEOUT when that many
// milliseconds of the clock passed first; WAIT_FAILED at once (ERROR_INVALID_HANDLE) for a handle that is
// null, closed or of another kind. A thread is signalled when it has ended, its thread-local objects
// included. With 0 it only looks, and INFINITE has no time-out. The handle may be closed meanwhile, which
// ends no wait.
KX_API DWORD WaitForSingleObject(HANDLE hObject, DWORD dwMilliseconds);

// Ends a handle of an event, thread or process; the object lives on while a thread waits for it or runs.
// Non-zero on success; 0 (ERROR_INVALID_HANDLE) for a handle that is null, closed already or of another kind.
KX_API int CloseHandle(HANDLE hObject) noexcept;

// Starts a thread that runs `pfnStart(pArg)`. The security and flags arguments are accepted and ignored; the
// stack has that many bytes or the system's default, whichever is more. `pThreadId` may be null. The caller
// closes the handle, which doesn't end the thread. 0 if no thread could be started, with nothing run. An
// exception that leaves `pfnStart` ends the process (std::terminate).
KX_API std::uintptr_t _beginthreadex(void* pSecurity, unsigned nStackSize, unsigned (*pfnStart)(void*),
                                     void* pArg, unsigned nFlags, unsigned* pThreadId);

// The calling thread's and process's numbers, as the system gives them.
KX_API DWORD GetCurrentThreadId() noexcept;
KX_API DWORD GetCurrentProcessId() noexcept;

// Adds one to a counter in one atomic step, a full barrier; the result is the new value. Any thread.
KX_API long InterlockedIncrement(volatile long* pValue) noexcept;

// ---- After a fork
//
// A child of `fork` has the forking thread alone. Until it ends or runs another program it may call, whatever
// the parent's threads were at when it was made:
// - the log (KXLogSys.h). It doesn't run in the child, and its queue is empty: the lines and the file are the
//   parent's. The child may start it on a file of its own;
// - paths and files (KXFileSystem.h but for drives and icons, platform/FileSystem.h, platform/File.h) and INI
//   files (KXIniDataMgr.h, platform/Profile.h);
// - locks, events and threads of its own. A lock that another thread of the parent held stays taken;
// - a crash filter that the parent set: it reports the child.
// Nothing else: no windows, drawing, downloads or services, and none of the parent's threads and their
// objects. A handle of the parent's may be closed. `exit` is as safe as `_exit`, as far as the library goes.

// For a class with a lock that a child needs: `pfnBefore`, which takes it, runs on the forking thread before
// each fork from now on, and `pfnAfter`, which gives it back, behind it on both sides. The library's own
// locks are taken after these and given back before. 0 for a null pointer or where there is no room for
// another. Any thread.
KX_API int KXAtFork(void (*pfnBefore)() noexcept, void (*pfnAfter)(bool bChild) noexcept) noexcept;
