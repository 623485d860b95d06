#include "tests/platform/services/StandIn.h"

namespace {

using Strings = std::vector<std::string>;

struct Systemd : testing::Test
{
    static void SetUpTestSuite() { s_bus = std::make_unique<test::PrivateBus>(); }
    static void TearDownTestSuite() { s_bus.reset(); }

    Systemd()
    {
        std::filesystem::create_directories(m_units);
        m_standIn.emplace(*s_bus, m_units);
        Use(s_bus->Address());
    }

    void Use(const std::string& address, DWORD dwTimeout = 20'000)
    {
        m_manager = KXHost::MakeSystemdManager({address, m_units, dwTimeout});
    }

    DWORD OpenManager() { return m_manager->OpenManager(0); }
    DWORD Open(const CString& strName) { return m_manager->OpenService(strName, 0); }
    DWORD Create(const CString& strName, const CString& strPath = "C:\\bin\\nv", DWORD dwStartType = 3,
                 const CString& strTitle = "Norvale")
    {
        return m_manager->Create(strName, {strTitle, strPath, SERVICE_WIN32_OWN_PROCESS, dwStartType, 1}, 0);
    }
    DWORD Delete(const CString& strName) { return m_manager->Delete(strName); }
    DWORD SetType(const char* pszName, DWORD dwType) { return m_manager->SetStartType(pszName, dwType); }
    DWORD Describe(const char* pszName, const char* psz) { return m_manager->SetDescription(pszName, psz); }
    DWORD Start(const char* pszName) { return m_manager->Start(pszName); }
    DWORD Stop(const char* pszName)
    {
        m_stopped = {};
        return m_manager->Stop(pszName, m_stopped);
    }
    // State, check point and hint.
    using Progress = std::array<DWORD, 3>;
    static Progress ProgressOf(const SERVICE_STATUS_PROCESS& status)
    {
        return {status.dwCurrentState, status.dwCheckPoint, status.dwWaitHint};
    }
    SERVICE_STATUS_PROCESS Status(const char* pszName)
    {
        SERVICE_STATUS_PROCESS status{};
        EXPECT_EQ(m_manager->Query(pszName, status), 0u);
        return status;
    }
    // "name=title,state" of each.
    Strings Dependents(const char* pszName)
    {
        std::vector<KXHost::DependentService> listed;
        EXPECT_EQ(m_manager->ListDependents(pszName, listed), 0u);
        Strings texts;
        for (const auto& one : listed)
            texts.push_back((one.strName + "=" + one.strDisplayName + ",").GetString() +
                            std::to_string(one.status.dwCurrentState));
        return texts;
    }

    Strings Files() const
    {
        Strings files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_units))
            files.push_back(entry.path().lexically_relative(m_units));
        std::sort(files.begin(), files.end());
        return files;
    }
    std::string Calls() { return m_standIn->Calls(); }

    static std::unique_ptr<test::PrivateBus> s_bus;
    test::TempDir m_dir;
    const std::string m_units = m_dir.Path("units");
    std::optional<test::StandIn> m_standIn;
    std::shared_ptr<KXHost::ServiceManager> m_manager;
    SERVICE_STATUS m_stopped{};
};

std::unique_ptr<test::PrivateBus> Systemd::s_bus;

constexpr const char* kHead = "# Made by KXCommonClass for its service controller\n[Unit]\nDescription=";
const std::string kInstall =
    std::string("\n\n[Install]\nWantedBy=") + (geteuid() == 0 ? "multi-user" : "default") + ".target\n";

std::string UnitText(const std::string& title, const std::string& command)
{
    return kHead + title + "\n\n[Service]\nType=exec\nExecStart=" + command + kInstall;
}

TEST_F(Systemd, AMachineWithoutAManagerHasNoServices)
{
    EXPECT_EQ(OpenManager(), 0u);
    m_standIn.reset();
    EXPECT_EQ(OpenManager(), RPC_S_SERVER_UNAVAILABLE);
    for (const std::string& address : {"unix:path=" + m_dir.Path("none"), std::string("no address"),
                                       std::string("unix:path=/proc/version"), std::string("tcp:host=")}) {
        Use(address);
        EXPECT_EQ(OpenManager(), RPC_S_SERVER_UNAVAILABLE) << address;
    }
}

TEST_F(Systemd, RootAsksTheSystemsManagerAndOthersTheirOwn)
{
    const auto ask = [&] {
        const bool bRoot = geteuid() == 0;
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bRoot ? s_bus->Address().c_str() : "unix:path=/none", 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", bRoot ? "unix:path=/none" : s_bus->Address().c_str(), 1);
        Use("");
        return static_cast<int>(OpenManager());
    };
    EXPECT_EQ(test::InFork(ask), 0);
}

TEST_F(Systemd, NoCallOutlastsItsTime)
{
    using std::chrono::steady_clock;
    const auto begin = steady_clock::now();
    m_standIn->Set("Nv.service", {});
    m_standIn->Fail("StartUnit", "");
    Use(s_bus->Address(), 100);
    EXPECT_EQ(Start("Nv"), ERROR_SERVICE_REQUEST_TIMEOUT);
    m_standIn->Fail("LoadUnit", "");
    EXPECT_EQ(Open("Nv"), ERROR_SERVICE_REQUEST_TIMEOUT);

    Use("unixexec:path=/bin/sleep,argv1=1000", 100); // takes a connection and says nothing
    EXPECT_EQ(OpenManager(), ERROR_SERVICE_REQUEST_TIMEOUT);
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(Systemd, AServiceIsAUnitFileAndLinksThatSystemdMakes)
{
    EXPECT_EQ(Open("Nv"), ERROR_SERVICE_DOES_NOT_EXIST);
    Calls();
    const mode_t mask = umask(077);
    EXPECT_EQ(Create("Nv", "C:\\opt\\nv -x", SERVICE_AUTO_START), 0u);
    umask(mask);
    EXPECT_EQ(Calls(), "LoadUnit Nv.service;Reload;ResetFailedUnit Nv.service;LoadUnit Nv.service;"
                       "UnmaskUnitFiles Nv.service;EnableUnitFiles Nv.service;Reload;");
    EXPECT_EQ(m_dir.Read("units/Nv.service"), UnitText("Norvale", R"(":/opt/nv" "-x")"));
    EXPECT_EQ(std::filesystem::status(m_units + "/Nv.service").permissions(), std::filesystem::perms(0644));
    EXPECT_EQ(Create("Nv"), ERROR_SERVICE_EXISTS);
    const std::string load = "LoadUnit Nv.service;";
    Calls();
    EXPECT_EQ(SetType("Nv", SERVICE_DEMAND_START), 0u);
    EXPECT_EQ(Calls(), load + "UnmaskUnitFiles Nv.service;DisableUnitFiles Nv.service;Reload;");
    EXPECT_EQ(SetType("Nv", SERVICE_DISABLED), 0u);
    EXPECT_EQ(Calls(), load + "DisableUnitFiles Nv.service;MaskUnitFiles Nv.service;Reload;");
    for (const DWORD dwType : {0u, 1u, 5u})
        EXPECT_EQ(SetType("Nv", dwType), ERROR_INVALID_PARAMETER);

    EXPECT_EQ(Describe("Nv", "Says a lot"), 0u);
    EXPECT_EQ(m_dir.Read("units/Nv.service.d/50-kx-description.conf"), std::string(kHead) + "Says a lot\n");
    EXPECT_EQ(Describe("Nv", ""), 0u);
    EXPECT_EQ(Files(), Strings{"Nv.service"});
    EXPECT_EQ(Describe("Nv", "Again"), 0u);
    EXPECT_THAT(Calls(), testing::EndsWith(load + "Reload;"));
    EXPECT_EQ(Delete("Nv"), 0u);
    EXPECT_EQ(Calls(), load + "UnmaskUnitFiles Nv.service;DisableUnitFiles Nv.service;Reload;"
                              "ResetFailedUnit Nv.service;");
    EXPECT_EQ(Files(), Strings{});
    EXPECT_EQ(Delete("Nv"), ERROR_SERVICE_DOES_NOT_EXIST);
    EXPECT_EQ(Create("Nv", "C:\\opt\\nv", SERVICE_DISABLED), 0u);
    EXPECT_EQ(Delete("Nv"), 0u);
}

TEST_F(Systemd, WhatCantBeInstalledLeavesNothing)
{
    m_standIn->Set("Nv.service", {});
    m_dir.Write("units/Hand.service", "[Service]\nExecStart=/bin/true\n");
    m_standIn->Set("Hand.service", {});
    std::filesystem::create_symlink(m_dir.Path("elsewhere"), m_units + "/Link.service");
    std::filesystem::create_symlink(m_dir.Write("mine", kHead), m_units + "/Linked.service");
    m_standIn->Set("Linked.service", {});
    const Strings before = Files();
    EXPECT_EQ(Create("Link"), ERROR_SERVICE_EXISTS);
    EXPECT_FALSE(m_dir.Exists("elsewhere"));
    // Only what was made here is deleted.
    for (const char* pszName : {"Nv", "Hand", "Linked"})
        EXPECT_EQ(Delete(pszName), ERROR_ACCESS_DENIED) << pszName;

    EXPECT_EQ(Create("New", "relative\\nv"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Create("New", "C:\\nv", SERVICE_AUTO_START - 1), ERROR_INVALID_PARAMETER);
    const KXHost::ServiceSettings shared{"New", "C:\\nv", SERVICE_WIN32_OWN_PROCESS + 1, 3, 1};
    EXPECT_EQ(m_manager->Create("New", shared, 0), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Create("_static", "C:\\nv", SERVICE_AUTO_START), ERROR_INVALID_PARAMETER);
    m_standIn->Fail("EnableUnitFiles", "org.freedesktop.DBus.Error.AccessDenied");
    EXPECT_EQ(Create("New", "C:\\nv", SERVICE_AUTO_START), ERROR_ACCESS_DENIED);
    m_standIn->Fail("Reload", "org.freedesktop.DBus.Error.InteractiveAuthorizationRequired");
    EXPECT_EQ(Create("New"), ERROR_ACCESS_DENIED);
    m_standIn->Fail("LoadUnit", "org.freedesktop.DBus.Error.NoReply");
    EXPECT_EQ(Create("New"), ERROR_SERVICE_REQUEST_TIMEOUT);
    EXPECT_EQ(Files(), before);
}

TEST_F(Systemd, ACreateThatRanOutOfTimeTakesBackWhatSystemdWrote)
{
    for (const auto& [method, type] :
         {std::pair{"EnableUnitFiles", SERVICE_AUTO_START}, std::pair{"MaskUnitFiles", SERVICE_DISABLED}}) {
        m_standIn->Fail(method, ""); // has done it, and answers too late
        Use(s_bus->Address(), 1000);
        Calls();
        EXPECT_EQ(Create("Nv", "C:\\nv", type), ERROR_SERVICE_REQUEST_TIMEOUT);
        const std::string calls = Calls();
        EXPECT_TRUE(calls.ends_with("UnmaskUnitFiles Nv.service;DisableUnitFiles Nv.service;Reload;"))
            << calls;
        EXPECT_EQ(Files(), Strings{});
    }
    // A part that can't be taken back keeps no other from it.
    m_standIn->Fail("UnmaskUnitFiles", "org.freedesktop.DBus.Error.AccessDenied");
    EXPECT_EQ(Create("Nv", "C:\\nv", SERVICE_AUTO_START), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(Calls().ends_with("DisableUnitFiles Nv.service;Reload;"));
    EXPECT_EQ(Files(), Strings{});
}

TEST_F(Systemd, NothingIsLeftOfAFailedRunByADeletedService)
{
    EXPECT_EQ(Create("Nv"), 0u);
    m_standIn->Set("Nv.service", {.active = "failed", .sub = "failed", .result = "exit-code"});
    EXPECT_EQ(Delete("Nv"), 0u);
    EXPECT_EQ(m_standIn->Active("Nv.service"), "inactive");
    // One that fails after it was deleted.
    m_standIn->Set("Nv.service", {.load = "not-found", .active = "failed"});
    EXPECT_EQ(Create("Nv"), 0u);
    EXPECT_EQ(m_standIn->Active("Nv.service"), "inactive");
    // A unit that can't be reset is deleted all the same, and not made anew.
    m_standIn->Fail("ResetFailedUnit", "org.freedesktop.DBus.Error.AccessDenied");
    EXPECT_EQ(Delete("Nv"), 0u);
    EXPECT_EQ(Files(), Strings{});
    EXPECT_EQ(Create("Nv"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Files(), Strings{});
}

TEST_F(Systemd, ADeletedServiceThatRunsCanOnlyBeStopped)
{
    EXPECT_EQ(Create("Nv"), 0u);
    m_standIn->Set("Nv.service", {.active = "active"});
    EXPECT_EQ(Delete("Nv"), 0u);
    EXPECT_EQ(Status("Nv").dwCurrentState, SERVICE_RUNNING);
    for (const DWORD error : {Create("Nv"), Delete("Nv"), SetType("Nv", 2), Describe("Nv", "x"), Start("Nv")})
        EXPECT_EQ(error, ERROR_SERVICE_MARKED_FOR_DELETE);
    EXPECT_EQ(Stop("Nv"), 0u);
    EXPECT_EQ(m_stopped.dwCurrentState, SERVICE_STOP_PENDING);
    m_standIn->Set("Nv.service", {.load = "not-found"});
    EXPECT_EQ(Status("Nv").dwCurrentState, SERVICE_STOPPED); // gone, as who has it open sees it
    EXPECT_EQ(Open("Nv"), ERROR_SERVICE_DOES_NOT_EXIST);
    EXPECT_EQ(Create("Nv"), 0u);
}

TEST_F(Systemd, NamesAndTextsStayWhatTheyAre)
{
    // A name and its unit; empty where it is refused.
    const std::string longest(245, 'n');
    const std::pair<CString, std::string> names[] = {
        {"a-B_1:2.3@4", "a-B_1:2.3@4.service"},
        {"two words", "two\\x20words.service"},
        {"n\n[Service]\nExecStart=x", "n\\x0a\\x5bService\\x5d\\x0aExecStart\\x3dx.service"},
        {"%h$(x)`;&|<>\"'*?",
         "\\x25h\\x24\\x28x\\x29\\x60\\x3b\\x26\\x7c\\x3c\\x3e\\x22\\x27\\x2a\\x3f.service"},
        {".hidden", "\\x2ehidden.service"},
        {"..", "\\x2e..service"},
        {"-x", "-x.service"},
        {"@", "\\x40.service"},
        {"x@", "x\\x40.service"},
        {"x.service", "x.service.service"},
        {"\xC4\xE3", "\\xe4\\xbd\\xa0.service"},
        {longest.c_str(), longest + ".service"},
        {(longest + "n").c_str(), ""},
        {std::string(64, '%').c_str(), ""},
        {"../x", ""},
        {"/etc/x", ""},
        {"a\\b", ""},
        {"\xFF\xFF", ""},
    };
    for (const auto& [name, unit] : names) {
        const DWORD error = unit.empty() ? ERROR_INVALID_NAME : ERROR_SUCCESS;
        EXPECT_EQ(Create(name), error) << name;
        EXPECT_EQ(Open(name), error) << name;
        EXPECT_EQ(Files(), unit.empty() ? Strings{} : Strings{unit});
        EXPECT_EQ(Delete(name), error) << name;
        EXPECT_EQ(Files(), Strings{});
    }

    const std::string longTitle(32'767, 't');
    const std::pair<const char*, std::string> texts[] = {
        {longTitle.c_str(), longTitle},
        {"100% \"q\" 'x' $HOME", "100%% \"q\" 'x' $HOME"},
        {"a\r\n[Service]\n\x7FUser=root\t", "a  [Service]  User=root "},
        {"ends\\", "ends\\ "},
        {"ends\\\\", "ends\\\\ "},
        {"\xC4\xE3", "\xE4\xBD\xA0"},
    };
    for (const auto& [title, written] : texts) {
        EXPECT_EQ(Create("Nv", "C:\\x", 3, title), 0u);
        EXPECT_EQ(m_dir.Read("units/Nv.service"), UnitText(written, "\":/x\""));
        EXPECT_EQ(Describe("Nv", title), 0u);
        EXPECT_EQ(m_dir.Read("units/Nv.service.d/50-kx-description.conf"), kHead + written + "\n");
        EXPECT_EQ(Delete("Nv"), 0u);
    }
    for (const CString& title : {CString("\xFF\xFF"), CString('t', 32'768)})
        EXPECT_EQ(Create("Nv", "C:\\x", 3, title), ERROR_INVALID_PARAMETER);
}

TEST_F(Systemd, ABinaryPathIsAProgramAndWords)
{
    const std::string program = m_dir.Write("My App/nv.exe", ""), quoted = "\":" + program + "\"";
    const std::string mine = m_dir.Win("My App\\nv.exe").GetString();
    // A path, its command, which is empty where it is refused, and the reason.
    const std::tuple<std::string, std::string, DWORD> cases[] = {
        {mine, quoted, 0},
        {" \"" + mine + "\"  a ", quoted + " \"a\"", 0},
        {"\"" + mine + "\"", quoted, 0},
        {"/usr/bin/nv", "\":/usr/bin/nv\"", 0},
        {"\\usr\\bin\\nv", "\":/usr/bin/nv\"", 0},
        {"C:\\none here\\x", "\":/none\" \"here\\\\x\"", 0},
        {"C:\\x \"a b\"c \"\" ; %n $HOME ${X}", R"(":/x" "a bc" "" ";" "%%n" "$HOME" "${X}")", 0},
        {"C:\\x a\\b \\\\\"c d\\\\\" \\\"e \"f\\\"g", R"(":/x" "a\\b" "\\c d\\" "\"e" "f\"g")", 0},
        {"C:\\x \"\n[Service]\nUser=0\x7F\"", R"(":/x" "\x0a[Service]\x0aUser=0\x7f")", 0},
        {"C:\\x end\\", R"(":/x" "end\\")", 0},
        {"C:\\x a\\\\\\\"b", R"(":/x" "a\\\"b")", 0},
        {"C:\\a%b$c;d \xC4\xE3", "\":/a%%b$c;d\" \"\xE4\xBD\xA0\"", 0},
        {"C:\\x \x95\x5C\"", "\":/x\" \"\xE6\x98\x9E\"", 0}, // a second byte is no backslash
        {"\"C:\\a\nb\"", "", ERROR_INVALID_NAME},
        {"\"C:\\a'b\"", "", ERROR_INVALID_NAME},
        {"\"\" x", "", ERROR_INVALID_PARAMETER},
        {"C:x", "", ERROR_INVALID_PARAMETER},
        {"nv.exe", "", ERROR_INVALID_PARAMETER},
        {" ", "", ERROR_INVALID_PARAMETER},
        {"Q:\\x", "", ERROR_PATH_NOT_FOUND},
        {"C:\\x \xFF\xFF", "", ERROR_INVALID_PARAMETER},
        {"C:\\x " + std::string(33'000, 'a'), "", ERROR_INVALID_PARAMETER},
    };
    for (const auto& [path, command, error] : cases) {
        EXPECT_EQ(Create("Nv", path.c_str()), error) << path;
        EXPECT_EQ(m_dir.Read("units/Nv.service"), command.empty() ? "" : UnitText("Norvale", command));
        EXPECT_EQ(Delete("Nv"), error ? ERROR_SERVICE_DOES_NOT_EXIST : 0u);
    }
}

TEST_F(Systemd, StatesBecomeThePlatforms)
{
    constexpr std::uint64_t kUsual = 90'000'000, kNone = UINT64_MAX;
    const std::tuple<const char*, const char*, const char*, std::uint64_t, std::uint64_t, Progress> cases[] =
        {
            {"active", "running", "", 9, kUsual, {SERVICE_RUNNING, 0, 250}},
            {"reloading", "reload", "reload", 9, kUsual, {SERVICE_RUNNING, 0, 250}},
            {"inactive", "dead", "", 9, kUsual, {SERVICE_STOPPED, 0, 10'000}},
            {"failed", "failed", "", 9, kUsual, {SERVICE_STOPPED, 0, 10'000}},
            {"maintenance", "cleaning", "", 9, kUsual, {SERVICE_STOPPED, 0, 10'000}},
            {"activating", "start-pre", "start", 3, kUsual, {SERVICE_START_PENDING, 2003, 10'000}},
            {"activating", "start", "start", 0, kUsual, {SERVICE_START_PENDING, 3000, 10'000}},
            {"activating", "start", "", 20, 7'000'000, {SERVICE_START_PENDING, 3007, 10'000}},
            {"activating", "start", "", 100, kNone, {SERVICE_START_PENDING, 3090, 10'000}},
            {"activating", "auto-restart", "", 5, kUsual, {SERVICE_START_PENDING, 1, 10'000}},
            {"deactivating", "stop-sigterm", "stop", 4, kUsual, {SERVICE_STOP_PENDING, 7004, 250}},
            // A job that waits counts as what it will do.
            {"inactive", "dead", "start", 20, kUsual, {SERVICE_START_PENDING, 1, 10'000}},
            {"failed", "failed", "restart", 20, kUsual, {SERVICE_START_PENDING, 1, 10'000}},
            {"active", "running", "stop", 20, kUsual, {SERVICE_STOP_PENDING, 1, 250}},
        };
    for (const auto& [active, sub, job, secondsAgo, limit, progress] : cases) {
        const test::Unit unit{
            .active = active, .sub = sub, .jobType = job, .secondsAgo = secondsAgo, .limit = limit};
        m_standIn->Set("Nv.service", unit);
        const auto status = Status("Nv");
        EXPECT_EQ(ProgressOf(status), progress) << active << sub << job;
        EXPECT_EQ(status.dwControlsAccepted, progress[0] == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP : 0u);
        EXPECT_EQ(status.dwProcessId, 42u);
        EXPECT_EQ(status.dwServiceType, SERVICE_WIN32_OWN_PROCESS);
    }
    // systemd calls a unit active as soon as the program is loaded; a program that doesn't tell when it is
    // ready runs only when it has been so for half a second. It can be stopped before.
    for (const char* pszType : {"exec", "simple", "idle", "notify", "forking", "oneshot"}) {
        for (const auto& [activeFor, bSettled] : {std::pair{99'000u, false}, {501'000u, true}}) {
            m_standIn->Set("Nv.service",
                           {.active = "active", .sub = "running", .activeFor = activeFor, .type = pszType});
            const bool bTells = std::string_view("notify forking oneshot").find(pszType) != std::string::npos;
            const Progress expected = bSettled || bTells ? Progress{SERVICE_RUNNING, 0, 250}
                                                         : Progress{SERVICE_START_PENDING, 4999, 10'000};
            EXPECT_EQ(ProgressOf(Status("Nv")), expected) << pszType;
            EXPECT_EQ(Start("Nv"), ERROR_SERVICE_ALREADY_RUNNING);
            EXPECT_EQ(Stop("Nv"), 0u);
        }
    }
    // A job that ends while it is asked for.
    m_standIn->Set("Nv.service", {.jobType = "gone"});
    EXPECT_EQ(Status("Nv").dwCurrentState, SERVICE_STOPPED);

    const std::tuple<const char*, std::uint64_t, DWORD, DWORD> exits[] = {
        {"success", 1, 0, 0},      {"success", 0, ERROR_SERVICE_NEVER_STARTED, 0},
        {"exit-code", 1, 1066, 3}, {"signal", 1, ERROR_PROCESS_ABORTED, 0},
        {"timeout", 1, 1053, 0},   {"start-limit-hit", 0, 1067, 0}};
    for (const auto& [result, started, dwExitCode, dwSpecific] : exits) {
        m_standIn->Set("Nv.service", {.result = result, .started = started});
        const auto status = Status("Nv");
        EXPECT_EQ(status.dwWin32ExitCode, dwExitCode) << result;
        EXPECT_EQ(status.dwServiceSpecificExitCode, dwSpecific) << result;
    }
    for (const char* pszMethod : {"GetAll", "LoadUnit"}) {
        for (const char* pszType : {"s", "i", "as", "a{ss}", "a{sv}"}) {
            m_standIn->Fail(pszMethod, std::string("=") + pszType);
            EXPECT_EQ(Open("Nv"), ERROR_GEN_FAILURE) << pszMethod << pszType;
        }
    }
}

TEST_F(Systemd, StartsAndStopsAreRefusedAsThePlatformDoes)
{
    for (const auto& [active, dwStart, dwStop] : {std::tuple("active", 1056u, 0u),
                                                  {"activating", 1056u, 1061u},
                                                  {"deactivating", 1056u, 1061u},
                                                  {"failed", 0u, 1062u}}) {
        m_standIn->Set("Nv.service", {.active = active});
        Calls();
        EXPECT_EQ(Start("Nv"), dwStart);
        EXPECT_EQ(Calls().find("StartUnit Nv.service replace;") != std::string::npos, dwStart == 0);
        EXPECT_EQ(Stop("Nv"), dwStop);
        EXPECT_EQ(Calls().find("StopUnit Nv.service replace;") != std::string::npos, dwStop == 0);
    }
    const std::pair<const char*, DWORD> errors[] = {
        {"systemd1.UnitMasked", ERROR_SERVICE_DISABLED},
        {"systemd1.SomethingNew", ERROR_GEN_FAILURE},
        {"DBus.Error.AccessDenied", ERROR_ACCESS_DENIED},
        {"DBus.Error.ServiceUnknown", RPC_S_SERVER_UNAVAILABLE},
    };
    for (const auto& [name, error] : errors) {
        m_standIn->Fail("StartUnit", std::string("org.freedesktop.") + name);
        m_standIn->Set("Nv.service", {});
        EXPECT_EQ(Start("Nv"), error) << name;
    }
}

TEST_F(Systemd, DependentsComeAheadOfWhatTheyNeed)
{
    const auto add = [&](const char* name, const char* active, std::map<std::string, Strings> lists) {
        m_standIn->Set(name, {.active = active, .lists = std::move(lists)});
    };
    EXPECT_EQ(Open("Db"), ERROR_SERVICE_DOES_NOT_EXIST);
    add("Db.service", "active",
        {{"RequiredBy", {"A.service", "all.target", "gone.service"}},
         {"BoundBy", {"B x.service", "B\\x20x.service"}},
         {"WantedBy", {"Loose.service"}}});
    add("A.service", "active", {{"RequisiteOf", {"C.service"}}});
    add("C.service", "inactive", {{"RequiredBy", {"A.service", "Db.service"}}}); // in a circle
    add("all.target", "active", {{"RequiredBy", {"D.service", "x\\x2dy.service"}}});
    add("D.service", "activating", {});
    add("B\\x20x.service", "active", {});
    add("x\\x2dy.service", "active", {}); // no service's unit, as its name would be "x-y"
    EXPECT_EQ(Dependents("Db"), (Strings{"C=T C.,1", "A=T A.,4", "D=T D.,2", "B x=T B\\,4"}));
    EXPECT_EQ(Dependents("D"), Strings{});
    Calls();
    EXPECT_EQ(Stop("Db"), ERROR_DEPENDENT_SERVICES_RUNNING);
    EXPECT_EQ(Calls().find("StopUnit"), std::string::npos);
}

} // namespace
