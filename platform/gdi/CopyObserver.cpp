#include "platform/gdi/CopyObserver.h"

#include "platform/Immortal.h"

#include <memory>
#include <mutex>
#include <utility>

namespace kx::gdi {

namespace {

struct Observer
{
    std::mutex lock;
    std::shared_ptr<const KXHost::CopyObserver> call; // under the lock
};

Observer& TheObserver()
{
    static Immortal<Observer> observer;
    return observer.Get();
}

std::shared_ptr<const KXHost::CopyObserver> Current()
{
    Observer& observer = TheObserver();
    const std::lock_guard lock(observer.lock);
    return observer.call;
}

} // namespace

void TellCopyObserver(const KXHost::CopyRecord& copy) noexcept
{
    thread_local bool t_bTelling = false;
    if (std::exchange(t_bTelling, true)) return;
    try {
        if (const auto call = Current()) (*call)(copy);
    } catch (...) { // the copy has no part in it
    }
    t_bTelling = false;
}

} // namespace kx::gdi

void KXHost::SetCopyObserver(CopyObserver observer)
{
    using namespace kx::gdi;
    auto call = observer ? std::make_shared<const CopyObserver>(std::move(observer)) : nullptr;
    Observer& current = TheObserver();
    const std::lock_guard lock(current.lock);
    g_bCopyObserved.store(call != nullptr, std::memory_order_release);
    current.call.swap(call);
}
