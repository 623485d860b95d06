#include "platform/debug/Observers.h"

#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "platform/Immortal.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <atomic>
#include <memory>

namespace kx::debug {

namespace {

// One observer and how many calls of it run. After it has been removed no call begins.
class Observer
{
public:
    Observer(int nId, KXHost::DebugObserver call, bool bDiagnostics)
        : m_nId(nId), m_bDiagnostics(bDiagnostics), m_call(std::move(call))
    {
    }

    int Id() const noexcept { return m_nId; }
    bool WantsDiagnostics() const noexcept { return m_bDiagnostics; }

    void Tell(std::string_view text) noexcept
    {
        if (!(m_state.fetch_add(kOneCall) & kRemoved)) {
            try {
                m_call(text);
            } catch (...) { // the sender has no part in it
            }
        }
        if (m_state.fetch_sub(kOneCall) == kOneCall + kRemoved) m_state.notify_all();
    }

    void Remove() noexcept { m_state.fetch_or(kRemoved); }

    // After Remove: returns when no call runs, with what the observer held freed.
    void Finish() noexcept
    {
        for (unsigned state; (state = m_state.load()) != kRemoved;)
            m_state.wait(state);
        m_call = nullptr;
    }

private:
    static constexpr unsigned kRemoved = 1;
    static constexpr unsigned kOneCall = 2;

    const int m_nId;
    const bool m_bDiagnostics;
    KXHost::DebugObserver m_call;
    std::atomic<unsigned> m_state{0};
};

using List = std::vector<std::shared_ptr<Observer>>;

constinit std::atomic<bool> g_bAny{false};
constinit std::atomic<bool> g_bAnyDiagnostics{false};

struct Registry
{
    sync::Mutex lock;
    std::shared_ptr<const List>
        list KX_GUARDED_BY(lock) = std::make_shared<List>(); // never changed, only replaced
    int nLastId KX_GUARDED_BY(lock) = 0;

    void Replace(std::shared_ptr<const List> with) noexcept KX_REQUIRES(lock)
    {
        list = std::move(with);
        g_bAny.store(!list->empty(), std::memory_order_release);
        g_bAnyDiagnostics.store(
            std::any_of(list->begin(), list->end(), [](const auto& one) { return one->WantsDiagnostics(); }),
            std::memory_order_release);
    }
};

[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Debug, []() -> sync::Mutex& { return The<Registry>().lock; });

// The observers whose calls are running on this thread, innermost first.
struct Call
{
    const Observer* observer;
    const Call* outer;
};
constinit thread_local const Call* t_calls = nullptr;

bool IsCalled(const Observer& observer) noexcept
{
    for (const Call* call = t_calls; call; call = call->outer)
        if (call->observer == &observer) return true;
    return false;
}

} // namespace

bool AnyWantsDiagnostics() noexcept
{
    return g_bAnyDiagnostics.load(std::memory_order_acquire);
}

void TellObservers(std::string_view text, Kind kind)
{
    const std::atomic<bool>& bAny = kind == Kind::Diagnostic ? g_bAnyDiagnostics : g_bAny;
    if (!bAny.load(std::memory_order_acquire)) return;
    Registry& registry = The<Registry>();
    std::shared_ptr<const List> list;
    {
        const sync::MutexLock lock(registry.lock);
        list = registry.list;
    }
    for (const auto& observer : *list) {
        if (kind == Kind::Diagnostic && !observer->WantsDiagnostics()) continue;
        if (IsCalled(*observer)) continue;
        const Call call{observer.get(), t_calls};
        t_calls = &call;
        observer->Tell(text);
        t_calls = call.outer;
    }
}

} // namespace kx::debug

int KXHost::AddDebugObserver(DebugObserver observer, bool bDiagnostics)
try {
    using namespace kx::debug;
    Registry& registry = kx::The<Registry>();
    const kx::sync::MutexLock lock(registry.lock);
    const int nId = registry.nLastId == INT32_MAX ? 1 : registry.nLastId + 1;
    auto list = std::make_shared<List>(*registry.list);
    if (observer) list->push_back(std::make_shared<Observer>(nId, std::move(observer), bDiagnostics));
    registry.nLastId = nId;
    registry.Replace(std::move(list));
    return nId;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

void KXHost::RemoveDebugObserver(int nObserver)
try {
    using namespace kx::debug;
    Registry& registry = kx::The<Registry>();
    std::shared_ptr<Observer> removed;
    {
        const kx::sync::MutexLock lock(registry.lock);
        auto list = std::make_shared<List>(*registry.list);
        const auto found =
            std::find_if(list->begin(), list->end(), [&](const auto& one) { return one->Id() == nObserver; });
        if (found == list->end()) return;
        removed = *found;
        list->erase(found);
        registry.Replace(std::move(list));
    }
    removed->Remove();
    if (!t_calls) removed->Finish();
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}
