#pragma once

#include <csignal>
#include <initializer_list>

namespace kx::window::x11 {

// Keeps the process's signals, but for those of a thread's own faults, from a thread that is started within
// the scope: their handlers run where the program expects them.
class NoSignals
{
public:
    NoSignals() noexcept
    {
        sigset_t set;
        sigfillset(&set);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
            sigdelset(&set, fault);
        pthread_sigmask(SIG_BLOCK, &set, &m_old);
    }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &m_old, nullptr); }

private:
    sigset_t m_old;
};

} // namespace kx::window::x11
