#pragma once

// The manager behind the service calls (Services.h).

#include "../KXExport.h"
#include "Services.h"
#include "String.h"

#include <memory>
#include <string>
#include <vector>

namespace KXHost {

// The parts of which a service is made.
struct ServiceSettings
{
    CString strDisplayName; // never empty
    // The program with its arguments, and numbers of Services.h.
    CString strBinaryPath;
    DWORD dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    DWORD dwStartType = SERVICE_DEMAND_START;
    DWORD dwErrorControl = SERVICE_ERROR_NORMAL;
};

// A service that needs another.
struct DependentService
{
    // Its name, what people read, and its state.
    CString strName;
    CString strDisplayName;
    SERVICE_STATUS status{};
};

// A manager of services. The calls of Services.h check handles, rights and buffers and ask it for the rest,
// on their callers' threads, so on several at once. Each operation gives an error number, ERROR_SUCCESS (0)
// for success; what it throws counts as a failure (ERROR_GEN_FAILURE). Names aren't empty. None waits for the
// state that it brings about.
class KX_API ServiceManager
{
public:
    ServiceManager() = default;
    ServiceManager(const ServiceManager&) = delete;
    ServiceManager& operator=(const ServiceManager&) = delete;
    virtual ~ServiceManager() = default;

    // Whether it answers, and may be used with these rights.
    virtual DWORD OpenManager(DWORD dwAccess) = 0;
    // Whether the service exists, and may be used with these rights.
    virtual DWORD OpenService(const CString& strName, DWORD dwAccess) = 0;
    virtual DWORD Create(const CString& strName, const ServiceSettings& settings, DWORD dwAccess) = 0;
    virtual DWORD Delete(const CString& strName) = 0;
    virtual DWORD SetStartType(const CString& strName, DWORD dwStartType) = 0;
    // An empty text takes the description away.
    virtual DWORD SetDescription(const CString& strName, const CString& strText) = 0;
    virtual DWORD Query(const CString& strName, SERVICE_STATUS_PROCESS& status) = 0;
    virtual DWORD Start(const CString& strName) = 0;
    // Tells the status at the end.
    virtual DWORD Stop(const CString& strName, SERVICE_STATUS& status) = 0;
    // All of them, whatever their states, each ahead of what it needs.
    virtual DWORD ListDependents(const CString& strName, std::vector<DependentService>& dependents) = 0;
};

// The systemd that a manager speaks to, and the place of its units.
struct SystemdPlace
{
    std::string strBusAddress; // D-Bus address; empty: for root the system bus, else the user's
    // The place where units are written, a directory on systemd's path; empty: for root
    // /usr/local/lib/systemd/system, else systemd/user in the user's data directory ($XDG_DATA_HOME). Those
    // are for what is installed; what enables and masks a unit lies in the configuration's, which systemd
    // itself writes, and takes precedence.
    std::string strUnitDir;
    DWORD dwTimeout =
        25'000; // milliseconds, at least 1, that a call of Services.h waits for all its answers;
                // taking back what a failed CreateServiceA wrote has ten seconds of its own
};

// The manager that systemd is at such a place; null where the library's module for services can't be used.
KX_API std::shared_ptr<ServiceManager> MakeSystemdManager(const SystemdPlace& place = {});

// Puts a manager in place of the machine's for handles opened from now on; those that are open keep theirs.
// Null: the machine's again.
KX_API void SetServiceManager(std::shared_ptr<ServiceManager> manager);

} // namespace KXHost
