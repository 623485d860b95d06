#pragma once

#include "platform/sync/Mutex.h"
#include "platform/threads/Waitable.h"

#include <sys/types.h>

namespace kx::crash {

// A child process, signalled when it has ended.
class Process final : public threads::Waitable
{
public:
    static constexpr Kind KIND = Kind::Process;

    Process() noexcept : Waitable(KIND) {}
    ~Process() override;

    // Once, before others know of the object.
    void SetPid(pid_t pid) noexcept
    {
        const sync::MutexLock lock(m_lock);
        m_pid = pid;
    }
    // STILL_ACTIVE until it has ended.
    DWORD ExitCode() noexcept;

    bool TryTake() noexcept override;
    bool WaitUntil(time::Moment deadline) noexcept override;

private:
    sync::Mutex m_lock;                    // so that one thread collects the code and all learn it
    pid_t m_pid KX_GUARDED_BY(m_lock) = 0; // 0 once it has been collected
    DWORD m_dwCode KX_GUARDED_BY(m_lock) = 0;
};

// Collects the children that have ended since their handle was closed: the system keeps what is left of each
// until then. Not in a filter.
void CollectOrphans() noexcept;

// Sets processes with their handles aside for a crash filter, which can't allocate. By one thread at a time.
void PrepareProcesses() noexcept;

// A process's object, whose handle is still to be had: one of those set aside in a filter, a new one
// elsewhere. Empty for lack of them.
struct NewProcess
{
    std::shared_ptr<Process> process;
    HANDLE handle = nullptr;
};
NewProcess MakeProcess() noexcept;

} // namespace kx::crash
