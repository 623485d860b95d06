#pragma once

#include "platform/UniqueFd.h"

#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <sys/user.h>
#include <type_traits>
#include <vector>

namespace kx::report {

// A process whose threads stand still for as long as the object lives.
class Tracee
{
public:
    // Stops it, the thread that crashed first. The process allows this shortly after it has started us, so
    // where it is refused it is asked again for two seconds.
    Tracee(pid_t pid, pid_t crashed);
    Tracee(const Tracee&) = delete;
    Tracee& operator=(const Tracee&) = delete;
    ~Tracee();

    pid_t Pid() const { return m_pid; }
    std::string ProcFile(const char* pszName) const;
    // The threads that were stopped: none where that wasn't allowed. At most 512.
    const std::vector<pid_t>& Threads() const { return m_threads; }

    // Reads memory; how many bytes of the beginning could be read.
    std::size_t Read(std::uint64_t address, void* pTarget, std::size_t size) const;
    template <class T>
    std::optional<T> Read(std::uint64_t address) const
    {
        static_assert(std::is_trivially_copyable_v<T>);
        T value;
        if (Read(address, &value, sizeof(value)) != sizeof(value)) return std::nullopt;
        return value;
    }

    // Changes memory, where the system allows it.
    void Write(std::uint64_t address, const void* pBytes, std::size_t size) const;

    // A set of a thread's registers by its note type (NT_PRSTATUS, NT_PRFPREG); false where it can't be read.
    bool ReadRegisters(pid_t tid, unsigned nType, void* pTarget, std::size_t size) const;

private:
    bool Seize(pid_t tid);
    void AwaitStops();

    const pid_t m_pid;
    UniqueFd m_memory;
    std::vector<pid_t> m_threads;
    std::vector<int> m_signals; // for each thread what was about to be delivered to it; 0 for none
};

} // namespace kx::report
