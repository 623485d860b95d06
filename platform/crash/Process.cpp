#include "platform/crash/Process.h"

#include "include/platform/Crash.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/UniqueFd.h"
#include "platform/crash/HeapFree.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <array>
#include <new>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <vector>

namespace kx::crash {

namespace {

// A process that is taken from it stays in the handle table's reserve, so that closing a handle in the filter
// frees nothing.
struct Reserve
{
    std::array<std::shared_ptr<Process>, kReservedHandles> processes;
    std::size_t next = 0; // the thread in the filter's own
};

// Children whose handle was closed before they ended.
struct Orphans
{
    sync::Mutex lock;
    std::vector<pid_t> pids KX_GUARDED_BY(lock);
};

void AddOrphan(pid_t pid) noexcept
{
    Orphans& orphans = The<Orphans>();
    const sync::MutexLock lock(orphans.lock);
    try {
        orphans.pids.push_back(pid);
    } catch (const std::bad_alloc&) { // it stays until this process ends
    }
}

DWORD CodeOf(const siginfo_t& info) noexcept
{
    return static_cast<DWORD>(info.si_code == CLD_EXITED ? info.si_status : 128 + info.si_status);
}

} // namespace

Process::~Process()
{
    if (!TryTake()) AddOrphan(m_pid);
}

DWORD Process::ExitCode() noexcept
{
    if (!TryTake()) return STILL_ACTIVE;
    const sync::MutexLock lock(m_lock);
    return m_dwCode;
}

// A process that somebody else has collected, as by ignoring SIGCHLD, has ended too, with a code that is
// lost.
bool Process::TryTake() noexcept
{
    const sync::MutexLock lock(m_lock);
    if (m_pid == 0) return true;
    siginfo_t info{};
    const auto id = static_cast<id_t>(m_pid);
    const int nResult = RetryEintr([&] { return waitid(P_PID, id, &info, WEXITED | WNOHANG); });
    if (nResult == 0 && info.si_pid == 0) return false;
    if (nResult == 0) m_dwCode = CodeOf(info);
    m_pid = 0;
    return true;
}

bool Process::WaitUntil(time::Moment deadline) noexcept
{
    using std::chrono::ceil;
    using std::chrono::milliseconds;
    m_lock.lock();
    const pid_t pid = m_pid;
    m_lock.unlock();
    if (deadline == time::kNever && pid != 0) {
        siginfo_t info{};
        RetryEintr([&] { return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT); });
        return TryTake();
    }
    // A clock that the host moves doesn't wake who polls, who therefore looks at it again and again.
    const milliseconds slice(time::IsVirtual() ? 5 : 1000);
    const UniqueFd fd(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    while (!TryTake()) {
        const auto left = ceil<milliseconds>(deadline - time::Now());
        if (left.count() <= 0) return false;
        pollfd watch{fd.Get(), POLLIN, 0};
        poll(&watch, 1, static_cast<int>(std::min(left, fd ? slice : milliseconds(5)).count()));
    }
    return true;
}

void PrepareProcesses() noexcept
{
    auto& processes = The<Reserve>().processes;
    for (std::size_t place = 0; place < processes.size(); ++place) {
        if (processes[place]) continue;
        try {
            processes[place] = std::make_shared<Process>();
            ReserveHandle<threads::Waitable>(place, processes[place]);
        } catch (const std::bad_alloc&) {
        }
    }
}

void CollectOrphans() noexcept
{
    Orphans& orphans = The<Orphans>();
    const sync::MutexLock lock(orphans.lock);
    std::erase_if(orphans.pids, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

NewProcess MakeProcess() noexcept
{
    Reserve& reserve = The<Reserve>();
    if (InFilter()) {
        const std::size_t place = reserve.next;
        if (place == reserve.processes.size() || !reserve.processes[place]) return {};
        ++reserve.next;
        return {reserve.processes[place], OpenReservedHandle(place)};
    }
    try {
        NewProcess made{std::make_shared<Process>(), nullptr};
        made.handle = AddHandle<threads::Waitable>(made.process);
        return made.handle ? made : NewProcess{};
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace kx::crash

int GetExitCodeProcess(HANDLE hProcess, DWORD* pdwExitCode) noexcept
{
    const auto process = kx::threads::Waitable::FindAs<kx::crash::Process>(hProcess);
    if (!process) return 0;
    if (!pdwExitCode) return kx::Fail(ERROR_INVALID_PARAMETER);
    *pdwExitCode = process->ExitCode();
    return 1;
}
