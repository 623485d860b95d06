#pragma once

#include "platform/sync/Waitable.h"

#include <mutex>
#include <sys/types.h>

namespace kx::crash {

// A child process, signalled when it has ended.
class Process final : public sync::Waitable
{
public:
    Process() noexcept : Waitable(Kind::Process) {}
    ~Process() override;

    // The process of a handle; null, with the last error set, for the handle of anything else.
    static Process* Of(HANDLE handle) noexcept;

    void SetPid(pid_t pid) noexcept { m_pid = pid; }
    // STILL_ACTIVE until it has ended.
    DWORD ExitCode() noexcept;

    bool TryTake() noexcept override;
    bool WaitUntil(clock::Moment deadline) noexcept override;

private:
    std::mutex m_lock; // so that one thread collects the code and all learn it
    pid_t m_pid = 0;   // 0 once it has been collected; changes under m_lock
    DWORD m_dwCode = 0;
};

// Sets objects aside for a crash filter, which can't allocate. By one thread at a time.
void PrepareProcesses() noexcept;

// A process object without a handle: one of those in a filter, a new one elsewhere; null for lack of them.
std::shared_ptr<Process> NewProcess() noexcept;

} // namespace kx::crash
