#include "include/platform/Services.h"
#include "tests/support/ScriptedManager.h"
#include "tests/support/Test.h"

namespace {

// Handles, rights and buffers, on a manager that is scripted.
struct Services : testing::Test
{
    Services()
    {
        m_manager->states["Nv"] = {{SERVICE_RUNNING, 7, 8}};
        KXHost::SetServiceManager(m_manager);
        m_hManager = OpenSCManagerA("", "ServicesActive", SC_MANAGER_ALL_ACCESS);
    }
    ~Services() override
    {
        EXPECT_TRUE(CloseServiceHandle(m_hManager));
        KXHost::SetServiceManager(nullptr);
        EXPECT_EQ(KXHost::LiveHandles(), m_nLive);
    }

    SC_HANDLE Create(const char* pszName, const char* pszPath, const char* pszGroup = nullptr)
    {
        return CreateServiceA(m_hManager, pszName, nullptr, 0, 16, 3, 1, pszPath, pszGroup, nullptr, nullptr,
                              nullptr, nullptr);
    }
    static int Change(SC_HANDLE hService, DWORD dwServiceType, const char* pszTitle = nullptr)
    {
        return ChangeServiceConfigA(hService, dwServiceType, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, nullptr,
                                    nullptr, nullptr, nullptr, nullptr, nullptr, pszTitle);
    }

    const test::VirtualClock m_clock; // the manager writes down what time passes
    const int m_nLive = KXHost::LiveHandles();
    std::shared_ptr<test::ScriptedManager> m_manager = std::make_shared<test::ScriptedManager>();
    SC_HANDLE m_hManager = nullptr;
    SERVICE_STATUS m_status{};
    SERVICE_STATUS_PROCESS m_process{};
    BYTE* const m_pProcess = reinterpret_cast<BYTE*>(&m_process);
    SERVICE_DESCRIPTIONA m_description{};
    DWORD m_needed = 0;
    DWORD m_count = 0;
};

// The call fails with this error.
#define EXPECT_ERROR(error, call)                                                                            \
    SetLastError(0);                                                                                         \
    EXPECT_FALSE(call);                                                                                      \
    EXPECT_EQ(GetLastError(), DWORD{error})

TEST_F(Services, HandlesAreOfTheirKindAndHaveTheirRightsUntilTheyAreClosed)
{
    const SC_HANDLE hNone = OpenServiceA(m_hManager, "Nv", 0);
    const SC_HANDLE hClosed = OpenServiceA(m_hManager, "Nv", SERVICE_ALL_ACCESS);
    EXPECT_TRUE(CloseServiceHandle(hClosed));
    EXPECT_ERROR(ERROR_INVALID_HANDLE, CloseServiceHandle(hClosed));
    for (const SC_HANDLE hService : {hNone, hClosed, m_hManager, SC_HANDLE{}}) {
        const DWORD error = hService == hNone ? ERROR_ACCESS_DENIED : ERROR_INVALID_HANDLE;
        EXPECT_ERROR(error, DeleteService(hService));
        EXPECT_ERROR(error, Change(hService, SERVICE_NO_CHANGE));
        EXPECT_ERROR(error, ChangeServiceConfig2A(hService, 1, &m_description));
        EXPECT_ERROR(error, QueryServiceStatusEx(hService, {}, m_pProcess, sizeof m_process, &m_needed));
        EXPECT_ERROR(error, StartServiceA(hService, 0, nullptr));
        EXPECT_ERROR(error, ControlService(hService, SERVICE_CONTROL_STOP, &m_status));
        EXPECT_ERROR(error, EnumDependentServicesA(hService, 1, nullptr, 0, &m_needed, &m_count));
    }
    EXPECT_ERROR(ERROR_INVALID_HANDLE, OpenServiceA(hNone, "Nv", 0));
    EXPECT_TRUE(CloseServiceHandle(hNone));
    const SC_HANDLE hReader = OpenSCManagerA(nullptr, nullptr, 0);
    EXPECT_ERROR(ERROR_ACCESS_DENIED, CreateServiceA(hReader, "x", nullptr, 0, 16, 3, 1, "C:\\x", nullptr,
                                                     nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(CloseServiceHandle(hReader));
    EXPECT_EQ(m_manager->Calls(), "manager f003f; open Nv 0; open Nv f01ff; manager 0;");
}

TEST_F(Services, ArgumentsThatCantBeUsedReachNoManager)
{
    EXPECT_ERROR(RPC_S_SERVER_UNAVAILABLE, OpenSCManagerA("far", nullptr, 0));
    EXPECT_ERROR(ERROR_DATABASE_DOES_NOT_EXIST, OpenSCManagerA(nullptr, "Other", 0));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, OpenServiceA(m_hManager, nullptr, 0));
    EXPECT_ERROR(ERROR_INVALID_NAME, OpenServiceA(m_hManager, "", 0));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, Create(nullptr, "C:\\x"));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, Create("x", "C:\\x", "group"));
    const SC_HANDLE hService = OpenServiceA(m_hManager, "Nv", SERVICE_ALL_ACCESS);
    m_manager->Calls();
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, Change(hService, SERVICE_WIN32_OWN_PROCESS));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, Change(hService, SERVICE_NO_CHANGE, "title"));
    EXPECT_TRUE(Change(hService, SERVICE_NO_CHANGE));
    EXPECT_ERROR(ERROR_INVALID_LEVEL, ChangeServiceConfig2A(hService, 2, &m_description));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, ChangeServiceConfig2A(hService, 1, nullptr));
    EXPECT_TRUE(ChangeServiceConfig2A(hService, 1, &m_description));
    EXPECT_ERROR(ERROR_INVALID_LEVEL,
                 QueryServiceStatusEx(hService, SC_STATUS_TYPE{1}, m_pProcess, 99, &m_needed));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, QueryServiceStatusEx(hService, {}, m_pProcess, 99, nullptr));
    EXPECT_ERROR(ERROR_INSUFFICIENT_BUFFER, QueryServiceStatusEx(hService, {}, m_pProcess, 35, &m_needed));
    EXPECT_EQ(m_needed, sizeof m_process);
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, StartServiceA(hService, 1, nullptr));
    EXPECT_ERROR(ERROR_INVALID_SERVICE_CONTROL, ControlService(hService, 2, &m_status));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, ControlService(hService, SERVICE_CONTROL_STOP, nullptr));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER,
                 EnumDependentServicesA(hService, 0, nullptr, 0, &m_needed, &m_count));
    EXPECT_ERROR(ERROR_INVALID_PARAMETER, EnumDependentServicesA(hService, 1, nullptr, 0, nullptr, &m_count));
    EXPECT_EQ(m_manager->Calls(), "");
    EXPECT_EQ(m_process.dwCurrentState, 0u);
    EXPECT_TRUE(CloseServiceHandle(hService));
}

TEST_F(Services, DependentsFillABufferOrLeaveItAlone)
{
    const SC_HANDLE hService = OpenServiceA(m_hManager, "Nv", SERVICE_ENUMERATE_DEPENDENTS);
    for (const auto& [name, state] : {std::pair{"Idle", SERVICE_STOPPED}, {"Busy", SERVICE_RUNNING}}) {
        m_manager->dependents.push_back({name, "Title", {}});
        m_manager->dependents.back().status.dwCurrentState = state;
    }
    for (const DWORD dwState : {SERVICE_ACTIVE, SERVICE_INACTIVE, SERVICE_STATE_ALL}) {
        EXPECT_ERROR(ERROR_MORE_DATA,
                     EnumDependentServicesA(hService, dwState, nullptr, 999, &m_needed, &m_count));
        const DWORD n = dwState == SERVICE_STATE_ALL ? 2 : 1;
        EXPECT_EQ(m_needed, n * (sizeof(ENUM_SERVICE_STATUSA) + sizeof "Idle" + sizeof "Title"));
        // It is on the heap, so that AddressSanitizer sees its end.
        const std::unique_ptr<char[]> buffer = std::make_unique<char[]>(m_needed);
        auto* const entries = reinterpret_cast<ENUM_SERVICE_STATUSA*>(buffer.get());
        EXPECT_ERROR(ERROR_MORE_DATA,
                     EnumDependentServicesA(hService, dwState, entries, m_needed - 1, &m_needed, &m_count));
        EXPECT_EQ(m_count, 0u);
        EXPECT_EQ(entries->lpServiceName, nullptr);
        ASSERT_TRUE(EnumDependentServicesA(hService, dwState, entries, m_needed, &m_needed, &m_count));
        EXPECT_EQ(m_count, n);
        EXPECT_STREQ(entries[n - 1].lpServiceName, dwState == SERVICE_INACTIVE ? "Idle" : "Busy");
        EXPECT_STREQ(entries[0].lpDisplayName, "Title");
        EXPECT_EQ(entries[0].ServiceStatus.dwCurrentState == SERVICE_RUNNING, dwState == SERVICE_ACTIVE);
    }
    EXPECT_TRUE(CloseServiceHandle(hService));
}

} // namespace
