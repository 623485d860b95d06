#include "include/platform/Crash.h"
#include "platform/Errno.h"
#include "platform/crash/HeapFree.h"
#include "platform/crash/Process.h"

#include <array>
#include <csignal>
#include <cstring>
#include <spawn.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace kx::crash {

namespace {

constexpr std::size_t kMaxText = 32'767;

// The state that a program is started with: no signal blocked or ignored, and only the standard files open.
// Made at load, since it allocates.
class Start
{
public:
    Start() noexcept
    {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        m_bReady =
            posix_spawnattr_init(&m_attributes) == 0 &&
            posix_spawnattr_setsigmask(&m_attributes, &none) == 0 &&
            posix_spawnattr_setsigdefault(&m_attributes, &all) == 0 &&
            posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF) == 0 &&
            posix_spawn_file_actions_init(&m_actions) == 0 &&
            posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1) == 0;
    }

    // 0 or an error's number. The system runs the program in place of a copy of this process that shares its
    // memory until then: no handlers of pthread_atfork, no heap, no lock.
    int Spawn(const char* pszProgram, char* const* argv, bool bInherit, pid_t& pid) const noexcept
    {
        if (!m_bReady) return ENOMEM;
        return posix_spawn(&pid, pszProgram, bInherit ? nullptr : &m_actions, &m_attributes, argv, environ);
    }

private:
    posix_spawnattr_t m_attributes;
    posix_spawn_file_actions_t m_actions;
    bool m_bReady = false;
};

const Start g_start;

// An argument text cut at its blanks for as long as the object lives. What is behind the last that there is
// room for stays in one piece.
class Arguments
{
public:
    Arguments(char* pszProgram, char* pszText) noexcept
    {
        m_argv[m_count++] = pszProgram;
        char* next = pszText && *pszText ? pszText : nullptr;
        while (next) {
            m_argv[m_count++] = next;
            next = m_count + 1 < m_argv.size() ? std::strchr(next, ' ') : nullptr;
            if (next) *next++ = '\0';
        }
        m_argv[m_count] = nullptr;
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments()
    {
        for (std::size_t n = 2; n < m_count; ++n)
            m_argv[n][-1] = ' ';
    }

    char* const* Get() const noexcept { return m_argv.data(); }

private:
    std::array<char*, 2048> m_argv;
    std::size_t m_count = 0;
};

} // namespace

} // namespace kx::crash

int CreateProcessA(const char* pszProgram, char* pszArguments, void*, void*, int bInheritHandles, DWORD,
                   void* pEnvironment, const char* pszDirectory, STARTUPINFOA*,
                   PROCESS_INFORMATION* pInformation) noexcept
{
    using namespace kx::crash;
    if (!pInformation) return kx::Fail(ERROR_INVALID_PARAMETER);
    *pInformation = {};
    const bool bLong = pszArguments && strnlen(pszArguments, kMaxText + 1) > kMaxText;
    if (bLong || pEnvironment || pszDirectory) return kx::Fail(ERROR_INVALID_PARAMETER);
    PathText program;
    if (!ToSystem(pszProgram, program)) return 0;
    if (!InFilter()) CollectOrphans();
    const auto [process, handle] = MakeProcess();
    if (!process) return kx::Fail(ERROR_NOT_ENOUGH_MEMORY);

    const Arguments arguments(program.Data(), pszArguments);
    pid_t pid = 0;
    const int nError = g_start.Spawn(program.Data(), arguments.Get(), bInheritHandles != 0, pid);
    if (nError != 0) {
        kx::RemoveHandle<kx::threads::Waitable>(handle);
        return kx::Fail(kx::ErrorFromErrno(nError));
    }
    if (InFilter()) prctl(PR_SET_PTRACER, static_cast<unsigned long>(pid), 0, 0, 0);
    process->SetPid(pid);
    *pInformation = {handle, nullptr, static_cast<DWORD>(pid), static_cast<DWORD>(pid)};
    return 1;
}
