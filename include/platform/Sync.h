#pragma once

// Locks, events, threads and waits.

#include "../KXExport.h"
#include "Types.h"

#include <atomic>
#include <cstdint>

// A lock that its owner may take again; each taking needs its leaving. It spins briefly before it sleeps.
// Not copyable: a copy of a lock in use means nothing.
struct CRITICAL_SECTION
{
    CRITICAL_SECTION() = default;
    CRITICAL_SECTION(const CRITICAL_SECTION&) = delete;
    CRITICAL_SECTION& operator=(const CRITICAL_SECTION&) = delete;

    std::atomic<int> state{0};                // 0 free, 1 taken, 2 taken and others sleep
    std::atomic<std::uintptr_t> owner{0};     // the thread that holds it
    int recursion = 0;                        // takings of the owner, touched by it alone
};

KX_API void InitializeCriticalSection(CRITICAL_SECTION* pSection) noexcept;
KX_API void DeleteCriticalSection(CRITICAL_SECTION* pSection) noexcept;
KX_API void EnterCriticalSection(CRITICAL_SECTION* pSection) noexcept;
// Non-zero if the lock was taken.
KX_API int TryEnterCriticalSection(CRITICAL_SECTION* pSection) noexcept;
// Called by the owner only.
KX_API void LeaveCriticalSection(CRITICAL_SECTION* pSection) noexcept;

inline constexpr DWORD INFINITE = 0xFFFFFFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// Makes an event. Manual-reset: stays signalled until ResetEvent. Auto-reset: one wait takes the signal
// back. The first and last arguments (security, name) are accepted and ignored. The caller owns the handle
// and ends it with CloseHandle; null for lack of memory.
KX_API HANDLE CreateEventA(void* pSecurity, int bManualReset, int bInitialState, const char* pszName);

// Non-zero on success; 0 for a handle that is null or no event (ERROR_INVALID_HANDLE). Any thread.
KX_API int SetEvent(HANDLE hEvent) noexcept;
KX_API int ResetEvent(HANDLE hEvent) noexcept;

// Waits until the object (event, thread, process) is signalled: WAIT_OBJECT_0; WAIT_TIMEOUT when that many
// milliseconds of the clock passed first; WAIT_FAILED at once for a null handle. A thread is signalled when
// it has ended. The handle must stay open during the call.
KX_API DWORD WaitForSingleObject(HANDLE hObject, DWORD dwMilliseconds);

// Ends a handle of an event, thread or process; the object lives on while a thread waits for it or runs.
// Non-zero on success, 0 for null or INVALID_HANDLE_VALUE. A handle is closed once and not used after that.
KX_API int CloseHandle(HANDLE hObject) noexcept;

// Starts a thread that runs `pfnStart(pArg)`. The stack size, security and flags arguments are accepted; 0
// means the default. `pThreadId` may be null. The caller closes the handle, which doesn't end the thread.
// 0 if no thread could be started.
KX_API std::uintptr_t _beginthreadex(void* pSecurity, unsigned nStackSize, unsigned (*pfnStart)(void*),
                                     void* pArg, unsigned nFlags, unsigned* pThreadId);

// The calling thread's and process's numbers, as the system gives them.
KX_API DWORD GetCurrentThreadId() noexcept;
KX_API DWORD GetCurrentProcessId() noexcept;

// Atomic steps on a counter; the result is the new value (Exchange: the old one). Full barriers.
KX_API long InterlockedIncrement(volatile long* pValue) noexcept;
KX_API long InterlockedDecrement(volatile long* pValue) noexcept;
KX_API long InterlockedExchange(volatile long* pValue, long nValue) noexcept;
