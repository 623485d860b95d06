#include "platform/services/Handle.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

using namespace kx::services;

namespace {

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
