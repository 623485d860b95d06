#include "platform/services/systemd/UnitState.h"

#include "platform/services/systemd/UnitText.h"
#include "platform/text/Conversion.h"

#include <set>

namespace kx::services::systemd {

namespace {

constexpr const char* kUnit = "org.freedesktop.systemd1.Unit";
constexpr const char* kService = "org.freedesktop.systemd1.Service";
constexpr const char* kJob = "org.freedesktop.systemd1.Job";

DWORD FindPath(Bus& bus, const std::string& unit, std::string& path)
{
    Message reply;
    if (const DWORD error = bus.Call(&reply, kManagerPath, kManager, "LoadUnit", "s", unit.c_str()))
        return error;
    const char* found = nullptr;
    if (sd_bus_message_read_basic(reply.get(), 'o', &found) <= 0) return ERROR_GEN_FAILURE;
    path = found;
    return ERROR_SUCCESS;
}

DWORD ReadUnitPart(Bus& bus, const std::string& path, UnitState& state)
{
    std::vector<std::string> requiredBy, requisiteOf, boundBy, consistsOf;
    const Property properties[] = {
        {"LoadState", &state.loadState},
        {"ActiveState", &state.activeState},
        {"SubState", &state.subState},
        {"Description", &state.description},
        {"StateChangeTimestampMonotonic", &state.changed},
        {"ActiveEnterTimestampMonotonic", &state.activeSince},
        {"CanStop", &state.canStop},
        {"Job", &state.job},
        {"RequiredBy", &requiredBy},
        {"RequisiteOf", &requisiteOf},
        {"BoundBy", &boundBy},
        {"ConsistsOf", &consistsOf},
    };
    if (const DWORD error = bus.Read(path.c_str(), kUnit, properties)) return error;
    for (const auto* list : {&requiredBy, &requisiteOf, &boundBy, &consistsOf})
        state.dependents.insert(state.dependents.end(), list->begin(), list->end());
    return state.loadState.empty() || state.activeState.empty() ? ERROR_GEN_FAILURE : ERROR_SUCCESS;
}

DWORD ReadServicePart(Bus& bus, const std::string& path, UnitState& state)
{
    const Property properties[] = {
        {"Type", &state.serviceType},
        {"MainPID", &state.mainPid},
        {"Result", &state.result},
        {"ExecMainStatus", &state.exitStatus},
        {"ExecMainStartTimestampMonotonic", &state.started},
        {"TimeoutStartUSec", &state.startLimit},
        {"TimeoutStopUSec", &state.stopLimit},
    };
    return bus.Read(path.c_str(), kService, properties);
}

// Leaves the type empty for a job that has ended meanwhile.
DWORD ReadJobPart(Bus& bus, UnitState& state)
{
    const Property properties[] = {{"JobType", &state.jobType}};
    return bus.Read(state.job.path.c_str(), kJob, properties);
}

constexpr std::size_t kMaxUnits = 10'000; // more are no honest answer

// A unit whose dependents are being looked at.
struct Visit
{
    std::string unit;
    UnitState state;
    std::size_t next = 0;
};

void Add(const Visit& visit, std::vector<KXHost::DependentService>& dependents)
{
    auto name = NameOf(visit.unit);
    if (!name || !visit.state.Exists()) return;
    const std::string title = text::FromUtf8Lossy(visit.state.description);
    dependents.push_back(
        {std::move(*name), CString(std::string_view(title)), WithoutProcess(StatusOf(visit.state))});
}

} // namespace

DWORD ReadUnit(Bus& bus, const std::string& unit, UnitState& state)
{
    std::string path;
    if (const DWORD error = FindPath(bus, unit, path)) return error;
    const bool bService = unit.ends_with(".service");
    // A job that ends between the calls has changed the state that was read before. Who has a new one each
    // time is taken as it was.
    for (int tries = 3; tries > 0; --tries) {
        state = {};
        if (const DWORD error = ReadUnitPart(bus, path, state)) return error;
        if (bService)
            if (const DWORD error = ReadServicePart(bus, path, state)) return error;
        if (state.job.id == 0) break;
        const DWORD error = ReadJobPart(bus, state);
        if (error == RPC_S_SERVER_UNAVAILABLE || error == ERROR_SERVICE_REQUEST_TIMEOUT) return error;
        if (error == ERROR_SUCCESS) break;
    }
    return ERROR_SUCCESS;
}

DWORD ListDependents(Bus& bus, const std::string& unit, const UnitState& state,
                     std::vector<KXHost::DependentService>& dependents)
{
    std::set<std::string> seen{unit};
    std::vector<Visit> path;
    path.push_back({unit, state});
    while (!path.empty()) {
        Visit& last = path.back();
        if (last.next == last.state.dependents.size()) {
            if (path.size() > 1) Add(last, dependents);
            path.pop_back();
            continue;
        }
        Visit visit{last.state.dependents[last.next++], {}};
        if (!seen.insert(visit.unit).second) continue;
        if (seen.size() > kMaxUnits) return ERROR_GEN_FAILURE;
        if (const DWORD error = ReadUnit(bus, visit.unit, visit.state)) return error;
        path.push_back(std::move(visit));
    }
    return ERROR_SUCCESS;
}

} // namespace kx::services::systemd
