#include "KXLogSys.h"
#include "platform/Sync.h"
#include "tests/support/LogLines.h"
#include "tests/support/Test.h"

#include <dlfcn.h>
#include <termios.h>

namespace {

using Level = CKXLogSys::LogLevel;

std::atomic<long> g_nWrites{0};
std::atomic<std::function<void()>*> g_pBeforeWrite{nullptr}; // once

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
    test::Await(allSleep);
}

struct Log : testing::Test
{
    ~Log() override { log->Uninitialize(); }

    void Start() { ASSERT_EQ(log->Initialize(dir.Win("app.log")), 1); }
    void Drain() { ASSERT_EQ(log->Flush(INFINITE), 1); }
    std::string Text() const { return dir.Read("app.log"); }

    test::TempDir dir;
    test::VirtualClock clock{1'237'017'909}; // 2009-03-14 08:05:09 UTC
    CKXLogSys* log = CKXLogSys::GetSingletonPtr();
};

TEST_F(Log, WritesStampLevelAndMessage)
{
    Start();
    log->PushLog(static_cast<Level>(2), "");
    log->PushLog(static_cast<Level>(77), "a\nb%s");
    log->PushLog(static_cast<Level>(0), "not");
    log->PushLogEx(static_cast<Level>(-5), "%s", "not");
    Drain();
    AwaitSleepers(); // a line wakes the writer by itself
    KXHost::AdvanceClock(1000);
    log->PushLogEx(Level::LogError, "%d of %s", 3, "x");
    test::Await([this] { return Text().ends_with(" of x\n"); });
    for (const std::int64_t nBeyondTheCalendar : {INT64_MAX, INT64_MIN}) {
        KXHost::UseVirtualClock(nBeyondTheCalendar);
        log->PushLog(Level::LogInfo, "when?");
    }
    Drain();
    EXPECT_EQ(Text(), "[2009-03-14 08:05:09] 2 \n"
                      "[2009-03-14 08:05:09] 77 a\nb%s\n"
                      "[2009-03-14 08:05:10] 2 3 of x\n"
                      "[Invalid DateTime] 1 when?\n[Invalid DateTime] 1 when?\n");
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

// Lines from before a start wait for the first one after it, and so do lines that a stop left behind.
TEST_F(Log, HoldsLinesWhileItDoesNotRun)
{
    log->PushLog(Level::LogInfo, "early");
    Start();
    AwaitSleepers();
    EXPECT_EQ(Text(), "");
    log->PushLog(Level::LogInfo, "more");
    Drain();
    EXPECT_EQ(Text(), "[2009-03-14 08:05:09] 1 early\n[2009-03-14 08:05:09] 1 more\n");
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
    const long nBefore = g_nWrites;
    Drain();
    AwaitSleepers();
    EXPECT_LT(g_nWrites - nBefore, 20);
}

TEST_F(Log, TakesLinesWhileItStarts)
{
    std::jthread pushing([this] {
        for (int n = 0; n < 4000; ++n)
            log->PushLog(Level::LogInfo, "meanwhile");
    });
    Start();
    pushing.join();
    Drain();
    const std::string text = Text();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4000);
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
    log->PushLog(Level::LogInfo, "taken once the flush waits for it");
    ASSERT_EQ(log->Initialize("C:\\dev\\full"), 1);
    EXPECT_EQ(log->Flush(INFINITE), 0);
    for (int n = 0; n < 5000; ++n)
        log->PushLog(Level::LogInfo, CString('x', 200));
    log->Uninitialize(); // waits for the writer: it is still there to be stopped
    Start();
    Drain();
    log->PushLog(Level::LogInfo, "after");
    Drain();
    EXPECT_THAT(Text(), testing::EndsWith("] 1 after\n"));
}

// The system cuts a line where a limit of the file's size is, as a full disk does.
TEST_F(Log, ALineBehindOneThatTheDiskCutStandsOnItsOwn)
{
    const std::string line = "[2009-03-14 08:05:09] 1 " + std::string(59, 'x') + "\n"; // of 84 bytes
    std::string eleven;
    for (int n = 0; n < 11; ++n)
        eleven += line;
    const std::tuple<rlim_t, rlim_t, const char*> rooms[] = {
        {0, 0, ""},
        {1, 1, "[\n"}, // one byte of a line, and none of the next try
        {1, 2, "[\n"}, // the end of that line alone
    };
    for (const auto& [first, second, left] : rooms) {
        SCOPED_TRACE(second);
        Start();
        {
            const test::FileLimit room(eleven.size() + first);
            for (int n = 0; n < 30; ++n)
                log->PushLog(Level::LogInfo, CString('x', 59));
            log->Flush(INFINITE); // some are lost, maybe before this waits for them
        }
        {
            const test::FileLimit room(eleven.size() + second);
            log->PushLog(Level::LogInfo, "lost too");
            log->Flush(INFINITE);
        }
        log->PushLog(Level::LogInfo, "after");
        EXPECT_EQ(log->Flush(INFINITE), 1);
        log->Uninitialize();
        EXPECT_EQ(Text(), eleven + left + "[2009-03-14 08:05:09] 1 after\n");
    }
}

TEST_F(Log, AFlushIsToldOfItsOwnLinesAlone)
{
    const test::FileLimit room(2 * 84);
    std::atomic<bool> bSecond{false};
    std::function<void()> push = [&] {
        log->PushLog(Level::LogInfo, CString('x', 59));
        bSecond = true;
        AwaitSleepers(); // who waits in the flush
        log->PushLog(Level::LogInfo, "lost");
    };
    Start();
    g_pBeforeWrite = &push;
    log->PushLog(Level::LogInfo, CString('x', 59));
    test::Await([&] { return bSecond.load(); });
    EXPECT_EQ(log->Flush(INFINITE), 1);
}

// The far end of a terminal, which takes no more once nobody reads what was written.
class Terminal : test::Fixed
{
public:
    Terminal()
    {
        unlockpt(m_fd);
        termios mode{};
        tcgetattr(m_fd, &mode);
        cfmakeraw(&mode);
        tcsetattr(m_fd, TCSANOW, &mode);
    }
    ~Terminal() { close(m_fd); }
    CString Path() const { return ("C:" + std::string(ptsname(m_fd))).c_str(); }
    // All that is written until the writer closes it.
    std::string Read() const
    {
        std::string text;
        std::array<char, 4096> block;
        for (ssize_t n; (n = read(m_fd, block.data(), block.size())) > 0;)
            text.append(block.data(), static_cast<std::size_t>(n));
        return text;
    }

private:
    const int m_fd = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
};

// A stop that comes while the writer is at a line leaves the lines behind it, and those are written ahead of
// what is pushed later.
TEST_F(Log, AStopLeavesLinesInTheirOrder)
{
    Terminal terminal;
    ASSERT_EQ(log->Initialize(terminal.Path()), 1);
    int nPushed = 0;
    const auto push = [&](int nLines) {
        for (int n = 0; n < nLines; ++n)
            log->PushLogEx(Level::LogInfo, "n%d", nPushed++);
    };
    push(20'000);
    AwaitSleepers(); // the writer, in the midst of them
    push(20'000);
    std::jthread waiting([&] { EXPECT_EQ(log->Flush(INFINITE), 0); }); // the stop ends it
    AwaitSleepers();
    std::jthread stop([&] { log->Uninitialize(); });
    AwaitSleepers();
    const std::string before = terminal.Read();
    stop.join();
    waiting.join();
    EXPECT_EQ(log->Flush(INFINITE), 0); // it doesn't run
    Start();
    push(1);
    test::Await([&] { return Text().ends_with(" n40000\n"); }); // the line itself wakes the writer
    std::string expected;
    for (int n = 0; n < nPushed; ++n)
        expected += "[2009-03-14 08:05:09] 1 n" + std::to_string(n) + "\n";
    EXPECT_EQ(before + Text(), expected);
    EXPECT_GT(Text().size(), before.size());
}

TEST_F(Log, AFlushEndsWithItsTime)
{
    Terminal terminal;
    ASSERT_EQ(log->Initialize(terminal.Path()), 1);
    EXPECT_EQ(log->Flush(INFINITE), 1); // there is nothing to wait for
    for (int n = 0; n < 1000; ++n)
        log->PushLog(Level::LogInfo, CString('x', 100));
    EXPECT_EQ(log->Flush(0), 0);
    std::atomic<int> nResult{-1};
    std::jthread waiting([&] { nResult = log->Flush(5000); });
    test::AwaitSleepers(1);
    KXHost::AdvanceClock(4999);
    EXPECT_EQ(nResult, -1);
    KXHost::AdvanceClock(1);
    waiting.join();
    EXPECT_EQ(nResult, 0);
    std::jthread flushing([&] {
        EXPECT_EQ(log->Flush(static_cast<unsigned long>(-1)), 1);
        log->Uninitialize();
    });
    EXPECT_EQ(terminal.Read().size(), 1000u * 125);
}

// Whichever allocation fails, and where no thread can be started.
TEST(LogStart, ThatFailsLeavesNothingRunning)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer has a thread of its own";
#endif
    const test::TempDir dir;
    EXPECT_EQ(test::RunChild("LogStartChild", {dir.Path("app.log")}), "");
}

// Neither hangs nor loses a line of the parent's, and the child's lines go where it says.
TEST(LogFork, OfABusyProcessMayLogAndUseFiles)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "ThreadSanitizer starts no thread behind a fork";
#elif defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP()
        << "a fork's child waits for ever for AddressSanitizer's own allocator, whose locks a thread "
           "of the parent held";
#endif
    const test::TempDir dir;
    EXPECT_EQ(test::RunChild("ForkChild", {dir.Path(), "100"}), "");
    const test::ThreadLines lines(dir.Read("parent.log"), 2);
    EXPECT_EQ(lines.wrong, "");
    EXPECT_GT(lines.counts[0], 0u);
}

} // namespace

extern "C" [[gnu::visibility("default")]] ssize_t write(int fd, const void* pData, std::size_t cb)
{
    static const auto pfnReal = reinterpret_cast<decltype(&write)>(dlsym(RTLD_NEXT, "write"));
    ++g_nWrites;
    if (const auto* pAct = g_pBeforeWrite.exchange(nullptr)) (*pAct)();
    return pfnReal(fd, pData, cb);
}
