#include "platform/services/Current.h"

#include "platform/Immortal.h"

#include <mutex>

namespace {

struct Current
{
    std::mutex lock;
    std::shared_ptr<KXHost::ServiceManager> manager; // under the lock; null: the machine's
};

Current& TheCurrent()
{
    static kx::Immortal<Current> current;
    return current.Get();
}

} // namespace

std::shared_ptr<KXHost::ServiceManager> kx::services::CurrentManager()
{
    {
        Current& current = TheCurrent();
        const std::lock_guard lock(current.lock);
        if (current.manager) return current.manager;
    }
    return KXHost::MakeSystemdManager();
}

void KXHost::SetServiceManager(std::shared_ptr<ServiceManager> manager)
{
    Current& current = TheCurrent();
    const std::lock_guard lock(current.lock);
    current.manager.swap(manager); // the old one ends behind the lock
}
