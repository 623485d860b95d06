#include "platform/services/Attempt.h"
#include "platform/services/Handles.h"

#include <algorithm>
#include <cstdint>
#include <limits>

using namespace kx::services;

namespace {

using Services = std::vector<KXHost::DependentService>;

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

int EnumDependentServicesA(SC_HANDLE hService, DWORD dwState, ENUM_SERVICE_STATUSA* pServices, DWORD cbBuffer,
                           DWORD* pcbNeeded, DWORD* pnReturned)
{
    const HandlePtr service = FindHandle(hService, Kind::Service, SERVICE_ENUMERATE_DEPENDENTS);
    if (!service) return 0;
    const bool bValid = pcbNeeded && pnReturned && dwState != 0 && (dwState & ~SERVICE_STATE_ALL) == 0 &&
                        reinterpret_cast<std::uintptr_t>(pServices) % alignof(ENUM_SERVICE_STATUSA) == 0;
    if (!bValid) return kx::Fail(ERROR_INVALID_PARAMETER);
    *pcbNeeded = 0;
    *pnReturned = 0;

    Services services;
    if (!Attempt([&] { return service->manager->ListDependents(service->name, services); })) return 0;
    std::erase_if(services, [&](const auto& one) { return !IsWanted(one, dwState); });
    if (services.empty()) return 1;
    const std::size_t needed = BytesFor(services);
    if (needed > std::numeric_limits<DWORD>::max()) return kx::Fail(ERROR_NOT_ENOUGH_MEMORY);
    *pcbNeeded = static_cast<DWORD>(needed);
    if (!pServices || cbBuffer < needed) return kx::Fail(ERROR_MORE_DATA);

    char* next = reinterpret_cast<char*>(pServices + services.size());
    for (const auto& one : services) {
        char* const name = PutText(one.strName, next);
        *pServices++ = {name, PutText(one.strDisplayName, next), one.status};
    }
    *pnReturned = static_cast<DWORD>(services.size());
    return 1;
}
