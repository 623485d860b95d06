#include "platform/services/Handle.h"

#include "internal/Debug.h"
#include "platform/Immortal.h"
#include "platform/module/Door.h"
#include "platform/sync/Mutex.h"

#include <string_view>
#include <utility>

using namespace kx::services;

KX_DOOR(services, Functions);

namespace {

struct Current
{
    kx::sync::Mutex lock;
    std::shared_ptr<KXHost::ServiceManager> manager KX_GUARDED_BY(lock); // null: the machine's
};

std::shared_ptr<KXHost::ServiceManager> CurrentManager()
{
    {
        Current& current = kx::The<Current>();
        const kx::sync::MutexLock lock(current.lock);
        if (current.manager) return current.manager;
    }
    return KXHost::MakeSystemdManager();
}

bool IsEmpty(const char* psz) noexcept
{
    return !psz || !*psz;
}

DWORD Name(Handle handle, SC_HANDLE& hNamed)
{
    hNamed = static_cast<SC_HANDLE>(kx::AddHandle(std::make_shared<Handle>(std::move(handle))));
    return hNamed ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY;
}

} // namespace

std::shared_ptr<KXHost::ServiceManager> KXHost::MakeSystemdManager(const SystemdPlace& place)
{
    const Functions* const functions = g_door.Open();
    return functions ? functions->makeManager(place) : nullptr;
}

void KXHost::SetServiceManager(std::shared_ptr<ServiceManager> manager)
{
    Current& current = kx::The<Current>();
    const kx::sync::MutexLock lock(current.lock);
    current.manager.swap(manager); // the old one ends behind the lock
}

SC_HANDLE OpenSCManagerA(const char* pszMachine, const char* pszDatabase, DWORD dwAccess)
{
    SC_HANDLE hManager = nullptr;
    Attempt([&]() -> DWORD {
        if (!IsEmpty(pszMachine)) return RPC_S_SERVER_UNAVAILABLE;
        if (pszDatabase && std::string_view(pszDatabase) != "ServicesActive")
            return ERROR_DATABASE_DOES_NOT_EXIST;
        const auto manager = CurrentManager();
        if (!manager) return RPC_S_SERVER_UNAVAILABLE;
        const DWORD error = manager->OpenManager(dwAccess);
        if (!error) return Name({manager, dwAccess | SC_MANAGER_CONNECT, {}}, hManager);
        kx::debug::Tell("service", "the manager of services can't be opened (error %u)", error);
        return error;
    });
    return hManager;
}

SC_HANDLE OpenServiceA(SC_HANDLE hManager, const char* pszName, DWORD dwAccess)
{
    SC_HANDLE hService = nullptr;
    AttemptOn(hManager, true, SC_MANAGER_CONNECT, [&](const Handle& opened) -> DWORD {
        if (IsEmpty(pszName)) return pszName ? ERROR_INVALID_NAME : ERROR_INVALID_PARAMETER;
        const CString name = pszName;
        const DWORD error = opened.manager->OpenService(name, dwAccess);
        return error ? error : Name({opened.manager, dwAccess, name}, hService);
    });
    return hService;
}

SC_HANDLE CreateServiceA(SC_HANDLE hManager, const char* pszName, const char* pszDisplayName, DWORD dwAccess,
                         DWORD dwServiceType, DWORD dwStartType, DWORD dwErrorControl,
                         const char* pszBinaryPath, const char* pszGroup, DWORD* pdwTag,
                         const char* pszDependencies, const char* pszAccount, const char* pszPassword)
{
    SC_HANDLE hService = nullptr;
    AttemptOn(hManager, true, SC_MANAGER_CREATE_SERVICE, [&](const Handle& opened) -> DWORD {
        if (!pszName || IsEmpty(pszBinaryPath)) return ERROR_INVALID_PARAMETER;
        if (pszGroup || pdwTag || pszDependencies || pszAccount || pszPassword)
            return ERROR_INVALID_PARAMETER;
        const CString name = pszName;
        if (name.IsEmpty()) return ERROR_INVALID_NAME;
        const KXHost::ServiceSettings settings{IsEmpty(pszDisplayName) ? name : CString(pszDisplayName),
                                               pszBinaryPath, dwServiceType, dwStartType, dwErrorControl};
        const DWORD error = opened.manager->Create(name, settings, dwAccess);
        return error ? error : Name({opened.manager, dwAccess, name}, hService);
    });
    return hService;
}

int CloseServiceHandle(SC_HANDLE hObject)
{
    return Attempt(
        [&]() -> DWORD { return kx::RemoveHandle<Handle>(hObject) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE; });
}
