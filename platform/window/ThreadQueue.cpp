#include "platform/window/Queue.h"

#include "include/platform/Sync.h"
#include "platform/sync/PerThread.h"
#include "platform/window/WindowState.h"
#include "platform/window/WindowTable.h"

namespace kx::window {

namespace {

// Plain values, which can still be asked when the thread's objects are gone.
[[gnu::tls_model("initial-exec")]] constinit thread_local const Queue* t_queue = nullptr;
[[gnu::tls_model("initial-exec")]] constinit thread_local bool t_over = false;

class Holder
{
public:
    Holder() : m_queue(std::make_shared<Queue>(GetCurrentThreadId())) { t_queue = m_queue.get(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder()
    {
        t_over = true;
        t_queue = nullptr;
        EndWindowsOf(*m_queue);
        m_queue->Close();
    }

    const std::shared_ptr<Queue>& Get() const noexcept { return m_queue; }

private:
    const std::shared_ptr<Queue> m_queue;
};

// Made while the library is loaded, before the other objects for each thread: a thread's windows end first.
sync::PerThread<Holder> g_holders;

// The thread that loads the library ends its windows before all static objects. The C library aborts where it
// lacks memory for such an object, so that only this one thread has it, from its load on.
struct Loader
{
    ~Loader() { g_holders.End(); }
};
thread_local Loader t_loader;
[[maybe_unused]] const Loader* const g_loader = &t_loader;

} // namespace

std::shared_ptr<Queue> ThisThread()
{
    if (t_over) return nullptr;
    return g_holders.Get().Get();
}

bool IsThisThread(const Queue& queue) noexcept
{
    return t_queue == &queue;
}

std::shared_ptr<Window> FindAny(HWND hWnd) noexcept
{
    auto window = WindowTable::Instance().Find(hWnd);
    if (!window) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return window;
}

std::shared_ptr<Window> FindOwn(HWND hWnd) noexcept
{
    auto window = FindAny(hWnd);
    if (!window || IsThisThread(window->Owner())) return window;
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

} // namespace kx::window
