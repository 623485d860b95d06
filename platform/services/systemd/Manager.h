#pragma once

#include "include/platform/ServiceManager.h"
#include "platform/services/systemd/Bus.h"
#include "platform/services/systemd/UnitState.h"
#include "platform/services/systemd/UnitStore.h"

namespace kx::services::systemd {

// systemd as the manager of services. Each operation makes a connection of its own, so that nothing is
// shared, and a systemd that was started anew meanwhile is no matter.
class Manager final : public KXHost::ServiceManager
{
public:
    explicit Manager(const KXHost::SystemdPlace& place);

    DWORD OpenManager(DWORD dwAccess) override;
    DWORD OpenService(const CString& strName, DWORD dwAccess) override;
    DWORD Create(const CString& strName, const KXHost::ServiceSettings& settings, DWORD dwAccess) override;
    DWORD Delete(const CString& strName) override;
    DWORD SetStartType(const CString& strName, DWORD dwStartType) override;
    DWORD SetDescription(const CString& strName, const CString& strText) override;
    DWORD Query(const CString& strName, SERVICE_STATUS_PROCESS& status) override;
    DWORD Start(const CString& strName) override;
    DWORD Stop(const CString& strName, SERVICE_STATUS& status) override;
    DWORD ListDependents(const CString& strName, std::vector<KXHost::DependentService>& dependents) override;

private:
    // A service's unit, a connection and the unit's state at the beginning of an operation.
    struct Service
    {
        explicit Service(DWORD timeout) : bus(timeout) {}
        Bus bus;
        std::string unit;
        UnitState state;
    };

    DWORD Find(const CString& name, Service& service) const;
    DWORD FindInstalled(const CString& name, Service& service) const;
    DWORD Install(Service& service, const std::string& text, DWORD startType) const;
    void TakeBack(const std::string& unit) const;

    const std::string m_address;
    const DWORD m_timeout;
    const UnitStore m_store;
};

} // namespace kx::services::systemd
