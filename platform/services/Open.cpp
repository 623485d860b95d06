#include "platform/services/Attempt.h"
#include "platform/services/Current.h"
#include "platform/services/Handles.h"

#include <string_view>

using namespace kx::services;

namespace {

SC_HANDLE Null(DWORD error) noexcept
{
    SetLastError(error);
    return nullptr;
}

bool IsEmpty(const char* psz) noexcept
{
    return !psz || !*psz;
}

} // namespace

SC_HANDLE OpenSCManagerA(const char* pszMachine, const char* pszDatabase, DWORD dwAccess)
{
    if (!IsEmpty(pszMachine)) return Null(RPC_S_SERVER_UNAVAILABLE);
    if (pszDatabase && std::string_view(pszDatabase) != "ServicesActive")
        return Null(ERROR_DATABASE_DOES_NOT_EXIST);
    const auto manager = CurrentManager();
    if (!Attempt([&] { return manager->OpenManager(dwAccess); })) return nullptr;
    return AddHandle(std::make_shared<const Handle>(manager, dwAccess | SC_MANAGER_CONNECT));
}

SC_HANDLE OpenServiceA(SC_HANDLE hManager, const char* pszName, DWORD dwAccess)
{
    const HandlePtr opened = FindHandle(hManager, Kind::Manager, SC_MANAGER_CONNECT);
    if (!opened) return nullptr;
    if (IsEmpty(pszName)) return Null(pszName ? ERROR_INVALID_NAME : ERROR_INVALID_PARAMETER);
    const CString name = pszName;
    if (!Attempt([&] { return opened->manager->OpenService(name, dwAccess); })) return nullptr;
    return AddHandle(std::make_shared<const Handle>(opened->manager, dwAccess, name));
}

SC_HANDLE CreateServiceA(SC_HANDLE hManager, const char* pszName, const char* pszDisplayName, DWORD dwAccess,
                         DWORD dwServiceType, DWORD dwStartType, DWORD dwErrorControl,
                         const char* pszBinaryPath, const char* pszGroup, DWORD* pdwTag,
                         const char* pszDependencies, const char* pszAccount, const char* pszPassword)
{
    const HandlePtr opened = FindHandle(hManager, Kind::Manager, SC_MANAGER_CREATE_SERVICE);
    if (!opened) return nullptr;
    if (!pszName || IsEmpty(pszBinaryPath)) return Null(ERROR_INVALID_PARAMETER);
    if (pszGroup || pdwTag || pszDependencies || pszAccount || pszPassword)
        return Null(ERROR_INVALID_PARAMETER);
    const CString name = pszName;
    if (name.IsEmpty()) return Null(ERROR_INVALID_NAME);
    const KXHost::ServiceSettings settings{IsEmpty(pszDisplayName) ? name : CString(pszDisplayName),
                                           pszBinaryPath, dwServiceType, dwStartType, dwErrorControl};
    if (!Attempt([&] { return opened->manager->Create(name, settings, dwAccess); })) return nullptr;
    return AddHandle(std::make_shared<const Handle>(opened->manager, dwAccess, name));
}

int CloseServiceHandle(SC_HANDLE hObject)
{
    return RemoveHandle(hObject) ? 1 : kx::Fail(ERROR_INVALID_HANDLE);
}
