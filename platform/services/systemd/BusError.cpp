#include "platform/services/systemd/BusError.h"

#include "include/platform/Services.h"
#include "platform/Errno.h"

#include <string_view>

namespace kx::systemd {

namespace {

struct Known
{
    std::string_view name;
    DWORD error;
};

constexpr Known kOfSystemd[] = {
    {"NoSuchUnit", ERROR_SERVICE_DOES_NOT_EXIST},
    {"LoadFailed", ERROR_INVALID_PARAMETER},
    {"BadUnitSetting", ERROR_INVALID_PARAMETER},
    {"UnitMasked", ERROR_SERVICE_DISABLED},
    {"UnitExists", ERROR_SERVICE_EXISTS},
    {"UnitGenerated", ERROR_ACCESS_DENIED},
    {"OnlyByDependency", ERROR_INVALID_SERVICE_CONTROL},
    {"JobTypeNotApplicable", ERROR_INVALID_SERVICE_CONTROL},
    {"TransactionJobsConflicting", ERROR_SERVICE_DEPENDENCY_FAIL},
    {"TransactionIsDestructive", ERROR_SERVICE_CANNOT_ACCEPT_CTRL},
    {"TransactionOrderIsCyclic", ERROR_CIRCULAR_DEPENDENCY},
    {"ShuttingDown", ERROR_SHUTDOWN_IN_PROGRESS},
    {"DiskFull", ERROR_DISK_FULL},
};

constexpr Known kOfDBus[] = {
    {"AccessDenied", ERROR_ACCESS_DENIED},
    {"AuthFailed", ERROR_ACCESS_DENIED},
    {"InteractiveAuthorizationRequired", ERROR_ACCESS_DENIED},
    {"FileNotFound", ERROR_SERVICE_DOES_NOT_EXIST},
    {"FileExists", ERROR_ALREADY_EXISTS},
    {"InvalidArgs", ERROR_INVALID_PARAMETER},
    {"NoMemory", ERROR_NOT_ENOUGH_MEMORY},
    {"NoReply", ERROR_SERVICE_REQUEST_TIMEOUT},
    {"Timeout", ERROR_SERVICE_REQUEST_TIMEOUT},
    {"Disconnected", RPC_S_SERVER_UNAVAILABLE},
    {"NameHasNoOwner", RPC_S_SERVER_UNAVAILABLE},
    {"ServiceUnknown", RPC_S_SERVER_UNAVAILABLE},
};

DWORD ErrorFromCall(int nErrno) noexcept
{
    switch (nErrno) {
    case ENOENT:
        return ERROR_SERVICE_DOES_NOT_EXIST;
    case ETIMEDOUT:
        return ERROR_SERVICE_REQUEST_TIMEOUT;
    case ENOTCONN:
    case ECONNRESET:
    case EPIPE:
        return RPC_S_SERVER_UNAVAILABLE;
    default:
        return ErrorFromErrno(nErrno);
    }
}

template <std::size_t Count>
DWORD Find(const Known (&known)[Count], std::string_view name, std::string_view prefix) noexcept
{
    if (name.substr(0, prefix.size()) != prefix) return ERROR_SUCCESS;
    for (const Known& one : known)
        if (name.substr(prefix.size()) == one.name) return one.error;
    return ERROR_SUCCESS;
}

} // namespace

DWORD ErrorFromBus(const sd_bus_error& error, int nErrno) noexcept
{
    const std::string_view name = error.name ? error.name : "";
    if (const DWORD found = Find(kOfSystemd, name, "org.freedesktop.systemd1.")) return found;
    if (const DWORD found = Find(kOfDBus, name, "org.freedesktop.DBus.Error.")) return found;
    return ErrorFromCall(nErrno);
}

} // namespace kx::systemd
