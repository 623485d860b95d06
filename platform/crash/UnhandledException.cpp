#include "include/platform/Crash.h"
#include "platform/crash/ExceptionRecord.h"
#include "platform/crash/Filtering.h"
#include "platform/crash/Process.h"
#include "platform/crash/SignalHandlers.h"
#include "platform/crash/SystemPath.h"
#include "platform/crash/ZoneTable.h"
#include "platform/sync/AlternateStack.h"

#include <atomic>
#include <cerrno>
#include <mutex>
#include <unistd.h>

namespace kx::crash {

namespace {

constinit std::atomic<LPTOP_LEVEL_EXCEPTION_FILTER> g_pFilter{nullptr};
constinit std::mutex g_lock;       // one thread at a time sets a filter
constinit bool g_bHandled = false; // our handlers are in place; guarded by g_lock

long CallFilter(const siginfo_t& info, void* pUserContext) noexcept
{
    const LPTOP_LEVEL_EXCEPTION_FILTER pFilter = g_pFilter.load(std::memory_order_acquire);
    if (!pFilter) return EXCEPTION_CONTINUE_SEARCH;
    EXCEPTION_RECORD record = Describe(info, pUserContext);
    CONTEXT context{info.si_signo, static_cast<DWORD>(gettid()), &info, pUserContext};
    EXCEPTION_POINTERS pointers{&record, &context};
    return pFilter(&pointers);
}

// Where the process ends for sure nobody else gets into the filter any more.
void OnCrash(int, siginfo_t* pInfo, void* pUserContext)
{
    const int nErrno = errno;
    if (!EnterFilter()) {
        ComeAgain(Course::End, *pInfo, pUserContext);
        return;
    }
    const long nVerdict = CallFilter(*pInfo, pUserContext);
    const bool bResume = nVerdict == EXCEPTION_CONTINUE_EXECUTION;
    const Course course = nVerdict == EXCEPTION_EXECUTE_HANDLER ? Course::End : Course::AsBefore;
    if (bResume || !ComeAgain(course, *pInfo, pUserContext)) LeaveFilter();
    errno = nErrno;
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
    const std::lock_guard lock(g_lock);
    if (pFilter && !g_bHandled) Prepare();
    const LPTOP_LEVEL_EXCEPTION_FILTER pBefore = g_pFilter.exchange(pFilter);
    if (pFilter && !g_bHandled) InstallHandlers(OnCrash);
    if (!pFilter && g_bHandled) RemoveHandlers();
    g_bHandled = pFilter != nullptr;
    return pBefore;
}

bool KXCrash::GuardThread() noexcept
{
    return kx::sync::GuardThread();
}
