#include "platform/window/x11/EventThread.h"

#include "platform/sync/AlternateStack.h"
#include "platform/window/Chores.h"
#include "platform/window/x11/Events.h"

#include <csignal>
#include <initializer_list>

namespace kx::window::x11 {

namespace {

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

void Serve(const std::shared_ptr<Session>& session)
{
    const sync::AlternateStack alternate;
    Events(session).Run();
    if (session->leaving) return;
    for (const HWND hWnd : Access(session)->own.Handles())
        PostChore(hWnd, Chore::Destroy);
}

} // namespace

std::thread StartEvents(std::shared_ptr<Session> session)
{
    const NoSignals blocked;
    return std::thread(Serve, std::move(session));
}

} // namespace kx::window::x11
