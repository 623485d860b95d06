#include "include/platform/Crash.h"
#include "platform/crash/HeapFree.h"
#include "platform/crash/Process.h"
#include "platform/sync/AlternateStack.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace kx::crash {

namespace {

constinit std::atomic<LPTOP_LEVEL_EXCEPTION_FILTER> g_pFilter{nullptr};
constinit sync::Mutex g_lock;                            // one thread at a time sets a filter
constinit bool g_bHandled KX_GUARDED_BY(g_lock) = false; // our handlers are in place

// A fork's child may end its parent's crash dumper.
[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Filter, []() -> sync::Mutex& { return g_lock; });

constexpr std::array kSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS};

std::array<struct sigaction, kSignals.size()> g_before;
pid_t g_handedOn = 0; // whose signal came again last; of the thread in the filter alone

struct sigaction Default() noexcept
{
    struct sigaction action
    {
    };
    action.sa_handler = SIG_DFL;
    return action;
}

struct sigaction Before(int nSignal) noexcept
{
    for (std::size_t n = 0; n < kSignals.size(); ++n)
        if (kSignals[n] == nSignal) return g_before[n];
    return Default();
}

bool IsDefault(const struct sigaction& action) noexcept
{
    return !(action.sa_flags & SA_SIGINFO) && action.sa_handler == SIG_DFL;
}

enum class Outcome
{
    End,      // the system's: the process ends
    AsBefore, // what handled the signal before
};

// From within the handler, as its last deed: once it has returned, its signal comes again, where and as it
// came before, and has this outcome. True if that ends the process for sure. Heap-free.
//
// The signal waits, blocked as it is here, and the thread's own mask, which comes back with the return, lets
// it through. So it strikes at the very instruction, with the stack and registers of the crash, and the
// parent and the system's own dump see the true cause.
bool Reraise(Outcome outcome, const siginfo_t& info, void* pUserContext) noexcept
{
    const int nSignal = info.si_signo;
    struct sigaction action = outcome == Outcome::End ? Default() : Before(nSignal);
    // The handler before ours may hand on to ours in turn: then the two would go on for ever.
    struct sigaction now = Default();
    sigaction(nSignal, nullptr, &now);
    if (now.sa_sigaction == action.sa_sigaction && g_handedOn == gettid()) action = Default();
    g_handedOn = gettid();
    sigaction(nSignal, &action, nullptr);
    sigdelset(&static_cast<ucontext_t*>(pUserContext)->uc_sigmask, nSignal);
    siginfo_t copy = info;
    if (syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), nSignal, &copy) != 0)
        syscall(SYS_tgkill, getpid(), gettid(), nSignal);
    return IsDefault(action);
}

struct CrashPlace
{
    std::uintptr_t instruction = 0;
    std::uintptr_t stack = 0;
    bool bWrite = false; // of a bad access, where the processor tells
};

CrashPlace ReadCrashPlace(const void* pUserContext) noexcept
{
    const mcontext_t& machine = static_cast<const ucontext_t*>(pUserContext)->uc_mcontext;
#if defined(__x86_64__)
    const auto at = [&](int nRegister) { return static_cast<std::uintptr_t>(machine.gregs[nRegister]); };
    return {at(REG_RIP), at(REG_RSP), (at(REG_ERR) & 2) != 0};
#elif defined(__aarch64__)
    return {machine.pc, machine.sp, false};
#else
    (void)machine;
    return {};
#endif
}

// A call or push that finds no room touches what lies just beside the stack's end.
bool IsBesideStack(std::uintptr_t address, std::uintptr_t stack) noexcept
{
    constexpr std::uintptr_t kNear = 64 * 1024;
    return stack != 0 && address + kNear > stack && address < stack + kNear;
}

DWORD ArithmeticCode(int nCode) noexcept
{
    switch (nCode) {
    case FPE_INTOVF:
        return EXCEPTION_INT_OVERFLOW;
    case FPE_FLTDIV:
        return EXCEPTION_FLT_DIVIDE_BY_ZERO;
    case FPE_FLTOVF:
    case FPE_FLTUND:
    case FPE_FLTRES:
    case FPE_FLTINV:
        return EXCEPTION_FLT_INVALID_OPERATION;
    default:
        return EXCEPTION_INT_DIVIDE_BY_ZERO;
    }
}

DWORD CodeOf(const siginfo_t& info, std::uintptr_t stack) noexcept
{
    const bool bKernel = info.si_code > 0; // a fault, no signal that somebody sent
    switch (info.si_signo) {
    case SIGSEGV:
        return bKernel && IsBesideStack(reinterpret_cast<std::uintptr_t>(info.si_addr), stack)
                   ? EXCEPTION_STACK_OVERFLOW
                   : EXCEPTION_ACCESS_VIOLATION;
    case SIGBUS:
        return info.si_code == BUS_ADRALN ? EXCEPTION_DATATYPE_MISALIGNMENT : EXCEPTION_IN_PAGE_ERROR;
    case SIGFPE:
        return ArithmeticCode(info.si_code);
    case SIGTRAP:
        return EXCEPTION_BREAKPOINT;
    case SIGABRT:
        return STATUS_FATAL_APP_EXIT;
    default:
        return EXCEPTION_ILLEGAL_INSTRUCTION;
    }
}

// The crash in the platform's terms.
EXCEPTION_RECORD Describe(const siginfo_t& info, const void* pUserContext) noexcept
{
    const CrashPlace place = ReadCrashPlace(pUserContext);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = CodeOf(info, place.stack);
    record.ExceptionFlags = info.si_signo == SIGABRT ? 1 : 0;
    record.ExceptionAddress = reinterpret_cast<void*>(place.instruction);
    if (info.si_code > 0 && (info.si_signo == SIGSEGV || info.si_signo == SIGBUS)) {
        record.NumberParameters = 2;
        record.ExceptionInformation[0] = place.bWrite ? 1 : 0;
        record.ExceptionInformation[1] = reinterpret_cast<std::uintptr_t>(info.si_addr);
    }
    return record;
}

long CallFilter(const siginfo_t& info, void* pUserContext) noexcept
{
    const LPTOP_LEVEL_EXCEPTION_FILTER pFilter = g_pFilter.load(std::memory_order_acquire);
    if (!pFilter) return EXCEPTION_CONTINUE_SEARCH;
    EXCEPTION_RECORD record = Describe(info, pUserContext);
    CONTEXT context{info.si_signo, static_cast<DWORD>(gettid()), &info, pUserContext};
    EXCEPTION_POINTERS pointers{&record, &context};
    return pFilter(&pointers);
}

// Keeps the filter to itself where the process ends for sure: no other thread gets into it any more.
void OnCrash(int, siginfo_t* pInfo, void* pUserContext)
{
    const int nErrno = errno;
    if (!EnterFilter()) {
        Reraise(Outcome::End, *pInfo, pUserContext);
        return;
    }
    const long nVerdict = CallFilter(*pInfo, pUserContext);
    const bool bResume = nVerdict == EXCEPTION_CONTINUE_EXECUTION;
    const Outcome outcome = nVerdict == EXCEPTION_EXECUTE_HANDLER ? Outcome::End : Outcome::AsBefore;
    if (bResume || !Reraise(outcome, *pInfo, pUserContext)) LeaveFilter();
    errno = nErrno;
}

// Handles the signals of a crash, all of them blocked meanwhile and on the thread's alternate stack.
void InstallHandlers() noexcept
{
    struct sigaction action
    {
    };
    action.sa_sigaction = OnCrash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const int nSignal : kSignals)
        sigaddset(&action.sa_mask, nSignal);
    // All that was before is known before the first of them can come.
    for (std::size_t n = 0; n < kSignals.size(); ++n)
        sigaction(kSignals[n], nullptr, &g_before[n]);
    for (const int nSignal : kSignals)
        sigaction(nSignal, &action, nullptr);
}

// They are handled as before; a handler that somebody else has set since stays.
void RemoveHandlers() noexcept
{
    for (std::size_t n = 0; n < kSignals.size(); ++n) {
        struct sigaction now;
        if (sigaction(kSignals[n], nullptr, &now) == 0 && (now.sa_flags & SA_SIGINFO) &&
            now.sa_sigaction == OnCrash)
            sigaction(kSignals[n], &g_before[n], nullptr);
    }
}

// All that needs the heap or a lock is done beforehand.
void Prepare() noexcept
{
    PrepareProcesses();
    PreparePaths();
    PrepareZone();
    PrepareDescriptor();
    HoldExits();
}

} // namespace

} // namespace kx::crash

LPTOP_LEVEL_EXCEPTION_FILTER SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER pFilter) noexcept
{
    using namespace kx::crash;
    if (InFilter()) return g_pFilter.exchange(pFilter);
    if (pFilter) {
        kx::sync::GuardCallers();
        kx::sync::GuardThread();
    }
    const kx::sync::MutexLock lock(g_lock);
    if (pFilter && !g_bHandled) Prepare();
    const LPTOP_LEVEL_EXCEPTION_FILTER pBefore = g_pFilter.exchange(pFilter);
    if (pFilter && !g_bHandled) InstallHandlers();
    if (!pFilter && g_bHandled) RemoveHandlers();
    g_bHandled = pFilter != nullptr;
    return pBefore;
}

bool KXCrash::GuardThread() noexcept
{
    return kx::sync::GuardThread();
}
