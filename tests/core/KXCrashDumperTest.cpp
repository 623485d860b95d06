#include "KXCrashDumper.h"
#include "tests/core/CrashPlace.h"
#include "tests/support/CrashKinds.h"
#include "tests/support/HttpServer.h"

#include <httplib.h>
#include <regex>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using test::kSanitized;

struct Place : test::CrashPlace
{
    using CrashPlace::CrashPlace;

    void Program(const std::string& content) const
    {
        std::ofstream(Path("KXCrashReport.exe")) << content;
        fs::permissions(Path("KXCrashReport.exe"), fs::perms::owner_all);
    }

    std::string Arguments() const { return test::ReadFile(Path("args")); }
    std::string Pipe(const char* pszName) const
    {
        mkfifo(Path(pszName).c_str(), 0600);
        return Path(pszName);
    }
    // gdb says this of the dump.
    std::string Debug(const std::string& commands) const
    {
        return test::OutputOf("gdb -nx -batch " + commands + " " KX_TEST_BIN "/CrashChild " + Dump(".dmp") +
                              " 2>&1");
    }
};

// With a reporter that writes its arguments, a line a start, to the file `args` and then runs these commands,
// for which the library's is `real`.
struct Scripted : Place
{
    explicit Scripted(const std::string& commands = "", std::string app = "app") : Place(std::move(app))
    {
        Program("#!/bin/sh\ncd \"$(dirname \"$0\")\"\nprintf '%s\\n' \"$*\" >> args\n" + commands);
        RealReporter("real");
    }
};

// With the library's reporter.
struct Reported : Place
{
    Reported() { RealReporter(); }
};

// The report's part about the thread that crashed.
std::string CrashedThread(const std::string& report)
{
    const auto begin = report.find("(crashed)\n");
    return begin == report.npos ? "" : report.substr(begin, report.find("\n\n", begin) - begin);
}

using CrashDumper = test::CrashTest;

TEST_F(CrashDumper, ReportsEveryKindAndEndsByItsSignal)
{
    std::map<std::string, crashes::Kind> kinds(crashes::kKinds.begin(), crashes::kKinds.end());
    kinds["searches"] = {nullptr, SIGSEGV, "CrashByRead"};
    if (kSanitized) kinds.erase("heap"); // its allocator is another one
    for (const auto& [how, kind] : kinds) {
        SCOPED_TRACE(how);
        const Reported place;
        EXPECT_EQ(place.Crash(how), 128 + kind.nSignal);
        const std::string report = place.Report();
        EXPECT_THAT(report, HasSubstr("signal       " + std::to_string(kind.nSignal) + " SIG"));
        EXPECT_THAT(report, HasSubstr("\nmodules\n"));
        EXPECT_THAT(CrashedThread(report), HasSubstr(kind.pszFunction));
        if (how == "overflow") {
            EXPECT_THAT(CrashedThread(report), HasSubstr("_start")); // its origin
        }
        EXPECT_GT(fs::file_size(place.Dump(".dmp")), 4096u);
    }
}

// No heap, no lock: the reporter's path has to be converted and found in another case while the heap is
// locked.
TEST_F(CrashDumper, FindsItsReporterInEveryState)
{
    const std::vector<std::pair<std::string, std::string>> paths{
        {"app", "C:\\app\\"},
        {"App Dir", "c:/app dir\\"},
        {"\u7A0B\u5E8F", "C:\\\xB3\xCC\xD0\xF2\\"},
        {"deep/dir", "C:\\.\\deep\\gone\\..\\..\\..\\DEEP\\Dir\\"},
    };
    for (const auto& [directory, path] : paths) {
        SCOPED_TRACE(directory);
        const Scripted place("[ -d dumps ] && echo there >> args\n", directory);
        EXPECT_EQ(place.Crash(kSanitized ? "read" : "heap", {"KX_TEST_PATH=" + path}), 128 + SIGSEGV);
        EXPECT_THAT(place.Arguments(), testing::EndsWith("there\n"));
    }
}

TEST_F(CrashDumper, HandsOverItsArguments)
{
    const Scripted place;
    const auto crash = [&](std::vector<std::string> env) {
        fs::remove(place.Path("args"));
        env.insert(env.end(), {"KX_TEST_TIME=1236989109", "TZ=CST-8"}); // 2009-03-14 08:05:09 in that zone
        EXPECT_EQ(place.Crash("read", std::move(env)), 128 + SIGSEGV);
        return place.Arguments();
    };
    const std::string middle =
        R"(-dmp\[C:\\app\\dumps\\stem_20090314080509\.dmp\] -pid\[(\d+)\] -tid\[\1\] -exp\[\d+\] -inf\[ann@example\.com\])";
    const auto expect = [&](const std::string& text, const std::string& head, const std::string& tail) {
        EXPECT_TRUE(std::regex_match(text, std::regex(head + middle + tail + "\n"))) << text;
    };
    expect(crash({}), R"(-sd -app\[App\] -run\[\] )", "");
    expect(
        crash({"KX_TEST_APP=My  [beta] App", "KX_TEST_RUN=-a \"b\"", "KX_TEST_SEND=1", "KX_TEST_RESTART=1"}),
        R"(-sd -app\[My  \[beta\] App\] -run\[-a "b"\] )", " -autosend -autorestart");
    expect(crash({"KX_TEST_RESTART=1"}), R"(-sd -app\[App\] -run\[\] )", " -autorestart");
}

TEST_F(CrashDumper, RunsWithEmptyValuesBeforeInitialize)
{
    const Scripted place;
    const auto before = fs::current_path();
    fs::current_path(place.Path(""));
    EXPECT_EQ(place.Crash("abort", {"KX_TEST_EARLY=1"}), 128 + SIGABRT);
    fs::current_path(before);
    EXPECT_THAT(place.Arguments(), testing::StartsWith("-sd -app[] -run[] -dmp[dumps\\_"));
    EXPECT_TRUE(place.Dir().Exists("app/dumps"));
}

TEST_F(CrashDumper, CrashesAtOnceAreOneReport)
{
    for (int nTry = 0; nTry < 5; ++nTry) {
        const Scripted place;
        EXPECT_EQ(place.Crash("together"), 128 + SIGSEGV);
        const std::string lines = place.Arguments();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 1);
    }
}

TEST_F(CrashDumper, EndsInOrderWithoutAReport)
{
    const std::string reporter = "app/KXCrashReport.exe", marker = "nv_dbg_14.txt";
    // In a place with a script for a reporter, the file that is removed, what stands there then, and
    // settings.
    const std::tuple<std::string, std::function<void(const Place&)>, std::vector<std::string>> cases[] = {
        {marker, [](const Place&) {}, {}},
        {marker, [&](const Place& place) { place.Dir().MakeDir(marker); }, {}},
        {reporter, [](const Place&) {}, {}},
        {reporter, [&](const Place& place) { place.Dir().Write(reporter, "#!"); }, {}}, // nobody may run it
        {reporter, [](const Place& place) { place.Program("words"); }, {}},
        {reporter, [](const Place& place) { place.RealReporter().Dir().Write("app/dumps", ""); }, {}},
        {"", [](const Place&) {}, {"KX_TEST_PATH=Q:\\app\\"}},
        {"", [](const Place&) {}, {"KX_TEST_APP=" + std::string(40'000, 'a')}},
        {"", [](const Place&) {}, {"KX_TEST_PATH=C:\\" + std::string(300, 'a')}},
    };
    int nCase = 0;
    for (const auto& [removed, prepare, env] : cases) {
        SCOPED_TRACE("case " + std::to_string(nCase++));
        const Scripted place;
        if (!removed.empty()) fs::remove(place.Dir().Path(removed));
        prepare(place);
        EXPECT_EQ(place.Crash("division", env), 128 + SIGFPE);
        EXPECT_THAT((std::array{place.Arguments(), place.Dump(".dmp"), place.Dump(".txt")}),
                    testing::Each(""));
    }
}

TEST_F(CrashDumper, WaitsForItsReporterWhateverThatDoes)
{
    const Scripted place("echo $PPID > started\nread line < go\nkill -KILL $$\n");
    const std::string started = place.Pipe("started");
    const std::string go = place.Pipe("go");
    test::Child child = place.Start("read");
    EXPECT_EQ(test::ReadFile(started), std::to_string(child.Pid()) + "\n"); // waits for it
    EXPECT_EQ(kill(child.Pid(), 0), 0);
    EXPECT_THAT(test::ReadFile("/proc/" + std::to_string(child.Pid()) + "/status"),
                testing::Not(HasSubstr("State:\tZ")));
    std::ofstream(go) << "go\n";
    EXPECT_EQ(child.Wait(), 128 + SIGSEGV);
}

// A fault in a static object's destructor and in an atexit handler, and one of a thread while static objects
// go.
TEST_F(CrashDumper, ReportsToTheEndOfTheProcess)
{
    for (const char* pszHow : {"static", "atexit", "outliving"}) {
        SCOPED_TRACE(pszHow);
        const Scripted place("exec ./real \"$@\"\n");
        EXPECT_EQ(place.Crash(pszHow), 128 + SIGSEGV);
        EXPECT_THAT(place.Arguments(),
                    testing::StartsWith("-sd -app[App] -run[] -dmp[C:\\app\\dumps\\stem_"));
        EXPECT_THAT(CrashedThread(place.Report()), HasSubstr("CrashByRead"));
    }
}

TEST_F(CrashDumper, HoldsAnExitUntilTheReportIsMade)
{
    const Scripted place("read line < go\n");
    const std::string go = place.Pipe("go");
    test::Child child = place.Start("masked");
    test::Await([&] { return place.Dir().Exists("exits"); });
    std::ofstream(go) << "go\n";
    EXPECT_EQ(child.Wait(), 128 + SIGSEGV);
    EXPECT_FALSE(place.Dir().Exists("gone")); // static objects stay for the filter's thread
}

TEST_F(CrashDumper, ReportsWithoutADescriptorLeft)
{
    if (kSanitized)
        GTEST_SKIP() << "UndefinedBehaviorSanitizer looks at memory through a pipe: without a descriptor it "
                        "takes every object for none";
    const Scripted place;
    EXPECT_EQ(place.Crash("descriptors"), 128 + SIGSEGV);
    EXPECT_THAT(place.Arguments(), testing::StartsWith("-sd -app[App]"));
}

// The loader keeps to this flag: it never takes the library away.
TEST(Library, IsNeverUnloaded)
{
    EXPECT_THAT(test::OutputOf("readelf -d " KX_TEST_BIN "/../lib/libKXCommonClass.so"),
                HasSubstr("NODELETE"));
}

TEST_F(CrashDumper, LeavesACoreThatADebuggerOpens)
{
    for (const char* pszHow : {"division", "exception", "thread", "overflow"}) {
        SCOPED_TRACE(pszHow);
        const Reported place;
        place.Crash(pszHow);
        const std::string text = place.Debug("-ex 'bt 40' -ex 'info threads' -ex 'p $_siginfo.si_signo'");
        const crashes::Kind& kind = crashes::kKinds.at(pszHow);
        EXPECT_THAT(text, HasSubstr("Program terminated with signal SIG"));
        EXPECT_THAT(text, HasSubstr(kind.pszFunction));
        EXPECT_THAT(text, HasSubstr("$1 = " + std::to_string(kind.nSignal)));
        if (kind.nSignal != SIGABRT) {
            EXPECT_TRUE(std::regex_search(text, std::regex("#[01] .*CrashBy"))) << text;
        }
        const bool bStack = std::regex_search(text, std::regex("#9 .*CrashByOverflow"));
        EXPECT_EQ(bStack, std::string(pszHow) == "overflow") << text;
    }
    const Reported place; // its stack is kept
    place.Crash("mappings");
    EXPECT_THAT(place.Debug("-ex bt"), testing::ContainsRegex("#[1-9] .* in main "));
}

TEST_F(CrashDumper, TellsWhatItCanOfAProcessThatItMayNotLookInto)
{
    // For one that may not be traced, one that isn't there, in which nothing can be read either.
    const Scripted place("exec ./real $(printf %s \"$*\" | sed 's/id.[0-9]*/id[999999999/g')\n");
    place.Dir().MakeDir("app/Dumps"); // the filter finds it, and so does the reporter
    EXPECT_EQ(place.Crash("read"), 128 + SIGSEGV);
    EXPECT_FALSE(place.Dir().Exists("app/dumps"));
    fs::rename(place.Path("Dumps"), place.Path("dumps"));
    EXPECT_THAT(place.Report(), HasSubstr("application  App\n"));
    EXPECT_EQ(place.Dump(".dmp"), "");
}

TEST_F(CrashDumper, SendsBothFilesToItsServer)
{
    httplib::MultipartFormDataMap form;
    const test::HttpServer server([&](httplib::Server& http) {
        http.Post("/crash", [&](const auto& request, auto&) { form = request.files; });
    });
    const Reported place;
    const std::string url = "KX_CRASH_URL=" + server.Url("/crash");
    EXPECT_EQ(place.Crash("read", {url, "KX_TEST_APP=\xB3\xCC\xD0\xF2"}),
              128 + SIGSEGV); // not asked to
    EXPECT_TRUE(form.empty());
    EXPECT_EQ(place.Crash("abort", {url, "KX_TEST_SEND=1", "KX_TEST_APP=\xB3\xCC\xD0\xF2"}), 128 + SIGABRT);
    const auto content = [&](const char* pszName) {
        const auto found = form.find(pszName);
        return found != form.end() ? found->second.content : "";
    };
    EXPECT_EQ(content("app"), "\u7A0B\u5E8F");
    EXPECT_EQ(content("contact"), "ann@example.com");
    EXPECT_THAT(content("report"), HasSubstr("SIGABRT"));
    EXPECT_THAT(content("dump"), testing::StartsWith("\177ELF"));
}

// A dump goes to nobody who doesn't take it, and over no net in plain text unless that was asked for.
TEST_F(CrashDumper, TakesOnlyAnAnswerOf2xxForSent)
{
    httplib::Server server;
    int nPosts = 0;
    server.Post(R"(/(\d+))", [&](const httplib::Request& request, httplib::Response& response) {
        ++nPosts;
        response.status = std::stoi(request.matches[1]);
        if (response.status == 302) response.set_redirect("/200");
    });
    const std::string port = ":" + std::to_string(server.bind_to_any_port("0.0.0.0"));
    std::jthread serving([&] { server.listen_after_bind(); });
    const auto send = [&](const std::string& url, const std::string& setting = "KX_CRASH_PLAIN=") {
        const Scripted place("./real \"$@\"; echo $? > code\n");
        nPosts = 0;
        place.Crash("read", {"KX_CRASH_URL=" + url, "KX_TEST_SEND=1", setting,
                             "http_proxy=http://127.0.0.1:1", "no_proxy=0.0.0.0"});
        return test::ReadFile(place.Path("code")) + std::to_string(nPosts);
    };
    EXPECT_EQ(send("http://127.0.0.1" + port + "/200"), "0\n1");
    EXPECT_EQ(send("http://localhost" + port + "/204"), "0\n1");
    EXPECT_EQ(send("http://127.0.0.1" + port + "/302"), "1\n1");
    EXPECT_EQ(send("http://127.0.0.1" + port + "/500"), "1\n1");
    EXPECT_EQ(send("http://0.0.0.0" + port + "/200"), "1\n0");
    EXPECT_EQ(send("0.0.0.0" + port + "/200", "KX_CRASH_PLAIN=1"), "1\n0"); // that is an https address
    EXPECT_EQ(send("http://0.0.0.0" + port + "/200", "KX_CRASH_PLAIN=1"), "0\n1");
    EXPECT_EQ(send("ftp://127.0.0.1" + port + "/200", "KX_CRASH_PLAIN=1"), "1\n0");
    server.stop();
}

TEST_F(CrashDumper, RestartsTheProgramOnceItHasEndedButNotAgainAndAgain)
{
    const Reported place;
    const std::string pipe = place.Pipe("restarted");
    test::Child child =
        place.Start("read", {"KX_TEST_RESTART=1", "KX_TEST_RUN=" + pipe + " restarted again"});
    EXPECT_EQ(child.Wait(), 128 + SIGSEGV);
    EXPECT_EQ(test::ReadFile(pipe), "again\n"); // waits for it
    const std::string mark = place.Dir().Path("mark");
    // A program that is started holds the pipe that is read here to its end.
    const auto crash = [&](const std::string& when) {
        test::OutputOf("ASAN_OPTIONS=handle_segv=0 KX_TEST_RESTART=1 KX_TEST_RUN='" + mark +
                       " restarted again' " + "KX_CRASH_RESTARTED=" + when + " " + KX_TEST_BIN +
                       "/CrashChild " + place.Dir().Path() + " read 2>&1");
        return fs::remove(mark);
    };
    EXPECT_FALSE(crash("$(date +%s)"));
    EXPECT_TRUE(crash("$(($(date +%s) - 3600))"));
}

// The class as a client sees it in its own process.
struct Dumper : CKXCrashDumper
{
    using CKXCrashDumper::ExceptionFilter;
    using CKXCrashDumper::m_OriginalFilter;
    // In the order of Initialize.
    static auto Values()
    {
        return std::tuple(m_strAppName, m_strAppPath, m_strExeName, m_strRestartParam, m_strContactInfo,
                          m_bAutoSend, m_bAutoRestart);
    }
};

long Other(_EXCEPTION_POINTERS*)
{
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST(CrashHook, HooksForItsLifeAndKeepsTheLastValues)
{
    EXPECT_EQ(SetUnhandledExceptionFilter(Other), nullptr);
    {
        Dumper dumper;
        EXPECT_EQ(Dumper::m_OriginalFilter, &Other);
        dumper.Initialize("a", "b", "c", "d", "e", 1, 2);
        dumper.Initialize("A", "B\\", "C", "D", "E", 0, 7);
        dumper.Unintialize();
        const Dumper& same = dumper;
        EXPECT_EQ(&(dumper = same), &dumper);
        EXPECT_EQ(Dumper::Values(), std::tuple("A", "B\\", "C", "D", "E", 0, 7));
        EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), &Dumper::ExceptionFilter);
    }
    EXPECT_EQ(SetUnhandledExceptionFilter(nullptr), &Other);
}

} // namespace
