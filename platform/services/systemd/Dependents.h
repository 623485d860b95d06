#pragma once

#include "include/platform/ServiceManager.h"
#include "platform/services/systemd/Bus.h"
#include "platform/services/systemd/UnitState.h"

namespace kx::systemd {

// Lists the services that need a unit, each ahead of what it needs, those behind units of other kinds too.
// `state` is the unit's. An ERROR_... code.
DWORD ListDependents(Bus& bus, const std::string& unit, const UnitState& state,
                     std::vector<KXHost::DependentService>& dependents);

} // namespace kx::systemd
