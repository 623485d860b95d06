#include "platform/services/Attempt.h"
#include "platform/services/Handles.h"

#include <cstring>

using namespace kx::services;

int DeleteService(SC_HANDLE hService)
{
    const HandlePtr service = FindHandle(hService, Kind::Service, DELETE);
    return service && Attempt([&] { return service->manager->Delete(service->name); });
}

int ChangeServiceConfigA(SC_HANDLE hService, DWORD dwServiceType, DWORD dwStartType, DWORD dwErrorControl,
                         const char* pszBinaryPath, const char* pszGroup, DWORD* pdwTag,
                         const char* pszDependencies, const char* pszAccount, const char* pszPassword,
                         const char* pszDisplayName)
{
    const HandlePtr service = FindHandle(hService, Kind::Service, SERVICE_CHANGE_CONFIG);
    if (!service) return 0;
    const bool bTypeAlone = dwServiceType == SERVICE_NO_CHANGE && dwErrorControl == SERVICE_NO_CHANGE &&
                            !pszBinaryPath && !pszGroup && !pdwTag && !pszDependencies && !pszAccount &&
                            !pszPassword && !pszDisplayName;
    if (!bTypeAlone) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (dwStartType == SERVICE_NO_CHANGE) return 1;
    return Attempt([&] { return service->manager->SetStartType(service->name, dwStartType); });
}

int ChangeServiceConfig2A(SC_HANDLE hService, DWORD dwLevel, void* pInfo)
{
    const HandlePtr service = FindHandle(hService, Kind::Service, SERVICE_CHANGE_CONFIG);
    if (!service) return 0;
    if (dwLevel != SERVICE_CONFIG_DESCRIPTION) return kx::Fail(ERROR_INVALID_LEVEL);
    if (!pInfo) return kx::Fail(ERROR_INVALID_PARAMETER);
    const char* pszText = static_cast<const SERVICE_DESCRIPTIONA*>(pInfo)->lpDescription;
    return !pszText || Attempt([&] { return service->manager->SetDescription(service->name, pszText); });
}

int QueryServiceStatusEx(SC_HANDLE hService, SC_STATUS_TYPE level, BYTE* pBuffer, DWORD cbBuffer,
                         DWORD* pcbNeeded)
{
    const HandlePtr service = FindHandle(hService, Kind::Service, SERVICE_QUERY_STATUS);
    if (!service) return 0;
    if (level != SC_STATUS_PROCESS_INFO) return kx::Fail(ERROR_INVALID_LEVEL);
    if (!pcbNeeded) return kx::Fail(ERROR_INVALID_PARAMETER);
    SERVICE_STATUS_PROCESS status{};
    *pcbNeeded = sizeof status;
    if (!pBuffer || cbBuffer < sizeof status) return kx::Fail(ERROR_INSUFFICIENT_BUFFER);
    if (!Attempt([&] { return service->manager->Query(service->name, status); })) return 0;
    std::memcpy(pBuffer, &status, sizeof status);
    return 1;
}

int StartServiceA(SC_HANDLE hService, DWORD dwArgs, const char** ppszArgs)
{
    const HandlePtr service = FindHandle(hService, Kind::Service, SERVICE_START);
    if (!service) return 0;
    if (dwArgs != 0 || ppszArgs) return kx::Fail(ERROR_INVALID_PARAMETER);
    return Attempt([&] { return service->manager->Start(service->name); });
}

int ControlService(SC_HANDLE hService, DWORD dwControl, SERVICE_STATUS* pStatus)
{
    const HandlePtr service = FindHandle(hService, Kind::Service, SERVICE_STOP);
    if (!service) return 0;
    if (dwControl != SERVICE_CONTROL_STOP) return kx::Fail(ERROR_INVALID_SERVICE_CONTROL);
    if (!pStatus) return kx::Fail(ERROR_INVALID_PARAMETER);
    SERVICE_STATUS status{};
    if (!Attempt([&] { return service->manager->Stop(service->name, status); })) return 0;
    *pStatus = status;
    return 1;
}
