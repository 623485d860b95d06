#pragma once

#include "include/platform/ServiceManager.h"
#include "platform/services/systemd/Bus.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kx::services::systemd {

// Systemd's account of a unit. Times are in microseconds, those of day on CLOCK_MONOTONIC.
struct UnitState
{
    std::string loadState;
    std::string activeState;
    std::string subState;
    std::string description;
    std::uint64_t changed = 0;
    std::uint64_t activeSince = 0;
    bool canStop = false;
    JobRef job;
    std::string jobType; // empty: no job waits or runs

    // These are a service's alone.
    std::string serviceType;
    std::uint32_t mainPid = 0;
    std::string result;
    std::int32_t exitStatus = 0;
    std::uint64_t started = 0;
    std::uint64_t startLimit = 0;
    std::uint64_t stopLimit = 0;

    std::vector<std::string> dependents; // the units that need it, as they are listed

    bool IsUp() const noexcept { return activeState != "inactive" && activeState != "failed"; }
    // A unit without a file is none, but for one whose file went while it ran.
    bool Exists() const noexcept { return loadState != "not-found" || IsUp(); }
};

// Reads a unit's state, by its name; a service's or another's. An ERROR_... code, ERROR_GEN_FAILURE for an
// answer without the states.
DWORD ReadUnit(Bus& bus, const std::string& unit, UnitState& state);

// The state as systemd tells it.
DWORD CurrentState(const UnitState& unit) noexcept;

// The platform's status. A program that tells nobody when it is ready counts as starting until it has run for
// half a second: systemd calls it active as soon as it is loaded, also one that exits at once. `now` is
// CLOCK_MONOTONIC's.
SERVICE_STATUS_PROCESS StatusOf(const UnitState& state, std::uint64_t now) noexcept;
SERVICE_STATUS_PROCESS StatusOf(const UnitState& state) noexcept;
SERVICE_STATUS WithoutProcess(const SERVICE_STATUS_PROCESS& status) noexcept;

// Lists the services that need a unit, each ahead of what it needs, those behind units of other kinds too.
// `state` is the unit's. An ERROR_... code.
DWORD ListDependents(Bus& bus, const std::string& unit, const UnitState& state,
                     std::vector<KXHost::DependentService>& dependents);

} // namespace kx::services::systemd
