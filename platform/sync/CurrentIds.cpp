#include "include/platform/Sync.h"

#include <pthread.h>
#include <unistd.h>

namespace {

// The thread's number, 0 until it is asked for: the system's call costs fifty times the look at this.
[[gnu::tls_model("initial-exec")]] constinit thread_local DWORD t_id = 0;

// A forked child's thread has another number than the one that it was copied from.
[[maybe_unused]] const int g_atFork = pthread_atfork(nullptr, nullptr, [] { t_id = 0; });

} // namespace

DWORD GetCurrentThreadId() noexcept
{
    if (t_id == 0) t_id = static_cast<DWORD>(gettid());
    return t_id;
}

DWORD GetCurrentProcessId() noexcept
{
    return static_cast<DWORD>(getpid());
}
