#include "platform/services/systemd/UnitState.h"

#include "platform/services/systemd/UnitText.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <set>
#include <string_view>

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

namespace {

constexpr std::uint64_t kSecond = 1'000'000;
constexpr std::uint64_t kUsualLimit = 90 * kSecond; // systemd's own where a unit doesn't say
constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

// In milliseconds. A start may take this long without a sign of progress. Who has something stopped sleeps
// for its hint and looks again.
constexpr DWORD kStartHint = 10'000;
constexpr DWORD kStopHint = 250;

// A program that doesn't tell when it is ready counts as running once it has run this long. One that exits at
// once has done so by then on a busy machine too.
constexpr std::uint64_t kSettled = kSecond / 2;
constexpr DWORD kSettling = 4999; // its check point until then: past all steps of a start

// The order in which a unit goes through the parts of its start or stop; no step goes back.
constexpr std::string_view kSteps[] = {
    "condition",    "start-pre",    "start",     "start-post",     "stop",          "stop-watchdog",
    "stop-sigterm", "stop-sigkill", "stop-post", "final-watchdog", "final-sigterm", "final-sigkill",
};

bool IsSettling(const UnitState& unit, std::uint64_t now) noexcept
{
    const std::string_view type = unit.serviceType;
    return (type == "exec" || type == "simple" || type == "idle") && unit.activeState == "active" &&
           now - std::min(unit.activeSince, now) < kSettled;
}

// Rises with each step, and within it with each second for as long as systemd itself allows the step: it
// ends what takes longer. A unit that waits for its turn or for its next try stays at 1.
DWORD CheckPoint(const UnitState& unit, std::uint64_t limit, std::uint64_t now) noexcept
{
    const auto* step = std::find(std::begin(kSteps), std::end(kSteps), unit.subState);
    if (step == std::end(kSteps)) return 1;
    if (limit == kNoLimit) limit = kUsualLimit;
    const std::uint64_t passed = std::min(now - std::min(unit.changed, now), limit) / kSecond;
    return static_cast<DWORD>((step - std::begin(kSteps) + 1) * 1000) +
           static_cast<DWORD>(std::min<std::uint64_t>(passed, 999));
}

DWORD ExitCode(const UnitState& unit, DWORD state) noexcept
{
    if (unit.result.empty() || unit.result == "success")
        return state == SERVICE_STOPPED && unit.started == 0 ? ERROR_SERVICE_NEVER_STARTED : ERROR_SUCCESS;
    if (unit.result == "exit-code") return ERROR_SERVICE_SPECIFIC_ERROR;
    if (unit.result == "timeout" || unit.result == "watchdog") return ERROR_SERVICE_REQUEST_TIMEOUT;
    return ERROR_PROCESS_ABORTED;
}

} // namespace

DWORD CurrentState(const UnitState& unit) noexcept
{
    const std::string_view active = unit.activeState, job = unit.jobType;
    const bool bToStart = job == "start" || job == "restart" || job == "reload-or-start";
    const bool bToStop = job == "stop" || job == "restart" || job == "try-restart";
    if (active == "deactivating") return SERVICE_STOP_PENDING;
    if (active == "inactive" || active == "failed" || active == "maintenance")
        return bToStart ? SERVICE_START_PENDING : SERVICE_STOPPED;
    if (bToStop) return SERVICE_STOP_PENDING;
    return active == "activating" ? SERVICE_START_PENDING : SERVICE_RUNNING;
}

SERVICE_STATUS_PROCESS StatusOf(const UnitState& unit, std::uint64_t now) noexcept
{
    SERVICE_STATUS_PROCESS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = CurrentState(unit);
    const bool bSettling = status.dwCurrentState == SERVICE_RUNNING && IsSettling(unit, now);
    if (bSettling) status.dwCurrentState = SERVICE_START_PENDING;
    const bool bRuns = status.dwCurrentState == SERVICE_RUNNING;
    const bool bStarts = status.dwCurrentState == SERVICE_START_PENDING;
    const bool bStops = status.dwCurrentState == SERVICE_STOP_PENDING;
    status.dwControlsAccepted = bRuns && unit.canStop ? SERVICE_ACCEPT_STOP : 0;
    status.dwWin32ExitCode = ExitCode(unit, status.dwCurrentState);
    if (status.dwWin32ExitCode == ERROR_SERVICE_SPECIFIC_ERROR)
        status.dwServiceSpecificExitCode = static_cast<DWORD>(unit.exitStatus);
    status.dwProcessId = unit.mainPid;
    if (bSettling)
        status.dwCheckPoint = kSettling;
    else if (bStarts || bStops)
        status.dwCheckPoint = CheckPoint(unit, bStarts ? unit.startLimit : unit.stopLimit, now);
    // A running service has a hint so that a caller who waits for its end doesn't spin, a stopped one so that
    // a caller who has waited for its stop doesn't find it overdue.
    status.dwWaitHint = bStops || bRuns ? kStopHint : kStartHint;
    return status;
}

SERVICE_STATUS_PROCESS StatusOf(const UnitState& unit) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return StatusOf(unit, static_cast<std::uint64_t>(now.tv_sec) * kSecond +
                              static_cast<std::uint64_t>(now.tv_nsec) / 1000);
}

SERVICE_STATUS WithoutProcess(const SERVICE_STATUS_PROCESS& status) noexcept
{
    return {status.dwServiceType,
            status.dwCurrentState,
            status.dwControlsAccepted,
            status.dwWin32ExitCode,
            status.dwServiceSpecificExitCode,
            status.dwCheckPoint,
            status.dwWaitHint};
}

} // namespace kx::services::systemd
