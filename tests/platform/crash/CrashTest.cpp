#include "include/platform/Crash.h"
#include "include/platform/Error.h"
#include "include/platform/Sync.h"
#include "tests/support/Test.h"

namespace {

namespace fs = std::filesystem;

// A program that is a shell script.
class Program
{
public:
    explicit Program(const std::string& script)
    {
        fs::permissions(m_dir.Write("Program", "#!/bin/sh\ncd \"$(dirname \"$0\")\"\n" + script),
                        fs::perms::owner_all);
    }

    PROCESS_INFORMATION Start(std::string text = {}, int bInherit = 0) const
    {
        PROCESS_INFORMATION information{};
        STARTUPINFO startup{sizeof(startup)};
        const std::string before = text;
        EXPECT_NE(CreateProcessA(m_dir.Win("program"), text.data(), nullptr, nullptr, bInherit, 0, nullptr,
                                 nullptr, &startup, &information),
                  0);
        EXPECT_EQ(text, before);
        EXPECT_EQ(information.hThread, nullptr);
        return information;
    }
    // Its exit code.
    DWORD Run(const std::string& text = {}, int bInherit = 0) const
    {
        const HANDLE hProcess = Start(text, bInherit).hProcess;
        DWORD dwCode = 0;
        EXPECT_EQ(WaitForSingleObject(hProcess, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(hProcess, 0), WAIT_OBJECT_0);
        EXPECT_NE(GetExitCodeProcess(hProcess, &dwCode), 0);
        EXPECT_NE(CloseHandle(hProcess), 0);
        return dwCode;
    }
    const test::TempDir& Dir() const { return m_dir; }

private:
    test::TempDir m_dir;
};

TEST(CreateProcess, TellsTheExitCode)
{
    EXPECT_EQ(Program("exit 7").Run(), 7u);
    EXPECT_EQ(Program("kill -TERM $$").Run(), 128u + SIGTERM);
    signal(SIGCHLD, SIG_IGN); // the system drops what is left of children
    EXPECT_EQ(Program("exit 7").Run(), 0u);
    signal(SIGCHLD, SIG_DFL);
}

TEST(CreateProcess, CutsArgumentsAtBlanksAlone)
{
    const Program program(
        "for each in \"$@\"; do printf '<%s>' \"$each\"; done > out; printf '|%s' \"$*\" >> out");
    const std::string many(3000, ' ');
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"-sd -app[a b]", "<-sd><-app[a><b]>"},
        {"a  \"b c\" ", "<a><><\"b><c\"><>"},
        {"tab\there", "<tab\there>"},
    };
    for (const auto& [text, expected] : cases) {
        program.Run(text);
        EXPECT_EQ(program.Dir().Read("out"), expected + "|" + text);
    }
    program.Run(many + "end");
    const std::string out = program.Dir().Read("out");
    EXPECT_EQ(out.substr(out.find('|') + 1), many + "end");
}

TEST(CreateProcess, GivesTheStandardFilesAloneUnlessAsked)
{
    const Program program("[ -e /proc/$$/fd/77 ] && exit 1; exit 0");
    const int fd = open("/dev/null", O_RDONLY);
    ASSERT_EQ(dup2(fd, 77), 77);
    EXPECT_EQ(program.Run(), 0u);
    EXPECT_EQ(program.Run("", 1), 1u);
    close(77);
    close(fd);
}

TEST(CreateProcess, IsWaitedForOnTheClock)
{
    const Program program("read line < go");
    const std::string go = program.Dir().Path("go");
    mkfifo(go.c_str(), 0600);
    const test::VirtualClock clock(0, KXHost::VirtualSleep::Blocks);
    const int nLive = KXHost::LiveHandles();
    const HANDLE hProcess = program.Start().hProcess;
    DWORD dwCode = 0;
    EXPECT_EQ(WaitForSingleObject(hProcess, 0), WAIT_TIMEOUT);
    EXPECT_NE(GetExitCodeProcess(hProcess, &dwCode), 0);
    EXPECT_EQ(dwCode, STILL_ACTIVE);
    std::ofstream(go) << "\n";
    EXPECT_EQ(WaitForSingleObject(hProcess, 1000), WAIT_OBJECT_0); // the clock stands still meanwhile
    EXPECT_EQ(KXHost::LiveHandles(), nLive + 1);
    CloseHandle(hProcess);
    EXPECT_EQ(KXHost::LiveHandles(), nLive);
}

TEST(CreateProcess, CollectsWhatNobodyWaitsFor)
{
    const Program program("read line < go");
    const std::string go = program.Dir().Path("go");
    mkfifo(go.c_str(), 0600);
    const PROCESS_INFORMATION information = program.Start();
    CloseHandle(information.hProcess);
    std::ofstream(go) << "\n";
    siginfo_t info{};
    EXPECT_EQ(waitid(P_PID, information.dwProcessId, &info, WEXITED | WNOWAIT), 0); // it has ended
    Program("").Run();
    EXPECT_EQ(waitid(P_PID, information.dwProcessId, &info, WEXITED | WNOHANG), -1);
}

TEST(CreateProcess, FailsWithItsReason)
{
    const test::TempDir dir;
    dir.Write("words", "words");
    PROCESS_INFORMATION information{};
    const auto start = [&](const CString& strProgram, std::string text = {}, void* pEnvironment = nullptr) {
        information.dwProcessId = 1;
        const int bStarted = CreateProcessA(strProgram, text.data(), nullptr, nullptr, 0, 0, pEnvironment,
                                            nullptr, nullptr, &information);
        return bStarted || information.dwProcessId ? 0 : GetLastError();
    };
    EXPECT_EQ(start(dir.Win("none")), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(start(dir.Win("words")), ERROR_ACCESS_DENIED);
    EXPECT_EQ(start("Q:\\none"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(start(""), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(start(dir.Win("words"), std::string(32'768, 'x')), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(start(dir.Win("words"), "", &information), ERROR_INVALID_PARAMETER);

    DWORD dwCode = 0;
    const HANDLE hEvent = CreateEventA(nullptr, 0, 0, nullptr);
    for (HANDLE hWrong : {HANDLE{}, INVALID_HANDLE_VALUE, hEvent}) {
        EXPECT_EQ(GetExitCodeProcess(hWrong, &dwCode), 0);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    CloseHandle(hEvent);
}

constexpr int kCame = 42;

TEST(Filter, EachCaseEndsAsItShould)
{
    const std::pair<int, std::vector<std::string>> cases[] = {
        {kCame,
         {"resumes", "handler_before", "record", "code_abort", "code_division", "code_trap", "code_overflow",
          "code_thread_overflow", "processes", "times CET-1CEST,M3.5.0,M10.5.0/3", "times Asia/Shanghai",
          "times XXX3:30YYY2,J60/0,J300/0"}},
        {128 + SIGABRT, {"pass_on", "abort_again", "throw", "removed"}},
        {128 + SIGFPE, {"end", "crash_again", "crash_again_same"}},
        {128 + SIGILL, {"sent"}},
        {128 + SIGSEGV, {"hands_on"}},
    };
    for (const auto& [nEnd, names] : cases)
        for (const std::string& name : names) {
            std::string word, zone;
            std::istringstream(name) >> word >> zone;
            test::Child child("FilterChild", {word}, {"TZ=" + zone}, true);
            EXPECT_EQ(child.Wait(), nEnd) << name << '\n' << child.ErrorText();
        }
}

} // namespace
