#include "KXWinService.h"

#include "KXDebug.h"
#include "platform/Clock.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

namespace {

constexpr DWORD kStopLimit = 30'000;
constexpr DWORD kStopRights = SERVICE_STOP | SERVICE_QUERY_STATUS | SERVICE_ENUMERATE_DEPENDENTS;

int CallFailed(char const* pszCall)
{
    KXPrintDebugStr("%s failed (%d)\n", pszCall, static_cast<int>(GetLastError()));
    return 0;
}

int Query(SC_HANDLE hService, SERVICE_STATUS_PROCESS& status)
{
    DWORD cbNeeded = 0;
    return QueryServiceStatusEx(hService, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status),
                                sizeof status, &cbNeeded);
}

bool QueryOrTell(SC_HANDLE hService, SERVICE_STATUS_PROCESS& status)
{
    return Query(hService, status) || CallFailed("QueryServiceStatusEx");
}

bool SendStop(SC_HANDLE hService, SERVICE_STATUS_PROCESS& status)
{
    SERVICE_STATUS told{};
    if (!ControlService(hService, SERVICE_CONTROL_STOP, &told)) return false;
    status.dwCurrentState = told.dwCurrentState;
    status.dwWaitHint = told.dwWaitHint;
    return true;
}

DWORD WaitTime(SERVICE_STATUS_PROCESS const& status)
{
    return std::clamp<DWORD>(status.dwWaitHint / 10, 1'000, 10'000);
}

bool IsStopOverdue(DWORD dwBegin)
{
    return GetTickCount() - dwBegin > kStopLimit;
}

// A pending service makes progress while its check point rises.
class Progress
{
public:
    explicit Progress(SERVICE_STATUS_PROCESS const& status)
        : m_dwNoted(GetTickCount()), m_dwCheckPoint(status.dwCheckPoint)
    {
    }

    // Whether there has been none for longer than the service said it needs.
    bool IsOverdue(SERVICE_STATUS_PROCESS const& status)
    {
        if (status.dwCheckPoint <= m_dwCheckPoint) return GetTickCount() - m_dwNoted > status.dwWaitHint;
        *this = Progress(status);
        return false;
    }

private:
    DWORD m_dwNoted;
    DWORD m_dwCheckPoint;
};

// Before a start: whether a stop that is under way has come to its end.
bool AwaitStop(SC_HANDLE hService, SERVICE_STATUS_PROCESS& status)
{
    Progress progress(status);
    while (status.dwCurrentState == SERVICE_STOP_PENDING) {
        Sleep(WaitTime(status));
        if (!QueryOrTell(hService, status)) return false;
        if (!progress.IsOverdue(status)) continue;
        KXPrintDebugStr("Timeout waiting for service to stop\n");
        return false;
    }
    return true;
}

void AwaitStart(SC_HANDLE hService, SERVICE_STATUS_PROCESS& status)
{
    Progress progress(status);
    while (status.dwCurrentState == SERVICE_START_PENDING) {
        Sleep(WaitTime(status));
        if (!QueryOrTell(hService, status) || progress.IsOverdue(status)) return;
    }
}

struct ServiceCloser
{
    using pointer = SC_HANDLE;
    void operator()(SC_HANDLE hService) const { CloseServiceHandle(hService); }
};
using ServicePtr = std::unique_ptr<SC_HANDLE, ServiceCloser>;

bool StopDependent(SC_HANDLE hSCManager, char const* pszName, DWORD dwBegin)
{
    const ServicePtr service(OpenServiceA(hSCManager, pszName, SERVICE_STOP | SERVICE_QUERY_STATUS));
    SERVICE_STATUS_PROCESS status{};
    if (!service || !SendStop(service.get(), status)) return false;
    while (status.dwCurrentState != SERVICE_STOPPED) {
        Sleep(status.dwWaitHint);
        if (!Query(service.get(), status)) return false;
        if (status.dwCurrentState != SERVICE_STOPPED && IsStopOverdue(dwBegin)) return false;
    }
    return true;
}

struct Free
{
    void operator()(void* p) const { std::free(p); }
};

} // namespace

CKXWinService::CKXWinService(CString const& strServiceName) : m_strServiceName(strServiceName)
{
    OpenSCM();
}

CKXWinService::CKXWinService(CKXWinService const& other)
    : m_strServiceName(other.m_strServiceName),
      m_strDisplayName(other.m_strDisplayName),
      m_strDescription(other.m_strDescription),
      m_strBinaryPath(other.m_strBinaryPath),
      m_dwStartType(other.m_dwStartType)
{
}

CKXWinService& CKXWinService::operator=(CKXWinService const& other)
{
    if (this == &other) return *this;
    CloseService();
    m_strServiceName = other.m_strServiceName;
    m_strDisplayName = other.m_strDisplayName;
    m_strDescription = other.m_strDescription;
    m_strBinaryPath = other.m_strBinaryPath;
    m_dwStartType = other.m_dwStartType;
    return *this;
}

CKXWinService::~CKXWinService()
{
    CloseService();
    if (m_hSCManager) CloseServiceHandle(m_hSCManager);
}

int CKXWinService::Create(CString const& strBinaryPath, unsigned long dwStartType, CString strDisplayName)
{
    m_strBinaryPath = strBinaryPath;
    m_dwStartType = dwStartType;
    m_strDisplayName = std::move(strDisplayName);
    if (!OpenSCM()) return 0;
    m_hService =
        CreateServiceA(m_hSCManager, m_strServiceName, m_strDisplayName, SERVICE_ALL_ACCESS,
                       SERVICE_WIN32_OWN_PROCESS, static_cast<DWORD>(m_dwStartType), SERVICE_ERROR_NORMAL,
                       m_strBinaryPath, nullptr, nullptr, nullptr, nullptr, nullptr);
    if (!m_hService) return CallFailed("CreateService");
    KXPrintDebugStr("Service installed successfully\n");
    return 1;
}

int CKXWinService::Delete()
{
    if (!OpenSCM() || !Reopen(DELETE)) return 0;
    if (!DeleteService(m_hService)) return CallFailed("DeleteService");
    KXPrintDebugStr("Service deleted successfully\n");
    return 1;
}

int CKXWinService::ChangeDesc(CString const& strDescription)
{
    m_strDescription = strDescription;
    if (!OpenSCM() || !Reopen(SERVICE_CHANGE_CONFIG)) return 0;
    CString strText = m_strDescription; // the record takes a buffer that could be written to
    SERVICE_DESCRIPTIONA info{strText.GetBuffer()};
    if (!ChangeServiceConfig2A(m_hService, SERVICE_CONFIG_DESCRIPTION, &info)) {
        KXPrintDebugStr("ChangeServiceConfig2 failed\n");
        return 0;
    }
    KXPrintDebugStr("Service description updated successfully.\n");
    return 1;
}

int CKXWinService::ChangeStartType(unsigned long dwStartType)
{
    if (!OpenSCM() || !Reopen(SERVICE_CHANGE_CONFIG)) return 0;
    if (!ChangeServiceConfigA(m_hService, SERVICE_NO_CHANGE, static_cast<DWORD>(dwStartType),
                              SERVICE_NO_CHANGE, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                              nullptr))
        return CallFailed("ChangeServiceConfig");
    KXPrintDebugStr("Service enabled successfully.\n");
    return 1;
}

int CKXWinService::DoStart()
{
    if (!OpenSCM() || !Reopen(SERVICE_ALL_ACCESS)) return 0;
    SERVICE_STATUS_PROCESS status{};
    if (!QueryOrTell(m_hService, status)) return 0;
    if (status.dwCurrentState != SERVICE_STOPPED && status.dwCurrentState != SERVICE_STOP_PENDING) {
        KXPrintDebugStr("Cannot start the service because it is already running\n");
        return 0;
    }
    if (!AwaitStop(m_hService, status)) return 0;
    if (!StartServiceA(m_hService, 0, nullptr)) return CallFailed("StartService");
    KXPrintDebugStr("Service start pending...\n");
    if (!QueryOrTell(m_hService, status)) return 0;
    AwaitStart(m_hService, status);
    if (status.dwCurrentState == SERVICE_RUNNING) {
        KXPrintDebugStr("Service started successfully.\n");
        return 1;
    }
    KXPrintDebugStr("Service not started. \n");
    KXPrintDebugStr("  Current State: %d\n", static_cast<int>(status.dwCurrentState));
    KXPrintDebugStr("  Exit Code: %d\n", static_cast<int>(status.dwWin32ExitCode));
    KXPrintDebugStr("  Check Point: %d\n", static_cast<int>(status.dwCheckPoint));
    KXPrintDebugStr("  Wait Hint: %d\n", static_cast<int>(status.dwWaitHint));
    return 0;
}

int CKXWinService::DoStop()
{
    const DWORD dwBegin = GetTickCount();
    if (!OpenSCM() || !Reopen(kStopRights)) return 0;
    SERVICE_STATUS_PROCESS status{};
    if (!QueryOrTell(m_hService, status)) return 0;
    if (status.dwCurrentState == SERVICE_STOPPED) {
        KXPrintDebugStr("Service is already stopped.\n");
        return 0;
    }
    while (status.dwCurrentState == SERVICE_STOP_PENDING) {
        KXPrintDebugStr("Service stop pending...\n");
        Sleep(WaitTime(status));
        if (!QueryOrTell(m_hService, status)) return 0;
        if (status.dwCurrentState == SERVICE_STOPPED) {
            KXPrintDebugStr("Service stopped successfully.\n");
            return 1;
        }
        if (IsStopOverdue(dwBegin)) {
            KXPrintDebugStr("Service stop timed out.\n");
            return 0;
        }
    }

    StopDependentServices();
    if (!SendStop(m_hService, status)) return CallFailed("ControlService");
    while (status.dwCurrentState != SERVICE_STOPPED) {
        Sleep(status.dwWaitHint);
        if (!QueryOrTell(m_hService, status)) return 0;
        if (status.dwCurrentState != SERVICE_STOPPED && IsStopOverdue(dwBegin)) {
            KXPrintDebugStr("Wait timed out\n");
            return 0;
        }
    }
    KXPrintDebugStr("Service stopped successfully\n");
    return 1;
}

int CKXWinService::GetStatus(int& bExists, unsigned long& dwState)
{
    bExists = 0;
    dwState = SERVICE_STOPPED;
    if (!OpenSCM() || !Reopen(SERVICE_QUERY_STATUS)) return 0;
    bExists = 1;
    SERVICE_STATUS_PROCESS status{};
    if (!QueryOrTell(m_hService, status)) return 0;
    dwState = status.dwCurrentState;
    return 1;
}

int CKXWinService::OpenSCM()
{
    if (m_hSCManager) return 1;
    m_hSCManager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    return m_hSCManager ? 1 : CallFailed("OpenSCManager");
}

int CKXWinService::StopDependentServices()
{
    const DWORD dwBegin = GetTickCount();
    DWORD cbNeeded = 0;
    DWORD nCount = 0;
    if (EnumDependentServicesA(m_hService, SERVICE_ACTIVE, nullptr, 0, &cbNeeded, &nCount)) return 1;
    if (GetLastError() != ERROR_MORE_DATA) return 0;
    const std::unique_ptr<void, Free> buffer(std::calloc(1, cbNeeded));
    if (!buffer) return 0;
    auto* const pServices = static_cast<ENUM_SERVICE_STATUSA*>(buffer.get());
    if (!EnumDependentServicesA(m_hService, SERVICE_ACTIVE, pServices, cbNeeded, &cbNeeded, &nCount))
        return 0;
    for (DWORD n = 0; n < nCount; ++n)
        if (!StopDependent(m_hSCManager, pServices[n].lpServiceName, dwBegin)) return 0;
    return 1;
}

// Opens the service anew, with the rights that an operation needs.
int CKXWinService::Reopen(DWORD dwAccess)
{
    CloseService();
    m_hService = OpenServiceA(m_hSCManager, m_strServiceName, dwAccess);
    return m_hService ? 1 : CallFailed("OpenService");
}

void CKXWinService::CloseService()
{
    if (const SC_HANDLE hService = std::exchange(m_hService, nullptr)) CloseServiceHandle(hService);
}
