#include "include/KXWinService.h"
#include "tests/support/Test.h"

#include <pwd.h>

namespace {

// scripts/test-systemd sets it for tests in its box: "system" or "user". Elsewhere a real manager is left
// alone.
const char* Box()
{
    return std::getenv("KX_SYSTEMD_BOX");
}

// The output of a command, without the last line's end.
std::string Output(const std::string& command)
{
    std::string text = test::OutputOf(command + " 2>&1");
    while (text.ends_with('\n'))
        text.pop_back();
    return text;
}

std::string Ctl(const std::string& arguments)
{
    return Output((geteuid() == 0 ? "systemctl " : "systemctl --user ") + arguments);
}

// A unit's properties as systemctl tells them, one value a line.
std::string Shown(const std::string& unit, const std::string& properties)
{
    return Ctl("show --value -p " + properties + " -- '" + unit + "'");
}

bool Await(const std::function<bool()>& condition)
{
    for (int n = 0; n < 1000; ++n) {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

std::string ConfigUnits()
{
    return geteuid() == 0 ? "/etc/systemd/system/"
                          : std::string(getpwuid(geteuid())->pw_dir) + "/.config/systemd/user/";
}

struct RealSystemd : testing::Test
{
    void SetUp() override
    {
        if (!Box()) GTEST_SKIP() << "left out: scripts/test-systemd runs it in a box";
        // The user's manager looks for units there, not in the tests' home.
        const std::string home = getpwuid(geteuid())->pw_dir;
        setenv("XDG_DATA_HOME", (home + "/.local/share").c_str(), 1);
        m_sleeper = Program("sleeper", "exec sleep 1000");
    }
    void TearDown() override
    {
        if (!Box()) return;
        std::remove(m_slow.c_str());
        for (const std::string& name : m_made) {
            CKXWinService(name.c_str()).DoStop();
            CKXWinService(name.c_str()).Delete();
        }
        // Whatever a test did: no unit of its own is left, and none that failed.
        if (m_bKilled) return;
        EXPECT_EQ(Ctl("--failed --no-legend --plain"), "");
        EXPECT_EQ(Output("find " + ConfigUnits() + " -name 'kx-*'"), "");
    }

    // A program of the box, by the library's path.
    CString Program(const std::string& name, const std::string& lines)
    {
        const std::string path = m_dir.Write(name, "#!/bin/sh\n" + lines + "\n");
        chmod(path.c_str(), 0755);
        chmod(m_dir.Path().c_str(), 0755);
        return m_dir.Win(name);
    }
    int Create(const std::string& name, const CString& path, DWORD dwStartType = SERVICE_DEMAND_START)
    {
        m_made.push_back(name);
        return CKXWinService(name.c_str()).Create(path, dwStartType, "A title");
    }
    SERVICE_STATUS_PROCESS Status(const char* pszName) const
    {
        SERVICE_STATUS_PROCESS status{};
        EXPECT_EQ(m_manager->Query(pszName, status), 0u);
        return status;
    }
    static DWORD State(const char* pszName)
    {
        int bExists = 0;
        unsigned long dwState = 0;
        CKXWinService(pszName).GetStatus(bExists, dwState);
        return bExists ? static_cast<DWORD>(dwState) : 0;
    }
    static std::string Active(const char* pszNames) { return Ctl(std::string("is-active ") + pszNames); }

    // The seconds that a reload takes in the box.
    const std::string m_slow = "/tmp/slow-reload-" + std::to_string(geteuid());
    const test::TempDir m_dir;
    const std::shared_ptr<KXHost::ServiceManager> m_manager = KXHost::MakeSystemdManager();
    CString m_sleeper;
    std::vector<std::string> m_made;
    bool m_bKilled = false; // the manager was
};

TEST_F(RealSystemd, AServiceLivesAndIsSetAsSystemctlSees)
{
    CKXWinService service("kx-life");
    EXPECT_EQ(State("kx-life"), 0u);
    ASSERT_EQ(Create("kx-life", m_sleeper + " \"a b\" $HOME %n", SERVICE_AUTO_START), 1);
    EXPECT_EQ(Shown("kx-life.service", "LoadState,ActiveState,UnitFileState,Description,Type"),
              "exec\nA title\nloaded\ninactive\nenabled");
    EXPECT_EQ(State("kx-life"), SERVICE_STOPPED);
    EXPECT_EQ(Status("kx-life").dwWin32ExitCode, ERROR_SERVICE_NEVER_STARTED);

    EXPECT_EQ(service.DoStart(), 1);
    EXPECT_EQ(Active("kx-life"), "active");
    Ctl("daemon-reexec"); // a manager that is started anew knows its services
    EXPECT_TRUE(Await([] { return State("kx-life") == SERVICE_RUNNING; }));
    EXPECT_EQ(std::to_string(Status("kx-life").dwProcessId), Shown("kx-life.service", "MainPID"));
    EXPECT_EQ(service.DoStart(), 0);
    EXPECT_EQ(Create("kx-life", m_sleeper), 0);
    EXPECT_EQ(service.DoStop(), 1);
    EXPECT_EQ(Active("kx-life"), "inactive");
    EXPECT_EQ(Status("kx-life").dwWin32ExitCode, 0u);
    EXPECT_EQ(service.DoStop(), 0);

    const std::pair<DWORD, const char*> types[] = {
        {SERVICE_DEMAND_START, "disabled"}, {SERVICE_AUTO_START, "enabled"}, {SERVICE_DISABLED, "masked"}};
    for (const auto& [dwType, pszTold] : types) {
        EXPECT_EQ(service.ChangeStartType(dwType), 1);
        EXPECT_EQ(Ctl("is-enabled kx-life"), pszTold);
    }
    EXPECT_EQ(m_manager->Start("kx-life"), ERROR_SERVICE_DISABLED);
    EXPECT_EQ(service.ChangeStartType(SERVICE_DEMAND_START), 1);
    EXPECT_EQ(service.ChangeDesc("100% \"new\"\n[Service]\\"), 1);
    EXPECT_EQ(Shown("kx-life.service", "Description"), "100% \"new\" [Service]\\");
    EXPECT_EQ(service.ChangeDesc(""), 1);
    EXPECT_EQ(Shown("kx-life.service", "Description"), "A title");

    // Deleted while it runs: it goes on, can be stopped, and is gone then.
    EXPECT_EQ(service.DoStart(), 1);
    EXPECT_EQ(service.Delete(), 1);
    EXPECT_EQ(State("kx-life"), SERVICE_RUNNING);
    EXPECT_EQ(Create("kx-life", m_sleeper), 0);
    EXPECT_EQ(service.DoStop(), 1);
    EXPECT_EQ(State("kx-life"), 0u);
    EXPECT_EQ(Shown("kx-life.service", "LoadState,ActiveState"), "not-found\ninactive");
}

TEST_F(RealSystemd, AProgramThatExitsAtOnceNeverCountsAsStarted)
{
    // systemd calls the unit active between the program's loading and its end. Seen in that moment it was a
    // running one; now it has to have stayed so for half a second. Each of twenty starts has to tell.
    ASSERT_EQ(Create("kx-false", "/bin/false"), 1);
    ASSERT_EQ(Create("kx-none", "/bin/no-such-program"), 1);
    for (int n = 0; n < 20; ++n) {
        EXPECT_EQ(m_manager->Start("kx-false"), 0u);
        for (DWORD dwState = 0; dwState != SERVICE_STOPPED;) {
            dwState = Status("kx-false").dwCurrentState;
            ASSERT_NE(dwState, SERVICE_RUNNING) << n;
        }
        Ctl("reset-failed kx-false"); // more than five failures in ten seconds aren't started again
    }
    EXPECT_EQ(CKXWinService("kx-false").DoStart(), 0);
    EXPECT_EQ(Status("kx-false").dwWin32ExitCode, ERROR_SERVICE_SPECIFIC_ERROR);
    EXPECT_EQ(Status("kx-false").dwServiceSpecificExitCode, 1u);
    EXPECT_EQ(Shown("kx-false.service", "Result,ExecMainStatus,ActiveState"), "exit-code\n1\nfailed");
    EXPECT_EQ(CKXWinService("kx-none").DoStart(), 0);
    EXPECT_EQ(Status("kx-none").dwServiceSpecificExitCode, 203u);
}

TEST_F(RealSystemd, AServiceThatFailsAfterItWasDeletedLeavesNoFailureToTheNext)
{
    ASSERT_EQ(Create("kx-fail", m_sleeper), 1);
    EXPECT_EQ(CKXWinService("kx-fail").DoStart(), 1);
    EXPECT_EQ(CKXWinService("kx-fail").Delete(), 1);
    kill(static_cast<pid_t>(Status("kx-fail").dwProcessId), SIGKILL);
    EXPECT_TRUE(Await([] { return Ctl("is-failed kx-fail") == "failed"; }));
    ASSERT_EQ(Create("kx-fail", m_sleeper), 1);
    EXPECT_EQ(Shown("kx-fail.service", "ActiveState,Result"), "success\ninactive");
}

TEST_F(RealSystemd, DependentsAreStoppedFirst)
{
    for (const char* pszName : {"kx-base", "kx-top", "kx-mid"})
        ASSERT_EQ(Create(pszName, m_sleeper), 1);
    const auto depend = [](const std::string& name, const std::string& on) {
        const std::string dir = ConfigUnits() + "kx-" + name + ".service.d";
        Output("mkdir -p " + dir);
        std::ofstream(dir + "/need.conf") << "[Unit]\nRequires=" << on << "\nAfter=" << on << "\n";
    };
    depend("mid", "kx-base.service");
    depend("top", "kx-mid.service");
    Ctl("daemon-reload");
    EXPECT_EQ(CKXWinService("kx-top").DoStart(), 1);
    std::vector<KXHost::DependentService> listed;
    EXPECT_EQ(m_manager->ListDependents("kx-base", listed), 0u);
    ASSERT_EQ(listed.size(), 2u);
    EXPECT_EQ(listed[0].strName, "kx-top");
    EXPECT_EQ(listed[1].strName, "kx-mid");
    SERVICE_STATUS status{};
    EXPECT_EQ(m_manager->Stop("kx-base", status), ERROR_DEPENDENT_SERVICES_RUNNING);
    EXPECT_EQ(Active("kx-base kx-mid kx-top"), "active\nactive\nactive");
    EXPECT_TRUE(Await([] { return State("kx-base") == SERVICE_RUNNING; }));
    EXPECT_EQ(CKXWinService("kx-base").DoStop(), 1);
    EXPECT_EQ(Active("kx-base kx-mid kx-top"), "inactive\ninactive\ninactive");
    Output("rm -r " + ConfigUnits() + "kx-*.service.d");
    Ctl("daemon-reload");
}

TEST_F(RealSystemd, WhatIsTooSlowIsTold)
{
    // A program that ignores its stop is killed by systemd after the box's three seconds.
    ASSERT_EQ(Create("kx-deaf", Program("deaf", "trap '' TERM\nwhile :; do sleep 1; done")), 1);
    EXPECT_EQ(CKXWinService("kx-deaf").DoStart(), 1);
    SERVICE_STATUS status{};
    EXPECT_EQ(m_manager->Stop("kx-deaf", status), 0u);
    EXPECT_EQ(status.dwCurrentState, SERVICE_STOP_PENDING);
    EXPECT_GT(status.dwCheckPoint, 0u);
    EXPECT_EQ(m_manager->Stop("kx-deaf", status), ERROR_SERVICE_CANNOT_ACCEPT_CTRL);
    EXPECT_EQ(CKXWinService("kx-deaf").DoStart(), 1); // waits for the end of the stop
    EXPECT_EQ(CKXWinService("kx-deaf").DoStop(), 1);
    EXPECT_EQ(Status("kx-deaf").dwWin32ExitCode, ERROR_SERVICE_REQUEST_TIMEOUT);
    EXPECT_EQ(Shown("kx-deaf.service", "Result"), "timeout");

    // A manager that takes a second to read its units, for calls that have less.
    std::ofstream(m_slow) << "1\n";
    const auto create = [&](DWORD dwTimeout, DWORD dwStartType) {
        return KXHost::MakeSystemdManager({"", "", dwTimeout})
            ->Create("kx-hasty", {"A title", m_sleeper, SERVICE_WIN32_OWN_PROCESS, dwStartType, 1}, 0);
    };
    // The first reading is too slow, or the second, after systemd made a link or a mask.
    for (const DWORD dwTimeout : {300u, 1800u}) {
        for (const DWORD dwStartType : {SERVICE_AUTO_START, SERVICE_DISABLED}) {
            EXPECT_EQ(create(dwTimeout, dwStartType), ERROR_SERVICE_REQUEST_TIMEOUT);
            EXPECT_EQ(Output("find " + ConfigUnits() + " -name 'kx-*'"), "") << dwTimeout << dwStartType;
            EXPECT_EQ(Shown("kx-hasty.service", "LoadState"), "not-found") << dwTimeout << dwStartType;
            EXPECT_EQ(State("kx-hasty"), 0u);
        }
    }
}

TEST_F(RealSystemd, NamesAndArgumentsArriveAsTheyAre)
{
    const std::string said = m_dir.Path("said");
    const CString program =
        Program("say", "for a; do printf '<%s>' \"$a\"; done >" + said + "\nexec sleep 1000");
    const std::pair<const char*, const char*> names[] = {
        {"kx- two words", "kx-\\x20two\\x20words.service"},
        {"kx-%n$HOME;#'\"", "kx-\\x25n\\x24HOME\\x3b\\x23\\x27\\x22.service"},
        {"kx-\xC4\xE3", "kx-\\xe4\\xbd\\xa0.service"},
        {"kx-a@b", "kx-a@b.service"},
        {"kx-.@", "kx-.\\x40.service"},
        {"kx-\n[Service]", "kx-\\x0a\\x5bService\\x5d.service"},
    };
    for (const auto& [name, unit] : names) {
        std::remove(said.c_str());
        ASSERT_EQ(Create(name, program + " \"a b\" $HOME ${X} %n ; 'q' \\ \"\" \xC4\xE3 \"\\\"\""), 1)
            << unit;
        EXPECT_EQ(CKXWinService(name).DoStart(), 1) << unit;
        EXPECT_EQ(Shown(unit, "Id,ActiveState,LoadState"), std::string(unit) + "\nloaded\nactive");
        EXPECT_EQ(m_dir.Read("said"), "<a b><$HOME><${X}><%n><;><'q'><\\><><\xE4\xBD\xA0><\">") << unit;
        EXPECT_EQ(CKXWinService(name).DoStop(), 1) << unit;
        EXPECT_EQ(CKXWinService(name).Delete(), 1) << unit;
        EXPECT_EQ(Shown(unit, "LoadState"), "not-found");
    }
}

// scripts/test-systemd runs it behind all others, as nothing is left running. A user may kill the manager
// that is the user's own.
TEST_F(RealSystemd, AKilledManagerIsNone)
{
    if (geteuid() == 0) GTEST_SKIP() << "root's manager is the box's first process";
    ASSERT_EQ(Create("kx-orphan", m_sleeper), 1);
    EXPECT_EQ(CKXWinService("kx-orphan").DoStart(), 1);
    m_made.clear();
    m_bKilled = true;
    Output("kill -KILL $(pgrep -u $(id -u) -x systemd)");
    ASSERT_TRUE(Await([this] { return m_manager->OpenManager(0) == RPC_S_SERVER_UNAVAILABLE; }));
    EXPECT_EQ(m_manager->Start("kx-orphan"), RPC_S_SERVER_UNAVAILABLE);
}

} // namespace
