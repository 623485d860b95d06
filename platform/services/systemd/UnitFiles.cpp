#include "platform/services/systemd/UnitFiles.h"

#include "include/platform/Services.h"

namespace kx::systemd {

namespace {

// Each for one unit, and for good rather than until the machine stops.
DWORD Enable(Bus& bus, const std::string& unit)
{
    Message reply;
    if (const DWORD error =
            bus.Call(&reply, kManagerPath, kManager, "EnableUnitFiles", "asbb", 1, unit.c_str(), 0, 0))
        return error;
    int bSaysWhen = 0;
    if (sd_bus_message_read_basic(reply.get(), 'b', &bSaysWhen) <= 0) return ERROR_GEN_FAILURE;
    return bSaysWhen ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

DWORD Disable(Bus& bus, const std::string& unit)
{
    return bus.Call(nullptr, kManagerPath, kManager, "DisableUnitFiles", "asb", 1, unit.c_str(), 0);
}

DWORD Mask(Bus& bus, const std::string& unit)
{
    return bus.Call(nullptr, kManagerPath, kManager, "MaskUnitFiles", "asbb", 1, unit.c_str(), 0, 0);
}

DWORD Unmask(Bus& bus, const std::string& unit)
{
    return bus.Call(nullptr, kManagerPath, kManager, "UnmaskUnitFiles", "asb", 1, unit.c_str(), 0);
}

} // namespace

DWORD Reload(Bus& bus)
{
    return bus.Call(nullptr, kManagerPath, kManager, "Reload", "");
}

DWORD ForgetStartType(Bus& bus, const std::string& unit)
{
    const DWORD error = Unmask(bus, unit);
    return error == ERROR_SUCCESS ? Disable(bus, unit) : error;
}

DWORD SetStartType(Bus& bus, const std::string& unit, DWORD startType)
{
    DWORD error = ERROR_INVALID_PARAMETER;
    if (startType == SERVICE_AUTO_START) {
        error = Unmask(bus, unit);
        if (error == ERROR_SUCCESS) error = Enable(bus, unit);
    } else if (startType == SERVICE_DEMAND_START) {
        error = ForgetStartType(bus, unit);
    } else if (startType == SERVICE_DISABLED) {
        error = Disable(bus, unit);
        if (error == ERROR_SUCCESS) error = Mask(bus, unit);
    }
    return error == ERROR_SUCCESS ? Reload(bus) : error;
}

} // namespace kx::systemd
