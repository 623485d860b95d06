#pragma once

#include "platform/services/systemd/Bus.h"

#include <string>
#include <string_view>

namespace kx::services::systemd {

// The directory of the units that are made here. A file appears in it, or changes, as a whole. Units are
// named by `NAME.service`; results are ERROR_... codes.
class UnitStore
{
public:
    // Empty: for root the machine's, else the user's.
    explicit UnitStore(const std::string& directory);

    // ERROR_SERVICE_EXISTS where anything has its name.
    DWORD Create(const std::string& unit, std::string_view text) const;
    // Whether it was made here.
    bool Has(const std::string& unit) const;
    // Removes it with what belongs to it.
    DWORD Remove(const std::string& unit) const;

    // Gives any unit another description than it has of its own; without a text takes that away.
    DWORD Describe(const std::string& unit, std::string_view text) const;
    DWORD Undescribe(const std::string& unit) const;

private:
    std::string Path(const std::string& unit) const { return m_directory + "/" + unit; }

    std::string m_directory; // empty: there is none to be had
};

// Below is what systemd itself writes of units; results are ERROR_... codes.

// Reads all units anew.
DWORD Reload(Bus& bus);

// Has a unit started with the machine, only when asked, or not at all, by SERVICE_..._START or
// SERVICE_DISABLED; ERROR_INVALID_PARAMETER for another or for a unit that can't be started by itself.
DWORD SetStartType(Bus& bus, const std::string& unit, DWORD startType);

// Removes what was written for any of them, as much of it as can be: the first error.
DWORD ForgetStartType(Bus& bus, const std::string& unit);

// Has a unit that failed counted as one that is stopped. Nothing happens to one in another state.
DWORD ResetFailed(Bus& bus, const std::string& unit);

} // namespace kx::services::systemd
