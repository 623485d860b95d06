#include "include/KXWinService.h"

#include "tests/support/ScriptedManager.h"
#include "tests/support/Test.h"

namespace {

using test::State;
using testing::ElementsAre;

constexpr DWORD kStopped = SERVICE_STOPPED, kStopping = SERVICE_STOP_PENDING, kRunning = SERVICE_RUNNING;

// Reads "STATE[:CHECKPOINT[:HINT]][=EXITCODE][!]"s; with "!" the query fails with 6.
std::deque<State> States(const std::string& text)
{
    std::deque<State> states;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        State state;
        std::sscanf(word.c_str(), "%u:%u:%u", &state.dwState, &state.dwCheckPoint, &state.dwWaitHint);
        std::sscanf(word.c_str(), "%*u=%u", &state.dwExitCode);
        state.dwQueryError = word.ends_with('!') ? 6 : 0;
        states.push_back(state);
    }
    return states;
}

struct OpenService : CKXWinService
{
    using CKXWinService::CKXWinService;
    using CKXWinService::OpenSCM;
    using CKXWinService::StopDependentServices;
};

using Operation = std::function<int(OpenService&)>;

// Whether it was told, whether the service exists, and its state.
using Status = std::array<unsigned long, 3>;

Status StatusOf(CKXWinService& service)
{
    int bExists = 7;
    unsigned long dwState = 7;
    const auto bTold = static_cast<unsigned long>(service.GetStatus(bExists, dwState));
    return {bTold, static_cast<unsigned long>(bExists), dwState};
}

int GetStatus(OpenService& service)
{
    return static_cast<int>(StatusOf(service)[0]);
}

// An operation, its calls and its text, and the call that fails with its text.
const std::tuple<Operation, const char*, const char*, const char*, const char*> kOperations[] = {
    {[](auto& service) { return service.Create("C:\\nv.exe", 3, "Norvale"); }, "create Nv f01ff;",
     "Service installed successfully\n", "create", "CreateService failed (5)\n"},
    {[](auto& service) { return service.Delete(); }, "open Nv 10000; delete Nv;",
     "Service deleted successfully\n", "delete", "DeleteService failed (5)\n"},
    {[](auto& service) { return service.ChangeDesc("says"); }, "open Nv 2; describe Nv says;",
     "Service description updated successfully.\n", "describe", "ChangeServiceConfig2 failed\n"},
    {[](auto& service) { return service.ChangeStartType(4); }, "open Nv 2; type Nv 4;",
     "Service enabled successfully.\n", "type", "ChangeServiceConfig failed (5)\n"},
    {[](auto& service) { return service.DoStart(); }, "open Nv f01ff; query Nv; start Nv; query Nv;",
     "Service start pending...\nService started successfully.\n", "start", "StartService failed (5)\n"},
    {[](auto& service) { return service.DoStop(); }, "open Nv 2c; query Nv; list Nv; stop Nv;",
     "Service stopped successfully\n", "stop", "ControlService failed (5)\n"},
    {GetStatus, "open Nv 4; query Nv;", "", "query", "QueryServiceStatusEx failed (5)\n"},
};

// One service, "Nv", on a manager that is scripted and a clock that sleepers move.
struct WinService : testing::Test
{
    WinService() { KXHost::SetServiceManager(m_manager); }
    ~WinService() override { KXHost::SetServiceManager(nullptr); }

    void Script(const char* pszStates) { m_manager->states["Nv"] = States(pszStates); }

    // Makes a service, carries out an operation and takes down what it prints and calls behind the opening.
    int Run(const Operation& operation)
    {
        const test::NoLeak noLeak;
        const test::DebugText text;
        OpenService service("Nv");
        m_manager->Calls();
        const int nResult = operation(service);
        m_text = text.Text();
        m_calls = m_manager->Calls();
        return nResult;
    }

    // Runs an operation on the states that a text lists.
    struct Case
    {
        const char* states;
        int result;
        std::string text;
        const char* calls; // behind the first query, without the service's name
    };
    void Check(const Case& expected, const std::string& head, const Operation& operation)
    {
        Script(expected.states);
        EXPECT_EQ(Run(operation), expected.result) << expected.states;
        EXPECT_EQ(m_text, expected.text) << expected.states;
        for (std::size_t at; (at = m_calls.find(" Nv;")) != m_calls.npos;)
            m_calls.erase(at, 3);
        EXPECT_EQ(m_calls, head + " query;" + expected.calls) << expected.states;
    }

    test::VirtualClock m_clock{1'700'000'000, KXHost::VirtualSleep::Advances};
    std::shared_ptr<test::ScriptedManager> m_manager = std::make_shared<test::ScriptedManager>();
    std::string m_text;
    std::string m_calls;
};

TEST_F(WinService, EachOperationAsksForTheRightsItNeedsAndTellsHowItWent)
{
    for (const auto& [run, calls, text, failing, failure] : kOperations) {
        const bool bStop = std::string_view(failing) == "stop";
        const auto script = [&] { Script(bStop ? "4 1" : "1 4"); };
        script();
        EXPECT_EQ(Run(run), 1);
        EXPECT_EQ(m_calls, calls);
        EXPECT_EQ(m_text, text);

        script();
        m_manager->errors = {{failing, ERROR_ACCESS_DENIED}};
        EXPECT_EQ(Run(run), 0);
        EXPECT_EQ(m_text, failure);
        if (std::string_view(failing) == "create") continue;
        m_manager->errors = {{"open", ERROR_SERVICE_DOES_NOT_EXIST}};
        EXPECT_EQ(Run(run), 0);
        EXPECT_EQ(m_text, "OpenService failed (1060)\n");
        m_manager->errors.clear();
    }
    const KXHost::ServiceSettings& created = m_manager->created;
    EXPECT_EQ(created.strDisplayName, "Norvale");
    EXPECT_EQ(created.strBinaryPath, "C:\\nv.exe");
    EXPECT_THAT((std::array{created.dwServiceType, created.dwStartType, created.dwErrorControl}),
                ElementsAre(SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL));
}

TEST_F(WinService, WithoutAManagerEachOperationTriesAgain)
{
    Script("4");
    m_manager->errors = {{"manager", RPC_S_SERVER_UNAVAILABLE}};
    const test::DebugText text;
    OpenService service("Nv");
    for (const auto& operation : kOperations)
        EXPECT_EQ(std::get<0>(operation)(service), 0);
    EXPECT_EQ(service.OpenSCM(), 0);
    std::string expected;
    for (int n = 0; n < 9; ++n)
        expected += "OpenSCManager failed (1722)\n";
    EXPECT_EQ(text.Text(), expected);
    m_manager->Calls();
    m_manager->errors.clear();
    for (int n = 0; n < 2; ++n) // once
        EXPECT_EQ(service.OpenSCM(), 1);
    for (int n = 0; n < 2; ++n)
        EXPECT_EQ(StatusOf(service), (Status{1, 1, kRunning}));
    EXPECT_EQ(m_manager->Calls(), "manager f003f; open Nv 4; query Nv; open Nv 4; query Nv;");
    EXPECT_EQ(text.Text(), expected);
}

TEST_F(WinService, AStatusIsOfAnExistingServiceEvenWhereItCantBeQueried)
{
    CKXWinService service("Nv");
    EXPECT_EQ(StatusOf(service), (Status{0, 0, kStopped}));
    Script("4!");
    EXPECT_EQ(StatusOf(service), (Status{0, 1, kStopped}));
}

TEST_F(WinService, AStartGoesByStatesCheckPointsAndHints)
{
    const std::string pending = "Service start pending...\n",
                      good = pending + "Service started successfully.\n",
                      query = "QueryServiceStatusEx failed (6)\n",
                      late = "Timeout waiting for service to stop\n";
    const auto report = [](const char* state, const char* exit, const char* point, const char* hint) {
        return std::string("Service not started. \n  Current State: ") + state + "\n  Exit Code: " + exit +
               "\n  Check Point: " + point + "\n  Wait Hint: " + hint + "\n";
    };
    const std::string already = "Cannot start the service because it is already running\n";
    const Case cases[] = {
        {"4", 0, already, ""},
        {"2", 0, already, ""},
        {"1!", 0, query, ""},
        // The wait is a tenth of the hint, from one second to ten.
        {"1 2:0:0 4", 1, good, " start; query; +1000 query;"},
        {"1 2:0:10009 4", 1, good, " start; query; +1000 query;"},
        {"1 2:0:50000 4", 1, good, " start; query; +5000 query;"},
        {"1 2:0:200000 4", 1, good, " start; query; +10000 query;"},
        // Each by the hint of its own state. Progress is a check point above the last that counted.
        {"1 2:1:1500 2:2:1500 2:3:20000 4", 1, good, " start; query; +1000 query; +1000 query; +2000 query;"},
        {"1 2:5:1999 2:5:1999 2:4:1999 4", 0, pending + report("2", "0", "4", "1999"),
         " start; query; +1000 query; +1000 query;"},
        {"1 2:5:2000 2:5:2000 2:5:2000 4", 1, good, " start; query; +1000 query; +1000 query; +1000 query;"},
        // No time is left, but it runs.
        {"1 2:1:999 4:0:0", 1, good, " start; query; +1000 query;"},
        {"1 2:1:5 1=1067", 0, pending + report("1", "1067", "0", "0"), " start; query; +1000 query;"},
        {"1 3", 0, pending + report("3", "0", "0", "0"), " start; query;"},
        // A query that fails ends the wait, and the state stays as last read.
        {"1 2:3:4 4!", 0, pending + query + report("2", "0", "3", "4"), " start; query; +1000 query;"},
        {"1 4!", 0, pending + query, " start; query;"},
        // A stop under way is waited for.
        {"3:1:9000 3:2:30000 3:3:1000 1:0:5000 4", 1, good,
         " +1000 query; +3000 query; +1000 query; start; query;"},
        {"3:1:1500 3:1:1500 3:1:1500", 0, late, " +1000 query; +1000 query;"},
        {"3:1:1500 1:0:999", 0, late, " +1000 query;"},
        {"3:1:1500 1!", 0, query, " +1000 query;"},
    };
    for (const Case& one : cases)
        Check(one, "open Nv f01ff;", [](auto& service) { return service.DoStart(); });
}

TEST_F(WinService, AStopGoesByStatesAndHintsAndHasThirtySeconds)
{
    const std::string pending = "Service stop pending...\n", query = "QueryServiceStatusEx failed (6)\n",
                      good = "Service stopped successfully\n", late = "Wait timed out\n";
    const Case cases[] = {
        {"1", 0, "Service is already stopped.\n", ""},
        {"4!", 0, query, ""},
        // The plain hint, also one of 0.
        {"4 3:0:700 3:0:12345 3:0:0 1:0:99", 1, good, " list; stop; +700 query; +12345 query; query;"},
        {"2 4:0:15000 4:0:15000 3:0:1 3", 0, late, " list; stop; +15000 query; +15000 query; +1 query;"},
        {"4 3:0:60000 1", 1, good, " list; stop; +60000 query;"},
        {"4 3:0:1 1!", 0, query, " list; stop; +1 query;"},
        // A stop that is under way when it begins.
        {"3:0:20000 3:0:0 1", 1, pending + pending + "Service stopped successfully.\n",
         " +2000 query; +1000 query;"},
        {"3:0:100000 3:1:100000 3:2:100000 3 3", 0,
         pending + pending + pending + pending + "Service stop timed out.\n",
         " +10000 query; +10000 query; +10000 query; +1000 query;"},
        {"3 1!", 0, pending + query, " +1000 query;"},
        {"3 4 1", 1, pending + good, " +1000 query; list; stop;"},
    };
    for (const Case& one : cases)
        Check(one, "open Nv 2c;", [](auto& service) { return service.DoStop(); });
    // Each wait is told of before it begins.
    Script("3:0:20000 3:0:30000 1");
    std::vector<DWORD> told;
    const DWORD dwBegin = GetTickCount();
    const int nObserver = KXHost::AddDebugObserver([&](std::string_view text) {
        if (text.ends_with("pending...\n")) told.push_back(GetTickCount() - dwBegin);
    });
    EXPECT_EQ(Run([](auto& service) { return service.DoStop(); }), 1);
    KXHost::RemoveDebugObserver(nObserver);
    EXPECT_EQ(told, (std::vector<DWORD>{0, 2000}));
    // The time of the opening counts too.
    Script("4 3:0:1");
    m_manager->onCall = [](const std::string& call) { Sleep(call == "open Nv" ? 29'999 : 0); };
    EXPECT_EQ(Run([](auto& service) { return service.DoStop(); }), 0);
    EXPECT_EQ(m_text, late);
    EXPECT_EQ(m_calls, "open Nv 2c; +29999 query Nv; list Nv; stop Nv; +1 query Nv; +1 query Nv;");
}

TEST_F(WinService, DependentsAreStoppedInTurnUntilOneFails)
{
    using Services = std::vector<KXHost::DependentService>;
    const auto listed = [](const char* name, DWORD dwState) {
        KXHost::DependentService service{name, "", {}};
        service.status.dwCurrentState = dwState;
        return service;
    };
    const auto stop = [](OpenService& service) {
        GetStatus(service);
        return service.StopDependentServices();
    };
    // Without a handle, and with one that may not list them.
    EXPECT_EQ(Run(stop), 0);
    Script("4");
    EXPECT_EQ(Run(stop), 0);
    const auto stopAlone = [](OpenService& service) {
        service.DoStart(); // which opens a handle that may, of a service that runs
        return service.StopDependentServices();
    };
    EXPECT_EQ(Run(stopAlone), 1);

    m_manager->dependents = Services{listed("A", kRunning), listed("Idle", kStopped), listed("B", kStopping)};
    struct Walk
    {
        std::map<std::string, const char*> states;
        std::string calls;
        std::map<std::string, DWORD> errors{};
        int result = 0; // of the dependents' stop by itself
    };
    const Walk cases[] = {
        {{{"A", "3:0:300 3:0:20 1"}, {"B", "1"}},
         "list Nv; open A 24; stop A; +300 query A; +20 query A; open B 24; stop B; ",
         {},
         1},
        {{{"B", "1"}}, "list Nv; open A 24; "},
        {{{"A", "1"}, {"B", "1"}}, "list Nv; open A 24; stop A; ", {{"stop A", 1051}}},
        {{{"A", "3:0:5 1!"}, {"B", "1"}}, "list Nv; open A 24; stop A; +5 query A; "},
        // All of them together have the one limit; the service's own is over then too.
        {{{"A", "3:0:29000 1"}, {"B", "3:0:1000 3:0:1"}},
         "list Nv; open A 24; stop A; +29000 query A; open B 24; stop B; +1000 query B; +1 query B; "},
        {{{"A", "3:0:10000"}, {"B", "1"}},
         "list Nv; open A 24; stop A; +10000 query A; +10000 query A; +10000 query A; +10000 query A; "},
        {{}, "", {{"list", 8}}},
    };
    for (const Walk& one : cases) {
        m_manager->states.clear();
        for (const auto& [name, states] : one.states)
            m_manager->states[name] = States(states);
        m_manager->errors = one.errors;
        Script("4 1");
        EXPECT_EQ(Run([](auto& service) { return service.DoStop(); }), 1);
        EXPECT_EQ(m_text, "Service stopped successfully\n");
        EXPECT_EQ(m_calls, "open Nv 2c; query Nv; list Nv; " + one.calls + "stop Nv;");
        for (const auto& [name, states] : one.states)
            m_manager->states[name] = States(states);
        Script("4");
        EXPECT_EQ(Run(stopAlone), one.result) << one.calls;
    }
}

TEST_F(WinService, AServiceOpensItsHandleAnewAndACopyHasItsOwn)
{
    Script("4");
    const int nBefore = KXHost::LiveHandles();
    const auto count = [&] { return KXHost::LiveHandles() - nBefore; };
    {
        CKXWinService service("Nv");
        EXPECT_EQ(count(), 1);
        EXPECT_EQ(service.ChangeDesc("a"), 1);
        EXPECT_EQ(service.ChangeStartType(2), 1);
        EXPECT_EQ(count(), 2);
        CKXWinService copy(service);
        EXPECT_EQ(count(), 2);
        EXPECT_EQ(copy.ChangeDesc("b"), 1);
        EXPECT_EQ(count(), 4);
        CKXWinService other("Other");
        other = copy;
        copy = static_cast<const CKXWinService&>(copy);
        EXPECT_EQ(other.ChangeDesc("c"), 1);
        EXPECT_EQ(count(), 6);
        other = copy; // closes its own
        EXPECT_EQ(count(), 5);
        // A handle whose service can't be opened any more is none.
        m_manager->errors = {{"open", 5}};
        EXPECT_EQ(service.Delete(), 0);
        EXPECT_EQ(count(), 4);
        m_manager->errors.clear();
        EXPECT_EQ(service.Delete(), 1);
        // Create takes the place of the handle, which stays open.
        EXPECT_EQ(service.Create("C:\\a", 2, ""), 1);
        EXPECT_EQ(count(), 6);
        EXPECT_EQ(m_manager->created.strDisplayName, "Nv");
    }
    EXPECT_EQ(count(), 1);
}

TEST_F(WinService, WhatAManagerThrowsIsAFailure)
{
    Script("4");
    m_manager->onCall = [](const std::string& call) {
        if (call == "query Nv") throw 1;
        if (call == "delete Nv") throw std::bad_alloc();
    };
    EXPECT_EQ(Run([](auto& service) { return service.DoStop(); }), 0);
    EXPECT_EQ(m_text, "QueryServiceStatusEx failed (31)\n");
    EXPECT_EQ(Run([](auto& service) { return service.Delete(); }), 0);
    EXPECT_EQ(m_text, "DeleteService failed (8)\n");
}

} // namespace
