#pragma once

#include "include/platform/Crash.h"
#include "include/platform/Sync.h"
#include "tests/support/Standard.h"

// Ways to crash, for child programs. Each function has a name of its own in the stack.
namespace crashes {

// Leaves out the checks of a sanitizer's build, which would come first.
#define KX_CRASHES __attribute__((noinline, no_sanitize("undefined", "address")))

inline volatile int g_nSink = 0;
inline void* volatile g_pBlock = nullptr;
inline volatile int g_nDividend = 7000;
inline volatile int* volatile g_pNowhere = reinterpret_cast<volatile int*>(16);

KX_CRASHES inline void CrashByRead()
{
    g_nSink = *g_pNowhere;
}

KX_CRASHES inline void CrashByAbort()
{
    std::abort();
}

KX_CRASHES inline void CrashByException()
{
    throw std::runtime_error("nobody catches this");
}

KX_CRASHES inline void CrashByDivision()
{
    g_nSink = g_nDividend / g_nSink;
}

KX_CRASHES inline void CrashByTrap()
{
    __builtin_trap();
}

KX_CRASHES inline void CrashByCall()
{
    void (*volatile pfnNothing)() = nullptr;
    pfnNothing();
    g_nSink = 1; // no tail call, so that this is in the stack
}

// No std::array, whose operators are calls without optimisation: the stack would end in one of them at times.
KX_CRASHES inline int CrashByOverflow(int nDepth = 0)
{
    volatile char room[512];
    room[static_cast<std::size_t>(nDepth) % sizeof(room)] = 1;
    return nDepth < 100'000'000 ? CrashByOverflow(nDepth + 1) + room[0] : 0;
}

// The allocator follows a torn link while it holds the heap's lock, which it takes once there are threads.
KX_CRASHES inline void CrashByHeap()
{
    std::jthread other([](std::stop_token stop) {
        while (!stop.stop_requested())
            std::this_thread::yield();
    });
    g_pBlock = std::malloc(5000);
    const volatile auto torn = reinterpret_cast<std::uintptr_t>(g_pBlock);
    g_pBlock = std::malloc(5000);
    std::free(reinterpret_cast<void*>(torn));
    reinterpret_cast<std::uintptr_t*>(torn)[1] = 0x7000000000; // where the list of free blocks goes on
    g_pBlock = std::malloc(9000);
}

template <void (*pfnCrash)()>
unsigned OnWorker(void*)
{
    pfnCrash();
    return 0;
}

template <void (*pfnCrash)()>
void OnThread()
{
    const auto handle = _beginthreadex(nullptr, 0, OnWorker<pfnCrash>, nullptr, 0, nullptr);
    WaitForSingleObject(reinterpret_cast<HANDLE>(handle), INFINITE);
}

// In a process with more memory than a report takes in, in blocks that are smaller than the stack.
inline void Overflow()
{
    constexpr std::size_t nBlock = 4 << 20;
    for (int n = 0; n < 20; ++n) {
        void* const p = mmap(nullptr, nBlock, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (p != MAP_FAILED) mprotect(p, 4096, PROT_NONE); // so that they stay apart
    }
    CrashByOverflow();
}

inline void OverflowOnClientThread()
{
    std::thread([] {
        KXCrash::GuardThread();
        CrashByOverflow();
    }).join();
}

// It hasn't asked for anything, but has called the library.
inline void OverflowOnForeignThread()
{
    std::thread([] {
        CRITICAL_SECTION section;
        EnterCriticalSection(&section);
        LeaveCriticalSection(&section);
        CrashByOverflow();
    }).join();
}

// Crashes on as many threads at once as can be had.
inline void CrashTogether()
{
    static std::atomic<bool> bGo{false};
    std::array<std::jthread, 4> threads;
    for (std::jthread& thread : threads)
        thread = std::jthread([] {
            bGo.wait(false);
            CrashByRead();
        });
    bGo = true;
    bGo.notify_all();
}

struct Kind
{
    void (*pfnCrash)();
    int nSignal;
    const char* pszFunction; // in the stack
};

inline const std::map<std::string_view, Kind> kKinds{
    {"read", {CrashByRead, SIGSEGV, "CrashByRead"}},
    {"abort", {CrashByAbort, SIGABRT, "CrashByAbort"}},
    {"exception", {CrashByException, SIGABRT, "CrashByException"}},
    {"division", {CrashByDivision, SIGFPE, "CrashByDivision"}},
    {"trap", {CrashByTrap, SIGILL, "CrashByTrap"}},
    {"call", {CrashByCall, SIGSEGV, "CrashByCall"}},
    {"overflow", {Overflow, SIGSEGV, "CrashByOverflow"}},
    {"heap", {CrashByHeap, SIGSEGV, "CrashByHeap"}},
    {"thread", {OnThread<CrashByRead>, SIGSEGV, "CrashByRead"}},
    {"thread_overflow", {OnThread<Overflow>, SIGSEGV, "CrashByOverflow"}},
    {"client_overflow", {OverflowOnClientThread, SIGSEGV, "CrashByOverflow"}},
    {"foreign_overflow", {OverflowOnForeignThread, SIGSEGV, "CrashByOverflow"}},
    {"together", {CrashTogether, SIGSEGV, "CrashByRead"}},
};

#undef KX_CRASHES

} // namespace crashes
