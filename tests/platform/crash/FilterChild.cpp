#include "include/platform/Host.h"
#include "tests/support/CrashKinds.h"

#include <ctime>

// FilterChild CASE: sets a filter of its own, crashes, and tells by its end what came of it.

namespace {

constexpr int kCame = 42; // the exit code of "all went as it should"

volatile char* g_pPage = nullptr;
_EXCEPTION_POINTERS g_seen{};

// ---- What a filter returns

long End(_EXCEPTION_POINTERS*)
{
    return EXCEPTION_EXECUTE_HANDLER;
}

long PassOn(_EXCEPTION_POINTERS*)
{
    return EXCEPTION_CONTINUE_SEARCH;
}

long Repair(_EXCEPTION_POINTERS* pPointers)
{
    g_seen = *pPointers;
    const auto address = pPointers->ExceptionRecord->ExceptionInformation[1];
    mprotect(reinterpret_cast<void*>(address), 4096, PROT_READ | PROT_WRITE);
    return EXCEPTION_CONTINUE_EXECUTION;
}

void WriteToPage(LPTOP_LEVEL_EXCEPTION_FILTER pFilter)
{
    void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    g_pPage = static_cast<volatile char*>(page);
    SetUnhandledExceptionFilter(pFilter);
    *g_pPage = 1;
}

void Resumes()
{
    WriteToPage(Repair);
    mprotect(const_cast<char*>(g_pPage), 4096, PROT_NONE);
    *g_pPage = 1; // the hook is still there
    std::_Exit(*g_pPage == 1 ? kCame : 1);
}

void FallsToTheHandlerBefore()
{
    struct sigaction action
    {
    };
    action.sa_sigaction = [](int, siginfo_t* pInfo, void*) {
        std::_Exit(pInfo->si_addr == g_pPage && pInfo->si_code == SEGV_ACCERR ? kCame : 1);
    };
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, nullptr);
    WriteToPage(PassOn);
}

// A handler that was set over ours, hands on to what it replaced, and is there still when ours is set again.
void FallsThroughOneThatHandsOn()
{
    static struct sigaction before;
    SetUnhandledExceptionFilter(PassOn);
    struct sigaction action
    {
    };
    action.sa_sigaction = [](int nSignal, siginfo_t* pInfo, void* pContext) {
        before.sa_sigaction(nSignal, pInfo, pContext);
    };
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &before);
    SetUnhandledExceptionFilter(nullptr);
    WriteToPage(PassOn);
}

// ---- What it is told

long Check(_EXCEPTION_POINTERS* pPointers)
{
    const EXCEPTION_RECORD& record = *pPointers->ExceptionRecord;
    const CONTEXT& context = *pPointers->ContextRecord;
    const auto* pInfo = static_cast<const siginfo_t*>(context.pSignalInfo);
    const bool bGood = record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters == 2 &&
                       record.ExceptionInformation[0] == 1 &&
                       reinterpret_cast<volatile char*>(record.ExceptionInformation[1]) == g_pPage &&
                       context.nSignal == SIGSEGV && pInfo->si_addr == g_pPage &&
                       context.dwThreadId == GetCurrentThreadId() && record.ExceptionAddress != nullptr;
    std::_Exit(bGood ? kCame : 1);
}

// The name of a crash's kind.
template <DWORD dwCode>
long Expect(_EXCEPTION_POINTERS* pPointers)
{
    std::_Exit(pPointers->ExceptionRecord->ExceptionCode == dwCode ? kCame : 1);
}

template <DWORD dwCode>
void CrashAs(const char* pszKind)
{
    SetUnhandledExceptionFilter(Expect<dwCode>);
    crashes::kKinds.at(pszKind).pfnCrash();
}

// ---- What goes wrong

long CrashAgain(_EXCEPTION_POINTERS*)
{
    crashes::CrashByDivision();
    return EXCEPTION_EXECUTE_HANDLER;
}

long AbortAgain(_EXCEPTION_POINTERS*)
{
    std::abort();
}

long ThrowFromFilter(_EXCEPTION_POINTERS*)
{
    throw 1;
}

void CrashWith(LPTOP_LEVEL_EXCEPTION_FILTER pFilter, void (*pfnCrash)())
{
    SetUnhandledExceptionFilter(pFilter);
    pfnCrash();
}

void RemovesItself()
{
    SetUnhandledExceptionFilter(Expect<0>);
    SetUnhandledExceptionFilter(nullptr);
    crashes::CrashByAbort();
}

// ---- Heap-free calls

// A zone's local time in the filter is what the system says, around its changes too.
long CompareTimes(_EXCEPTION_POINTERS*)
{
    constexpr std::time_t kFrom = 946'684'800; // 2000-01-01
    for (std::time_t time = kFrom; time < kFrom + 30LL * 365 * 86'400; time += 1'800 * 7) {
        KXHost::UseVirtualClock(time);
        std::tm mine{};
        std::tm theirs{};
        localtime_r(&time, &theirs);
        if (!KXCrash::GetLocalTime(&mine) || mine.tm_year != theirs.tm_year ||
            mine.tm_yday != theirs.tm_yday || mine.tm_mon != theirs.tm_mon ||
            mine.tm_mday != theirs.tm_mday || mine.tm_wday != theirs.tm_wday ||
            mine.tm_hour != theirs.tm_hour || mine.tm_min != theirs.tm_min || mine.tm_sec != theirs.tm_sec)
            std::_Exit(1);
    }
    std::_Exit(kCame);
}

// Four processes may be started in a filter; more are refused.
long StartProcesses(_EXCEPTION_POINTERS*)
{
    for (DWORD n = 0; n < 5; ++n) {
        PROCESS_INFORMATION information{};
        char szText[] = "-c exit\t7";
        DWORD dwCode = 0;
        const int bStarted = CreateProcessA("C:\\bin\\sh", szText, nullptr, nullptr, 0, 0, nullptr, nullptr,
                                            nullptr, &information);
        if ((bStarted != 0) != (n < 4)) std::_Exit(1);
        if (!bStarted) continue;
        WaitForSingleObject(information.hProcess, INFINITE);
        if (!GetExitCodeProcess(information.hProcess, &dwCode) || dwCode != 7) std::_Exit(2);
        CloseHandle(information.hProcess);
    }
    std::_Exit(kCame);
}

const std::map<std::string, void (*)()> kCases{
    {"end", [] { CrashWith(End, crashes::CrashByDivision); }},
    {"sent",
     [] {
         CrashWith(End, [] {
             kill(getpid(), SIGILL);
             pause();
         });
     }},
    {"pass_on", [] { CrashWith(PassOn, crashes::CrashByAbort); }},
    {"resumes", Resumes},
    {"handler_before", FallsToTheHandlerBefore},
    {"hands_on", FallsThroughOneThatHandsOn},
    {"record", [] { WriteToPage(Check); }},
    {"code_abort", [] { CrashAs<STATUS_FATAL_APP_EXIT>("abort"); }},
    {"code_division", [] { CrashAs<EXCEPTION_INT_DIVIDE_BY_ZERO>("division"); }},
    {"code_trap", [] { CrashAs<EXCEPTION_ILLEGAL_INSTRUCTION>("trap"); }},
    {"code_overflow", [] { CrashAs<EXCEPTION_STACK_OVERFLOW>("overflow"); }},
    {"code_thread_overflow", [] { CrashAs<EXCEPTION_STACK_OVERFLOW>("thread_overflow"); }},
    {"crash_again", [] { CrashWith(CrashAgain, crashes::CrashByRead); }},
    {"crash_again_same", [] { CrashWith(CrashAgain, crashes::CrashByDivision); }},
    {"abort_again", [] { CrashWith(AbortAgain, crashes::CrashByRead); }},
    {"throw", [] { CrashWith(ThrowFromFilter, crashes::CrashByRead); }},
    {"removed", RemovesItself},
    {"times", [] { CrashWith(CompareTimes, crashes::CrashByAbort); }},
    {"processes", [] { CrashWith(StartProcesses, crashes::CrashByAbort); }},
};

} // namespace

int main(int, char** args)
{
    kCases.at(args[1])();
    return 0;
}
