#pragma once

#include "platform/services/systemd/Bus.h"

// What systemd itself writes of units. Results are ERROR_... codes.

namespace kx::systemd {

// Reads all units anew.
DWORD Reload(Bus& bus);

// Has a unit started with the machine, only when asked, or not at all, by SERVICE_..._START or
// SERVICE_DISABLED; ERROR_INVALID_PARAMETER for another or for a unit that can't be started by itself.
DWORD SetStartType(Bus& bus, const std::string& unit, DWORD startType);

// Removes what was written for any of them.
DWORD ForgetStartType(Bus& bus, const std::string& unit);

} // namespace kx::systemd
