#pragma once

// Services of the machine and their manager: systemd, for root the system's, for other users their own; or a
// manager that the host supplies (Host.h). Any thread, a handle by several at once too. A call waits for the
// manager's answer, bounded in time, and not for what it sets going.
//
// A service's name has at most 245 bytes, as escaped, without slashes and backslashes, and in its own case.
// With systemd it is the unit `NAME.service`; letters, digits and the marks `:_.-@` stand in that as they
// are, all else escaped as \xNN. What a name or a text holds never gets a meaning of its own in a unit file.
//
// Every failure sets the last error: ERROR_INVALID_HANDLE for what is no open handle of the kind asked for,
// ERROR_ACCESS_DENIED where it wasn't opened for the access or the manager refuses the user,
// ERROR_INVALID_PARAMETER for an argument that can't be used, RPC_S_SERVER_UNAVAILABLE where no manager is,
// ERROR_SERVICE_REQUEST_TIMEOUT where it doesn't answer, ERROR_SERVICE_DOES_NOT_EXIST for a service that has
// gone, and what the operations name.

#include "../KXExport.h"
#include "Error.h"
#include "Types.h"

// A handle of the manager or of a service.
using SC_HANDLE = struct SC_HANDLE__*;

// Failures of these calls, beside those of Error.h.
inline constexpr DWORD ERROR_INVALID_LEVEL = 124;
inline constexpr DWORD ERROR_DEPENDENT_SERVICES_RUNNING = 1051;
inline constexpr DWORD ERROR_INVALID_SERVICE_CONTROL = 1052;
inline constexpr DWORD ERROR_SERVICE_REQUEST_TIMEOUT = 1053;
inline constexpr DWORD ERROR_SERVICE_ALREADY_RUNNING = 1056;
inline constexpr DWORD ERROR_SERVICE_DISABLED = 1058;
inline constexpr DWORD ERROR_CIRCULAR_DEPENDENCY = 1059;
inline constexpr DWORD ERROR_SERVICE_DOES_NOT_EXIST = 1060;
inline constexpr DWORD ERROR_SERVICE_CANNOT_ACCEPT_CTRL = 1061;
inline constexpr DWORD ERROR_SERVICE_NOT_ACTIVE = 1062;
inline constexpr DWORD ERROR_DATABASE_DOES_NOT_EXIST = 1065;
inline constexpr DWORD ERROR_SERVICE_SPECIFIC_ERROR = 1066;
inline constexpr DWORD ERROR_PROCESS_ABORTED = 1067;
inline constexpr DWORD ERROR_SERVICE_DEPENDENCY_FAIL = 1068;
inline constexpr DWORD ERROR_SERVICE_MARKED_FOR_DELETE = 1072;
inline constexpr DWORD ERROR_SERVICE_EXISTS = 1073;
inline constexpr DWORD ERROR_SERVICE_NEVER_STARTED = 1077;
inline constexpr DWORD ERROR_SHUTDOWN_IN_PROGRESS = 1115;
inline constexpr DWORD RPC_S_SERVER_UNAVAILABLE = 1722;

// Rights of a handle.
inline constexpr DWORD DELETE = 0x10000;
inline constexpr DWORD SC_MANAGER_CONNECT = 0x1;
inline constexpr DWORD SC_MANAGER_CREATE_SERVICE = 0x2;
inline constexpr DWORD SC_MANAGER_ALL_ACCESS = 0xF003F;
inline constexpr DWORD SERVICE_CHANGE_CONFIG = 0x2;
inline constexpr DWORD SERVICE_QUERY_STATUS = 0x4;
inline constexpr DWORD SERVICE_ENUMERATE_DEPENDENTS = 0x8;
inline constexpr DWORD SERVICE_START = 0x10;
inline constexpr DWORD SERVICE_STOP = 0x20;
inline constexpr DWORD SERVICE_ALL_ACCESS = 0xF01FF;

// The kind of a service, and the number that keeps a setting as it is.
inline constexpr DWORD SERVICE_NO_CHANGE = 0xFFFFFFFF;
inline constexpr DWORD SERVICE_WIN32_OWN_PROCESS = 0x10;
inline constexpr DWORD SERVICE_ERROR_NORMAL = 1;

// Start types: with the machine (systemd: enabled), on demand (not enabled), not at all (masked).
inline constexpr DWORD SERVICE_AUTO_START = 2;
inline constexpr DWORD SERVICE_DEMAND_START = 3;
inline constexpr DWORD SERVICE_DISABLED = 4;

// A service's state.
inline constexpr DWORD SERVICE_STOPPED = 1;
inline constexpr DWORD SERVICE_START_PENDING = 2;
inline constexpr DWORD SERVICE_STOP_PENDING = 3;
inline constexpr DWORD SERVICE_RUNNING = 4;

// Rights, controls and states of a service.
inline constexpr DWORD SERVICE_ACCEPT_STOP = 1;
inline constexpr DWORD SERVICE_CONTROL_STOP = 1;
inline constexpr DWORD SERVICE_CONFIG_DESCRIPTION = 1;

// The dependents that are listed: those in any state but SERVICE_STOPPED, those in it, all.
inline constexpr DWORD SERVICE_ACTIVE = 1;
inline constexpr DWORD SERVICE_INACTIVE = 2;
inline constexpr DWORD SERVICE_STATE_ALL = 3;

// The service's state at the moment of a call. dwWin32ExitCode is of its last run: an error number, of which
// ERROR_SERVICE_SPECIFIC_ERROR says that dwServiceSpecificExitCode is the program's own exit status. While
// the state is a pending one, dwCheckPoint rises for as long as there is progress, and without any for
// dwWaitHint milliseconds there is none to be expected.
struct SERVICE_STATUS
{
    // The platform's record: kind, state, what it takes, exit codes, progress and its hint.
    DWORD dwServiceType;
    DWORD dwCurrentState;
    DWORD dwControlsAccepted;
    DWORD dwWin32ExitCode;
    DWORD dwServiceSpecificExitCode;
    DWORD dwCheckPoint;
    DWORD dwWaitHint;
};

// A service's state with its process.
struct SERVICE_STATUS_PROCESS
{
    // The same as in SERVICE_STATUS.
    DWORD dwServiceType;
    DWORD dwCurrentState;
    DWORD dwControlsAccepted;
    DWORD dwWin32ExitCode;
    DWORD dwServiceSpecificExitCode;
    DWORD dwCheckPoint;
    DWORD dwWaitHint;
    DWORD dwProcessId; // 0 without a main process
    // The platform's record.
    DWORD dwServiceFlags;
};

// A service in a list.
struct ENUM_SERVICE_STATUSA
{
    // Its name, what people read, and its state.
    char* lpServiceName;
    char* lpDisplayName;
    SERVICE_STATUS ServiceStatus;
};

// The text that describes a service to people.
struct SERVICE_DESCRIPTIONA
{
    // The text.
    char* lpDescription;
};

// Requests to QueryServiceStatusEx.
enum SC_STATUS_TYPE : int
{
    // A SERVICE_STATUS_PROCESS.
    SC_STATUS_PROCESS_INFO = 0,
};

// Opens the manager, which has to answer. The machine is null or empty; the database is null or
// "ServicesActive", else ERROR_DATABASE_DOES_NOT_EXIST. The caller ends the handle with CloseServiceHandle;
// null on failure.
KX_API SC_HANDLE OpenSCManagerA(const char* pszMachine, const char* pszDatabase, DWORD dwAccess);

// Opens a service that exists. ERROR_INVALID_NAME for what can be none's name.
KX_API SC_HANDLE OpenServiceA(SC_HANDLE hManager, const char* pszName, DWORD dwAccess);

// Installs a service and opens it. `pszBinaryPath` is the program's full path, in double quotes where it
// holds white space and arguments follow, and its arguments, which double quotes hold together. No display
// name: the service's; one has at most 32,767 bytes, as has a description. The type is
// SERVICE_WIN32_OWN_PROCESS; group, tag, dependencies, account and password are null. ERROR_SERVICE_EXISTS,
// or ERROR_SERVICE_MARKED_FOR_DELETE while one of that name that was deleted still runs, and
// ERROR_INVALID_NAME also for a program's path that no unit can name (control characters, quotes). On failure
// nothing is left installed.
KX_API SC_HANDLE CreateServiceA(SC_HANDLE hManager, const char* pszName, const char* pszDisplayName,
                                DWORD dwAccess, DWORD dwServiceType, DWORD dwStartType, DWORD dwErrorControl,
                                const char* pszBinaryPath, const char* pszGroup, DWORD* pdwTag,
                                const char* pszDependencies, const char* pszAccount, const char* pszPassword);

// Ends a handle of either kind; non-zero on success. It then is none.
KX_API int CloseServiceHandle(SC_HANDLE hObject);

// All that follow give non-zero on success and 0 on failure.

// Uninstalls the service (right DELETE), with what is known of its last run. One that runs goes on until it
// is stopped. ERROR_ACCESS_DENIED also for a service that CreateServiceA didn't install.
KX_API int DeleteService(SC_HANDLE hService);

// Changes the start type (right SERVICE_CHANGE_CONFIG), or nothing for SERVICE_NO_CHANGE. Type and error
// control are SERVICE_NO_CHANGE, all else null.
KX_API int ChangeServiceConfigA(SC_HANDLE hService, DWORD dwServiceType, DWORD dwStartType,
                                DWORD dwErrorControl, const char* pszBinaryPath, const char* pszGroup,
                                DWORD* pdwTag, const char* pszDependencies, const char* pszAccount,
                                const char* pszPassword, const char* pszDisplayName);

// Sets the description (right SERVICE_CHANGE_CONFIG): `pInfo` is a SERVICE_DESCRIPTIONA. A null text changes
// nothing, an empty one takes the description away. Where it is shown it is one line: control characters
// become spaces. ERROR_INVALID_LEVEL for a level but SERVICE_CONFIG_DESCRIPTION.
KX_API int ChangeServiceConfig2A(SC_HANDLE hService, DWORD dwLevel, void* pInfo);

// Reads the status (right SERVICE_QUERY_STATUS) into a buffer for a SERVICE_STATUS_PROCESS, whose size
// `*pcbNeeded` becomes. A service that has gone since it was opened is a stopped one. On failure the buffer
// stays as it was; ERROR_INSUFFICIENT_BUFFER for one too small.
KX_API int QueryServiceStatusEx(SC_HANDLE hService, SC_STATUS_TYPE level, BYTE* pBuffer, DWORD cbBuffer,
                                DWORD* pcbNeeded);

// Has the service started (right SERVICE_START), without arguments: 0 and null. Its state is
// SERVICE_START_PENDING at first, and SERVICE_RUNNING once it says that it is ready or, for a program that
// doesn't, such as all that CreateServiceA installs, has run for half a second. ERROR_SERVICE_ALREADY_RUNNING
// in any state but SERVICE_STOPPED, ERROR_SERVICE_DISABLED for one of that start type.
KX_API int StartServiceA(SC_HANDLE hService, DWORD dwArgs, const char** ppszArgs);

// Has the service stopped (SERVICE_CONTROL_STOP, right SERVICE_STOP) and tells its status then.
// ERROR_SERVICE_NOT_ACTIVE for a stopped one, ERROR_SERVICE_CANNOT_ACCEPT_CTRL while it starts or stops,
// ERROR_DEPENDENT_SERVICES_RUNNING while services that need it are active; ERROR_INVALID_SERVICE_CONTROL for
// another control or a service that can't be stopped.
KX_API int ControlService(SC_HANDLE hService, DWORD dwControl, SERVICE_STATUS* pStatus);

// Lists the services that need this one, those behind them too, each ahead of what it needs (right
// SERVICE_ENUMERATE_DEPENDENTS). The buffer is suitably aligned, and gets the entries and behind them their
// texts. Too small a one, null among them, is left alone: ERROR_MORE_DATA, `*pcbNeeded` the bytes needed,
// `*pnReturned` 0. Without any dependents it succeeds with whatever buffer.
KX_API int EnumDependentServicesA(SC_HANDLE hService, DWORD dwState, ENUM_SERVICE_STATUSA* pServices,
                                  DWORD cbBuffer, DWORD* pcbNeeded, DWORD* pnReturned);
