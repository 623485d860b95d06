#pragma once

#include <csignal>
#include <ctime>

namespace kx {

// Keeps SIGPIPE from the thread for a scope: a peer that hung up must not end the process, and what the
// process does with the signal is its own business. A TLS library writes to sockets without asking for that.
class NoPipeSignal
{
public:
    NoPipeSignal() noexcept
    {
        sigset_t pending;
        sigpending(&pending);
        m_bPending = sigismember(&pending, SIGPIPE) == 1;
        const sigset_t pipe = Pipe();
        pthread_sigmask(SIG_BLOCK, &pipe, &m_old);
    }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;
    ~NoPipeSignal()
    {
        const sigset_t pipe = Pipe();
        const timespec atOnce{};
        if (!m_bPending) sigtimedwait(&pipe, nullptr, &atOnce); // takes one that came meanwhile
        pthread_sigmask(SIG_SETMASK, &m_old, nullptr);
    }

private:
    static sigset_t Pipe() noexcept
    {
        sigset_t set;
        sigemptyset(&set);
        sigaddset(&set, SIGPIPE);
        return set;
    }

    sigset_t m_old;
    bool m_bPending;
};

} // namespace kx
