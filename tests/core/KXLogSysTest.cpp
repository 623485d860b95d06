#include "KXLogSys.h"
#include "tests/support/Host.h"
#include "tests/support/TempDir.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Level = CKXLogSys::LogLevel;

// Waits until a file holds a text, by the system's own notices of writes to it.
void WaitForText(const std::string& path, const std::string& text)
{
    const int notices = inotify_init1(IN_CLOEXEC);
    ASSERT_GE(inotify_add_watch(notices, path.c_str(), IN_MODIFY), 0);
    while (test::ReadFile(path).find(text) == std::string::npos) {
        char block[4096];
        ASSERT_GT(read(notices, block, sizeof(block)), 0);
    }
    close(notices);
}

// Waits until all threads but the caller's sleep, as the writer does when it has nothing to do.
void AwaitSleepers()
{
    const auto sleeps = [](const std::filesystem::path& task) {
        const std::string stat = test::ReadFile((task / "stat").string());
        return task.filename() == std::to_string(gettid()) || stat.find(") S ") != std::string::npos;
    };
    const auto allSleep = [&] {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return std::all_of(begin(tasks), end(tasks), [&](const auto& task) { return sleeps(task.path()); });
    };
    while (!allSleep())
        std::this_thread::yield();
}

// How often this process wrote to anything.
long WriteCalls()
{
    const std::string io = test::ReadFile("/proc/self/io");
    return std::atol(io.c_str() + io.find("syscw: ") + 7);
}

class Log : public testing::Test
{
protected:
    ~Log() override { log->Uninitialize(); }

    void Start() { ASSERT_EQ(log->Initialize(dir.Win("app.log")), 1); }
    // Pushes a last line and waits until it is written, and with it all before it.
    void Drain()
    {
        const std::string mark = "mark " + std::to_string(++marks);
        log->PushLog(Level::LogInfo, mark.c_str());
        WaitForText(dir.Path("app.log"), "1 " + mark + "\n");
    }
    // The file without the lines of Drain.
    std::string Text() const
    {
        std::string text;
        std::ifstream file(dir.Path("app.log"));
        for (std::string line; std::getline(file, line);)
            if (line.find("] 1 mark ") == std::string::npos) text += line + "\n";
        return text;
    }

    test::TempDir dir;
    test::VirtualClock clock{1'237'017'909}; // 2009-03-14 08:05:09 UTC
    CKXLogSys* log = CKXLogSys::GetSingletonPtr();
    int marks = 0;
};

TEST_F(Log, WritesStampLevelAndMessage)
{
    Start();
    log->PushLog(static_cast<Level>(2), "");
    log->PushLog(static_cast<Level>(77), "a\nb%s");
    log->PushLog(static_cast<Level>(0), "not");
    log->PushLogEx(static_cast<Level>(-5), "%s", "not");
    KXHost::AdvanceClock(1000);
    log->PushLogEx(Level::LogError, "%d of %s", 3, "x");
    Drain();
    EXPECT_EQ(Text(), "[2009-03-14 08:05:09] 2 \n"
                      "[2009-03-14 08:05:09] 77 a\nb%s\n"
                      "[2009-03-14 08:05:10] 2 3 of x\n");
}

TEST_F(Log, MessagesOfAnyLengthStayWhole)
{
    Start();
    std::string expected;
    for (char ch = 'a'; ch <= 'e'; ++ch) { // over what the lines before were in
        for (const std::size_t length :
             {230u, 0u, 231u, 232u, 233u, 998u, 5u, 1023u, 1024u, 1025u, 100'000u}) {
            const std::string message(length, ch);
            log->PushLogEx(Level::LogInfo, "%s", message.c_str());
            expected += "[2009-03-14 08:05:09] 1 " + message + "\n";
        }
        Drain();
    }
    EXPECT_EQ(Text(), expected);
}

TEST_F(Log, AnInstantBeyondTheCalendarIsSaid)
{
    const test::VirtualClock never(INT64_MAX);
    Start();
    log->PushLog(Level::LogInfo, "when?");
    KXHost::UseVirtualClock(INT64_MIN);
    log->PushLog(Level::LogInfo, "when?");
    Drain();
    EXPECT_EQ(Text(), "[Invalid DateTime] 1 when?\n[Invalid DateTime] 1 when?\n");
}

// Lines from before a start wait for the first one after it, and so do lines that a stop left behind.
TEST_F(Log, HoldsLinesWhileItDoesNotRun)
{
    log->PushLog(Level::LogInfo, "early");
    Start();
    AwaitSleepers();
    EXPECT_EQ(Text(), "");
    Drain();
    EXPECT_EQ(Text(), "[2009-03-14 08:05:09] 1 early\n");
    log->Uninitialize();
    log->Uninitialize();
    log->PushLog(Level::LogInfo, "between");
    Start();
    AwaitSleepers();
    EXPECT_EQ(Text(), ""); // each start empties the file
    Drain();
    EXPECT_EQ(Text(), "[2009-03-14 08:05:09] 1 between\n");
}

TEST_F(Log, WritesABatchInOneGo)
{
    for (int n = 0; n < 500; ++n)
        log->PushLog(Level::LogInfo, "batch");
    Start();
    const long nBefore = WriteCalls();
    Drain();
    AwaitSleepers();
    EXPECT_LT(WriteCalls() - nBefore, 20);
}

TEST_F(Log, TakesLinesWhileItStarts)
{
    std::jthread pusher([this] {
        for (int n = 0; n < 2000; ++n)
            log->PushLog(Level::LogInfo, "meanwhile");
    });
    Start();
    pusher.join();
    Drain();
    const std::string text = Text();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2000);
}

// The fork has neither the writer nor the right to write what is buffered.
TEST_F(Log, AForkEndsWithoutTheWriter)
{
    Start();
    log->PushLog(Level::LogInfo, "once");
    Drain();
    AwaitSleepers();
    const pid_t child = fork();
    if (child == 0) {
        log->Uninitialize();
        _exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 7);
    Drain();
    EXPECT_EQ(Text(), "[2009-03-14 08:05:09] 1 once\n");
}

// Whatever a stop finds, each line ends up in one of the two files, once and in order.
TEST_F(Log, AStopLosesNoLineToAStartThatFollows)
{
    constexpr int nLines = 20000;
    Start();
    for (int n = 0; n < nLines; ++n)
        log->PushLogEx(Level::LogInfo, "n%d", n);
    log->Uninitialize();
    const std::string before = Text();
    Start();
    Drain();
    const std::string all = before + Text();
    std::string expected;
    for (int n = 0; n < nLines; ++n)
        expected += "[2009-03-14 08:05:09] 1 n" + std::to_string(n) + "\n";
    EXPECT_EQ(all, expected);
}

TEST_F(Log, ThreadsKeepTheirOrder)
{
    constexpr int nThreads = 4;
    constexpr int nLines = 2000;
    Start();
    std::vector<std::jthread> threads;
    for (int t = 0; t < nThreads; ++t)
        threads.emplace_back([this, t] {
            for (int n = 0; n < nLines; ++n)
                log->PushLogEx(Level::LogInfo, "%d %d", t, n);
        });
    threads.clear();
    Drain();
    std::map<int, int> next;
    std::ifstream file(dir.Path("app.log"));
    for (std::string line; std::getline(file, line);) {
        int t = 0;
        int n = 0;
        if (std::sscanf(line.c_str(), "[%*[^]]] 1 %d %d", &t, &n) != 2) continue;
        EXPECT_EQ(n, next[t]++);
    }
    for (int t = 0; t < nThreads; ++t)
        EXPECT_EQ(next[t], nLines);
}

TEST_F(Log, RefusesASecondStartAndAFileThatCannotBe)
{
    EXPECT_EQ(log->Initialize(dir.Win("none\\app.log")), 0);
    EXPECT_EQ(log->Initialize(""), 0);
    Start();
    EXPECT_EQ(log->Initialize(dir.Win("other.log")), 0);
    EXPECT_FALSE(dir.Exists("other.log"));
    log->PushLog(Level::LogInfo, "still");
    Drain();
    EXPECT_NE(Text().find("still"), std::string::npos);

    CStdioFile file; // others read the file meanwhile, none writes it
    EXPECT_TRUE(file.Open(dir.Win("app.log"), CFile::modeRead | CFile::shareDenyNone));
    EXPECT_FALSE(file.Open(dir.Win("app.log"), CFile::modeReadWrite | CFile::shareDenyNone));
}

TEST_F(Log, AFullDiskLosesLinesButNotTheWriter)
{
    ASSERT_EQ(log->Initialize("C:\\dev\\full"), 1);
    for (int n = 0; n < 5000; ++n)
        log->PushLog(Level::LogInfo, CString('x', 200));
    log->Uninitialize(); // waits for the writer: it is still there to be stopped
    Start();
    Drain();
    EXPECT_NE(test::ReadFile(dir.Path("app.log")).find("mark 1"), std::string::npos);
}

TEST_F(Log, LeavesNoHandleBehind)
{
    const int nBefore = KXHost::LiveHandles();
    Start();
    EXPECT_EQ(KXHost::LiveHandles(), nBefore + 3);
    log->Uninitialize();
    EXPECT_EQ(KXHost::LiveHandles(), nBefore);
}

} // namespace
