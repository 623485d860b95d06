#include "include/platform/Sync.h"

#include "platform/Errno.h"
#include "platform/sync/AlternateStack.h"
#include "platform/sync/Signal.h"
#include "platform/sync/Waitable.h"

#include <algorithm>
#include <mutex>
#include <pthread.h>

namespace {

using kx::sync::Signal;
using kx::sync::Waitable;
using kx::sync::Word;
using Entry = unsigned (*)(void*);

class Thread final : public Waitable
{
public:
    Thread(Entry pfnStart, void* pArg) noexcept : Waitable(Kind::Thread), m_pfnStart(pfnStart), m_pArg(pArg)
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
    bool WaitUntil(kx::clock::Moment deadline) override { return m_ended.WaitUntil(deadline) && Join(); }

private:
    // The first thread-local object of a thread, thus the last to go.
    struct Running
    {
        std::shared_ptr<Thread> thread;
        Running() = default;
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running()
        {
            if (thread) thread->m_ended.Set();
        }
    };

    static void* Main(void* pThread);
    bool Join();

    const Entry m_pfnStart;
    void* const m_pArg;
    std::shared_ptr<Thread> m_running; // what the thread takes over when it starts
    pthread_t m_thread{};
    bool m_bStarted = false;
    Word m_id{0};
    Signal m_ended{Signal::Reset::Manual, false};
    std::mutex m_joining;
    bool m_bJoined = false; // guarded by m_joining
};

bool Thread::Start(std::size_t nStackSize)
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    std::size_t nDefault = 0;
    pthread_attr_getstacksize(&attributes, &nDefault);
    pthread_attr_setstacksize(&attributes, std::max(nStackSize, nDefault));
    m_running = std::static_pointer_cast<Thread>(shared_from_this());
    m_bStarted = pthread_create(&m_thread, &attributes, Main, this) == 0;
    pthread_attr_destroy(&attributes);
    if (!m_bStarted) m_running.reset();
    return m_bStarted;
}

void* Thread::Main(void* pThread)
{
    auto* self = static_cast<Thread*>(pThread);
    thread_local Running running;
    running.thread = std::move(self->m_running);
    self->m_id.store(GetCurrentThreadId(), std::memory_order_release);
    kx::sync::FutexWake(self->m_id);
    const kx::sync::AlternateStack alternate;
    self->m_pfnStart(self->m_pArg);
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
    std::lock_guard lock(m_joining);
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
    if (!thread->Start(nStackSize)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    if (pThreadId) *pThreadId = thread->WaitForId();
    return reinterpret_cast<std::uintptr_t>(thread->Open());
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}
