#include "include/platform/Sync.h"

#include "include/platform/Error.h"
#include "platform/Errno.h"
#include "platform/sync/AlternateStack.h"
#include "platform/sync/Mutex.h"
#include "platform/threads/Signal.h"
#include "platform/threads/Waitable.h"

#include <algorithm>
#include <pthread.h>
#include <unistd.h>

namespace {

using kx::sync::Mutex;
using kx::sync::MutexLock;
using kx::sync::Word;
using kx::threads::Signal;
using kx::threads::Waitable;
using StartRoutine = unsigned (*)(void*);

// The thread's number, 0 until it is asked for: the system's call costs fifty times the look at this.
[[gnu::tls_model("initial-exec")]] constinit thread_local DWORD t_id = 0;

// A forked child's thread has another number than the one that it was copied from.
[[maybe_unused]] const int g_atFork = pthread_atfork(nullptr, nullptr, [] { t_id = 0; });

class Thread final : public Waitable, public std::enable_shared_from_this<Thread>
{
public:
    Thread(StartRoutine pfnStart, void* pArg) noexcept
        : Waitable(Kind::Thread), m_pfnStart(pfnStart), m_pArg(pArg)
    {
    }
    ~Thread() override
    {
        if (m_bStarted && !m_bJoined) pthread_detach(m_thread);
    }

    bool Start(std::size_t nStackSize);
    // The system's number of the thread, which it tells itself.
    DWORD WaitForId() const noexcept;

    bool TryTake() override { return m_ended.TryTake() && Join(); }
    bool WaitUntil(kx::time::Moment deadline) override { return m_ended.WaitUntil(deadline) && Join(); }

private:
    // A key's destructor runs behind those of the thread's thread-local objects; unlike one of those, setting
    // a key's value takes no memory.
    class EndKey
    {
    public:
        EndKey() noexcept : m_bMade(pthread_key_create(&m_key, End) == 0) {}
        bool Set(Thread* thread) const noexcept { return m_bMade && pthread_setspecific(m_key, thread) == 0; }

    private:
        pthread_key_t m_key{};
        bool m_bMade;
    };

    static void End(void* pThread);
    static void* Main(void* pThread);
    bool Join();

    const StartRoutine m_pfnStart;
    void* const m_pArg;
    std::shared_ptr<Thread> m_running; // the object itself while the thread runs
    pthread_t m_thread{};
    bool m_bStarted = false;
    Word m_id{0};
    Signal m_ended{Signal::Reset::Manual, false};
    Mutex m_joining;
    bool m_bJoined KX_GUARDED_BY(m_joining) = false;
};

bool Thread::Start(std::size_t nStackSize)
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    std::size_t nDefault = 0;
    pthread_attr_getstacksize(&attributes, &nDefault);
    pthread_attr_setstacksize(&attributes, std::max(nStackSize, nDefault));
    m_running = shared_from_this();
    m_bStarted = pthread_create(&m_thread, &attributes, Main, this) == 0;
    pthread_attr_destroy(&attributes);
    if (!m_bStarted) m_running.reset();
    return m_bStarted;
}

void Thread::End(void* pThread)
{
    const auto thread = std::move(static_cast<Thread*>(pThread)->m_running);
    thread->m_ended.Set();
}

void* Thread::Main(void* pThread)
{
    auto* self = static_cast<Thread*>(pThread);
    static const EndKey key;
    const bool bKeySet = key.Set(self);
    self->m_id.store(GetCurrentThreadId(), std::memory_order_release);
    kx::sync::FutexWake(self->m_id);
    const kx::sync::AlternateStack alternate;
    self->m_pfnStart(self->m_pArg);
    if (!bKeySet) End(self);
    return nullptr;
}

DWORD Thread::WaitForId() const noexcept
{
    DWORD id;
    while ((id = m_id.load(std::memory_order_acquire)) == 0)
        kx::sync::FutexWait(m_id, 0);
    return id;
}

// The thread has said that it ends; this waits for its last few instructions, so that who waited for it may
// unload what it ran in.
bool Thread::Join()
{
    const MutexLock lock(m_joining);
    if (!m_bJoined) pthread_join(m_thread, nullptr);
    m_bJoined = true;
    return true;
}

} // namespace

std::uintptr_t _beginthreadex(void*, unsigned nStackSize, unsigned (*pfnStart)(void*), void* pArg, unsigned,
                              unsigned* pThreadId)
try {
    if (!pfnStart) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto thread = std::make_shared<Thread>(pfnStart, pArg);
    const HANDLE handle = kx::AddHandle<Waitable>(thread);
    if (!handle) return 0;
    if (!thread->Start(nStackSize)) {
        kx::RemoveHandle<Waitable>(handle);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    if (pThreadId) *pThreadId = thread->WaitForId();
    return reinterpret_cast<std::uintptr_t>(handle);
} catch (...) {
    return kx::NoMemory();
}

DWORD GetCurrentThreadId() noexcept
{
    if (t_id == 0) t_id = static_cast<DWORD>(gettid());
    return t_id;
}

DWORD GetCurrentProcessId() noexcept
{
    return static_cast<DWORD>(getpid());
}
