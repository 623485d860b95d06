#include "platform/crash/SignalHandlers.h"

#include <array>
#include <cstddef>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace kx::crash {

namespace {

constexpr std::array kSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS};

std::array<struct sigaction, kSignals.size()> g_before;
SignalHandler g_pfnHandler = nullptr;
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

} // namespace

void InstallHandlers(SignalHandler pfnHandler) noexcept
{
    struct sigaction action
    {
    };
    action.sa_sigaction = pfnHandler;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const int nSignal : kSignals)
        sigaddset(&action.sa_mask, nSignal);
    g_pfnHandler = pfnHandler;
    // All that was before is known before the first of them can come.
    for (std::size_t n = 0; n < kSignals.size(); ++n)
        sigaction(kSignals[n], nullptr, &g_before[n]);
    for (const int nSignal : kSignals)
        sigaction(nSignal, &action, nullptr);
}

// A handler that somebody else has set since stays.
void RemoveHandlers() noexcept
{
    for (std::size_t n = 0; n < kSignals.size(); ++n) {
        struct sigaction now;
        if (sigaction(kSignals[n], nullptr, &now) == 0 && (now.sa_flags & SA_SIGINFO) &&
            now.sa_sigaction == g_pfnHandler)
            sigaction(kSignals[n], &g_before[n], nullptr);
    }
}

// The signal waits, blocked as it is here, and the thread's own mask, which comes back with the return, lets
// it through. So it strikes at the very instruction, with the stack and registers of the crash, and the
// parent and the system's own dump see the true cause.
bool ComeAgain(Course course, const siginfo_t& info, void* pUserContext) noexcept
{
    const int nSignal = info.si_signo;
    struct sigaction action = course == Course::End ? Default() : Before(nSignal);
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

} // namespace kx::crash
