#include "tools/KXCrashReport/Tracee.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <thread>

namespace kx::report {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t kMaxThreads = 512;

// Repeats a step every millisecond until it succeeds or two seconds have passed.
template <class Step>
bool Retry(Step&& step)
{
    const auto end = Clock::now() + std::chrono::seconds(2);
    while (!step()) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

std::vector<pid_t> ThreadsOf(pid_t pid)
{
    std::vector<pid_t> threads;
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc/" + std::to_string(pid) + "/task", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        threads.push_back(static_cast<pid_t>(std::atoi(entry->path().filename().c_str())));
    return threads;
}

} // namespace

Tracee::Tracee(pid_t pid, pid_t crashed) : m_pid(pid)
{
    if (!Retry([&] { return Seize(crashed) || errno != EPERM; }) || m_threads.empty()) return;
    // A thread that runs may start others until all stand still.
    for (bool bNew = true; bNew;) {
        bNew = false;
        for (const pid_t tid : ThreadsOf(pid))
            if (std::find(m_threads.begin(), m_threads.end(), tid) == m_threads.end() && Seize(tid))
                bNew = true;
        AwaitStops();
    }
    m_memory.Reset(open(ProcFile("mem").c_str(), O_RDWR | O_CLOEXEC));
    if (!m_memory) m_memory.Reset(open(ProcFile("mem").c_str(), O_RDONLY | O_CLOEXEC));
}

Tracee::~Tracee()
{
    for (std::size_t n = 0; n < m_threads.size(); ++n)
        ptrace(PTRACE_DETACH, m_threads[n], nullptr, static_cast<std::intptr_t>(m_signals[n]));
}

std::string Tracee::ProcFile(const char* pszName) const
{
    return "/proc/" + std::to_string(m_pid) + "/" + pszName;
}

bool Tracee::Seize(pid_t tid)
{
    if (m_threads.size() >= kMaxThreads || ptrace(PTRACE_SEIZE, tid, nullptr, nullptr) != 0) return false;
    ptrace(PTRACE_INTERRUPT, tid, nullptr, nullptr);
    m_threads.push_back(tid);
    return true;
}

// Waits for those seized since the last call. One that won't stop, in a call that can't be interrupted, is
// left out; one that stopped for a signal gets it when it goes on.
void Tracee::AwaitStops()
{
    for (std::size_t n = m_signals.size(); n < m_threads.size();) {
        int status = 0;
        pid_t stopped = 0;
        Retry([&] { return (stopped = waitpid(m_threads[n], &status, WNOHANG | __WALL)) != 0; });
        if (stopped <= 0 || !WIFSTOPPED(status)) {
            m_threads.erase(m_threads.begin() + static_cast<std::ptrdiff_t>(n));
            continue;
        }
        m_signals.push_back(status >> 16 == PTRACE_EVENT_STOP ? 0 : WSTOPSIG(status));
        ++n;
    }
}

std::size_t Tracee::Read(std::uint64_t address, void* pTarget, std::size_t size) const
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = pread(m_memory.Get(), static_cast<char*>(pTarget) + done, size - done,
                                  static_cast<off_t>(address + done));
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void Tracee::Write(std::uint64_t address, const void* pBytes, std::size_t size) const
{
    [[maybe_unused]] const ssize_t done = pwrite(m_memory.Get(), pBytes, size, static_cast<off_t>(address));
}

bool Tracee::ReadRegisters(pid_t tid, unsigned nType, void* pTarget, std::size_t size) const
{
    iovec target{pTarget, size};
    return ptrace(PTRACE_GETREGSET, tid, static_cast<std::uintptr_t>(nType), &target) == 0 &&
           target.iov_len == size;
}

} // namespace kx::report
