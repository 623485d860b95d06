#include "internal/Debug.h"
#include "platform/Immortal.h"
#include "platform/module/Door.h"
#include "platform/services/Handle.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
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

using Services = std::vector<KXHost::DependentService>;

template <class Call>
int OnService(SC_HANDLE hService, DWORD right, Call&& call) noexcept
{
    return AttemptOn(hService, false, right, call);
}

bool IsWanted(const KXHost::DependentService& service, DWORD dwState) noexcept
{
    const bool bStopped = service.status.dwCurrentState == SERVICE_STOPPED;
    return (dwState & (bStopped ? SERVICE_INACTIVE : SERVICE_ACTIVE)) != 0;
}

std::size_t BytesFor(const Services& services) noexcept
{
    std::size_t bytes = 0;
    for (const auto& service : services)
        bytes += sizeof(ENUM_SERVICE_STATUSA) + service.strName.View().size() +
                 service.strDisplayName.View().size() + 2;
    return bytes;
}

char* PutText(const CString& text, char*& next) noexcept
{
    char* const begin = next;
    const std::string_view view = text.View();
    next = std::copy_n(view.data(), view.size(), begin);
    *next++ = '\0';
    return begin;
}

} // namespace

std::shared_ptr<KXHost::ServiceManager> KXHost::MakeSystemdManager(const SystemdPlace& place)
try {
    const Functions* const functions = g_door.Open();
    return functions ? functions->makeManager(place) : nullptr;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
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

int DeleteService(SC_HANDLE hService)
{
    return OnService(hService, DELETE,
                     [](const Handle& service) { return service.manager->Delete(service.name); });
}

int ChangeServiceConfigA(SC_HANDLE hService, DWORD dwServiceType, DWORD dwStartType, DWORD dwErrorControl,
                         const char* pszBinaryPath, const char* pszGroup, DWORD* pdwTag,
                         const char* pszDependencies, const char* pszAccount, const char* pszPassword,
                         const char* pszDisplayName)
{
    return OnService(hService, SERVICE_CHANGE_CONFIG, [&](const Handle& service) -> DWORD {
        const bool bTypeAlone = dwServiceType == SERVICE_NO_CHANGE && dwErrorControl == SERVICE_NO_CHANGE &&
                                !pszBinaryPath && !pszGroup && !pdwTag && !pszDependencies && !pszAccount &&
                                !pszPassword && !pszDisplayName;
        if (!bTypeAlone) return ERROR_INVALID_PARAMETER;
        if (dwStartType == SERVICE_NO_CHANGE) return ERROR_SUCCESS;
        return service.manager->SetStartType(service.name, dwStartType);
    });
}

int ChangeServiceConfig2A(SC_HANDLE hService, DWORD dwLevel, void* pInfo)
{
    return OnService(hService, SERVICE_CHANGE_CONFIG, [&](const Handle& service) -> DWORD {
        if (dwLevel != SERVICE_CONFIG_DESCRIPTION) return ERROR_INVALID_LEVEL;
        if (!pInfo) return ERROR_INVALID_PARAMETER;
        const char* pszText = static_cast<const SERVICE_DESCRIPTIONA*>(pInfo)->lpDescription;
        return pszText ? service.manager->SetDescription(service.name, pszText) : ERROR_SUCCESS;
    });
}

int QueryServiceStatusEx(SC_HANDLE hService, SC_STATUS_TYPE level, BYTE* pBuffer, DWORD cbBuffer,
                         DWORD* pcbNeeded)
{
    return OnService(hService, SERVICE_QUERY_STATUS, [&](const Handle& service) -> DWORD {
        if (level != SC_STATUS_PROCESS_INFO) return ERROR_INVALID_LEVEL;
        if (!pcbNeeded) return ERROR_INVALID_PARAMETER;
        SERVICE_STATUS_PROCESS status{};
        *pcbNeeded = sizeof status;
        if (!pBuffer || cbBuffer < sizeof status) return ERROR_INSUFFICIENT_BUFFER;
        if (const DWORD error = service.manager->Query(service.name, status)) return error;
        std::memcpy(pBuffer, &status, sizeof status);
        return ERROR_SUCCESS;
    });
}

int StartServiceA(SC_HANDLE hService, DWORD dwArgs, const char** ppszArgs)
{
    return OnService(hService, SERVICE_START, [&](const Handle& service) -> DWORD {
        return dwArgs == 0 && !ppszArgs ? service.manager->Start(service.name) : ERROR_INVALID_PARAMETER;
    });
}

int ControlService(SC_HANDLE hService, DWORD dwControl, SERVICE_STATUS* pStatus)
{
    return OnService(hService, SERVICE_STOP, [&](const Handle& service) -> DWORD {
        if (dwControl != SERVICE_CONTROL_STOP) return ERROR_INVALID_SERVICE_CONTROL;
        if (!pStatus) return ERROR_INVALID_PARAMETER;
        SERVICE_STATUS status{};
        if (const DWORD error = service.manager->Stop(service.name, status)) return error;
        *pStatus = status;
        return ERROR_SUCCESS;
    });
}

int EnumDependentServicesA(SC_HANDLE hService, DWORD dwState, ENUM_SERVICE_STATUSA* pServices, DWORD cbBuffer,
                           DWORD* pcbNeeded, DWORD* pnReturned)
{
    return OnService(hService, SERVICE_ENUMERATE_DEPENDENTS, [&](const Handle& service) -> DWORD {
        const bool bValid = pcbNeeded && pnReturned && dwState != 0 && (dwState & ~SERVICE_STATE_ALL) == 0 &&
                            reinterpret_cast<std::uintptr_t>(pServices) % alignof(ENUM_SERVICE_STATUSA) == 0;
        if (!bValid) return ERROR_INVALID_PARAMETER;
        *pcbNeeded = 0;
        *pnReturned = 0;

        Services services;
        if (const DWORD error = service.manager->ListDependents(service.name, services)) return error;
        std::erase_if(services, [&](const auto& one) { return !IsWanted(one, dwState); });
        if (services.empty()) return ERROR_SUCCESS;
        const std::size_t needed = BytesFor(services);
        if (needed > std::numeric_limits<DWORD>::max()) return ERROR_NOT_ENOUGH_MEMORY;
        *pcbNeeded = static_cast<DWORD>(needed);
        if (!pServices || cbBuffer < needed) return ERROR_MORE_DATA;

        auto* entry = pServices;
        char* next = reinterpret_cast<char*>(pServices + services.size());
        for (const auto& one : services) {
            char* const name = PutText(one.strName, next);
            *entry++ = {name, PutText(one.strDisplayName, next), one.status};
        }
        *pnReturned = static_cast<DWORD>(services.size());
        return ERROR_SUCCESS;
    });
}
