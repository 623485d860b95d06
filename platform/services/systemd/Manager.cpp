#include "include/platform/ServiceManager.h"
#include "platform/module/Door.h"
#include "platform/services/Handle.h"
#include "platform/services/systemd/Bus.h"
#include "platform/services/systemd/UnitState.h"
#include "platform/services/systemd/UnitStore.h"
#include "platform/services/systemd/UnitText.h"
#include "platform/text/Conversion.h"

#include <optional>
#include <unistd.h>

namespace kx::services::systemd {

namespace {

constexpr DWORD kTakeBackTime = 10'000; // milliseconds

// The target that wants the services that start with the machine, or with the user's first session.
const char* StartTarget() noexcept
{
    return geteuid() == 0 ? "multi-user.target" : "default.target";
}

// A text that a unit can say, in UTF-8; a line of a unit file has an end.
std::optional<std::string> UnitLine(const CString& text)
{
    constexpr int kMaxLength = 32'767;
    return text.GetLength() <= kMaxLength ? text::ToUtf8(text.View()) : std::nullopt;
}

DWORD CheckSettings(const KXHost::ServiceSettings& settings) noexcept
{
    const bool bValid = settings.dwServiceType == SERVICE_WIN32_OWN_PROCESS &&
                        settings.dwStartType >= SERVICE_AUTO_START &&
                        settings.dwStartType <= SERVICE_DISABLED;
    return bValid ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

// systemd as the manager of services. Each operation makes a connection of its own, so that nothing is
// shared, and a systemd that was started anew meanwhile is no matter.
class Manager final : public KXHost::ServiceManager
{
public:
    explicit Manager(const KXHost::SystemdPlace& place)
        : m_address(place.strBusAddress), m_timeout(place.dwTimeout), m_store(place.strUnitDir)
    {
    }

    DWORD OpenManager(DWORD) override
    {
        Bus bus(m_timeout);
        if (const DWORD error = bus.Connect(m_address)) return error;
        return bus.Call(nullptr, kManagerPath, "org.freedesktop.DBus.Peer", "Ping", "");
    }

    DWORD OpenService(const CString& strName, DWORD) override
    {
        Service service(m_timeout);
        return Find(strName, service);
    }

    DWORD Create(const CString& strName, const KXHost::ServiceSettings& settings, DWORD) override
    {
        if (const DWORD error = CheckSettings(settings)) return error;
        std::vector<std::string> command;
        if (const DWORD error = ParseBinaryPath(settings.strBinaryPath, command)) return error;
        const auto title = UnitLine(settings.strDisplayName);
        if (!title) return ERROR_INVALID_PARAMETER;

        Service service(m_timeout);
        const DWORD error = FindInstalled(strName, service);
        if (error == ERROR_SUCCESS) return ERROR_SERVICE_EXISTS;
        if (error != ERROR_SERVICE_DOES_NOT_EXIST) return error;
        return Install(service, UnitText(*title, command, StartTarget()), settings.dwStartType);
    }

    DWORD Delete(const CString& strName) override
    {
        Service service(m_timeout);
        if (const DWORD error = FindInstalled(strName, service)) return error;
        if (!m_store.Has(service.unit)) return ERROR_ACCESS_DENIED;
        if (const DWORD error = ForgetStartType(service.bus, service.unit)) return error;
        if (const DWORD error = m_store.Remove(service.unit)) return error;
        if (const DWORD error = Reload(service.bus)) return error;
        ResetFailed(service.bus, service.unit); // Create does so too
        return ERROR_SUCCESS;
    }

    DWORD SetStartType(const CString& strName, DWORD dwStartType) override
    {
        Service service(m_timeout);
        if (const DWORD error = FindInstalled(strName, service)) return error;
        return systemd::SetStartType(service.bus, service.unit, dwStartType);
    }

    DWORD SetDescription(const CString& strName, const CString& strText) override
    {
        const auto text = UnitLine(strText);
        if (!text) return ERROR_INVALID_PARAMETER;
        Service service(m_timeout);
        if (const DWORD error = FindInstalled(strName, service)) return error;
        const DWORD error = text->empty() ? m_store.Undescribe(service.unit)
                                          : m_store.Describe(service.unit, DescriptionText(*text));
        return error == ERROR_SUCCESS ? Reload(service.bus) : error;
    }

    DWORD Query(const CString& strName, SERVICE_STATUS_PROCESS& status) override
    {
        Service service(m_timeout);
        const DWORD error = Find(strName, service);
        // A handle to a deleted service still answers a query until the service has stopped.
        const bool bGone = error == ERROR_SERVICE_DOES_NOT_EXIST && service.state.loadState == "not-found";
        if (error != ERROR_SUCCESS && !bGone) return error;
        status = StatusOf(service.state);
        return ERROR_SUCCESS;
    }

    DWORD Start(const CString& strName) override
    {
        Service service(m_timeout);
        if (const DWORD error = FindInstalled(strName, service)) return error;
        if (CurrentState(service.state) != SERVICE_STOPPED) return ERROR_SERVICE_ALREADY_RUNNING;
        return service.bus.Call(nullptr, kManagerPath, kManager, "StartUnit", "ss", service.unit.c_str(),
                                "replace");
    }

    DWORD Stop(const CString& strName, SERVICE_STATUS& status) override
    {
        Service service(m_timeout);
        if (const DWORD error = Find(strName, service)) return error;
        const DWORD state = CurrentState(service.state);
        if (state == SERVICE_STOPPED) return ERROR_SERVICE_NOT_ACTIVE;
        if (state != SERVICE_RUNNING) return ERROR_SERVICE_CANNOT_ACCEPT_CTRL;
        std::vector<KXHost::DependentService> dependents;
        if (const DWORD error = systemd::ListDependents(service.bus, service.unit, service.state, dependents))
            return error;
        // systemd would stop them too.
        for (const auto& one : dependents)
            if (one.status.dwCurrentState != SERVICE_STOPPED) return ERROR_DEPENDENT_SERVICES_RUNNING;
        if (const DWORD error = service.bus.Call(nullptr, kManagerPath, kManager, "StopUnit", "ss",
                                                 service.unit.c_str(), "replace"))
            return error;
        if (const DWORD error = ReadUnit(service.bus, service.unit, service.state)) return error;
        status = WithoutProcess(StatusOf(service.state));
        return ERROR_SUCCESS;
    }

    DWORD ListDependents(const CString& strName, std::vector<KXHost::DependentService>& dependents) override
    {
        Service service(m_timeout);
        if (const DWORD error = Find(strName, service)) return error;
        return systemd::ListDependents(service.bus, service.unit, service.state, dependents);
    }

private:
    // A service's unit, a connection and the unit's state at the beginning of an operation.
    struct Service
    {
        explicit Service(DWORD timeout) : bus(timeout) {}
        Bus bus;
        std::string unit;
        UnitState state;
    };

    // Connects, and reads the unit's state whether it exists or not.
    DWORD Find(const CString& name, Service& service) const
    {
        auto unit = UnitOf(name);
        if (!unit) return ERROR_INVALID_NAME;
        service.unit = std::move(*unit);
        if (const DWORD error = service.bus.Connect(m_address)) return error;
        if (const DWORD error = ReadUnit(service.bus, service.unit, service.state)) return error;
        return service.state.Exists() ? ERROR_SUCCESS : ERROR_SERVICE_DOES_NOT_EXIST;
    }

    // One that was deleted and still runs can only be stopped.
    DWORD FindInstalled(const CString& name, Service& service) const
    {
        if (const DWORD error = Find(name, service)) return error;
        return service.state.loadState == "not-found" ? ERROR_SERVICE_MARKED_FOR_DELETE : ERROR_SUCCESS;
    }

    DWORD Install(Service& service, const std::string& text, DWORD startType) const
    {
        if (const DWORD error = m_store.Create(service.unit, text)) return error;
        DWORD error = Reload(service.bus);
        // An earlier service of the name may have failed after it was deleted.
        if (error == ERROR_SUCCESS) error = ResetFailed(service.bus, service.unit);
        if (error == ERROR_SUCCESS) error = ReadUnit(service.bus, service.unit, service.state);
        if (error == ERROR_SUCCESS && service.state.loadState != "loaded")
            error = service.state.loadState == "not-found" ? ERROR_PATH_NOT_FOUND : ERROR_INVALID_PARAMETER;
        if (error == ERROR_SUCCESS && startType != SERVICE_DEMAND_START)
            error = systemd::SetStartType(service.bus, service.unit, startType);
        if (error != ERROR_SUCCESS) TakeBack(service.unit);
        return error;
    }

    // Removes what a failed Install wrote. The operation's own time may be over, and its connection broken.
    void TakeBack(const std::string& unit) const
    {
        m_store.Remove(unit);
        Bus bus(kTakeBackTime);
        if (bus.Connect(m_address) != ERROR_SUCCESS) return;
        ForgetStartType(bus, unit);
        Reload(bus);
    }

    const std::string m_address;
    const DWORD m_timeout;
    const UnitStore m_store;
};

constexpr Functions kFunctions{
    [](const KXHost::SystemdPlace& place) -> std::shared_ptr<KXHost::ServiceManager> {
        return std::make_shared<Manager>(place);
    }};

} // namespace

} // namespace kx::services::systemd

KX_MODULE_ENTRY(services, kx::services::systemd::kFunctions)
