#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/FileSystem.h"
#include "tests/net/Journal.h"
#include "tests/support/Process.h"
#include "tests/support/RawServer.h"

namespace {

using test::Notice;
using test::RawServer;
using Codes = std::vector<unsigned int>;

const std::string kOk = "HTTP/1.1 200 OK\r\n";
const std::string kHello = kOk + "Content-Length: 5\r\n\r\nhello";

struct Downloads : testing::Test
{
    unsigned int Add(const std::string& url, const CString& file = "", unsigned int actAt = 0)
    {
        return manager->AddTask(url.c_str(), file, test::Journal::Write, actAt);
    }
    // Adds a task and waits for its last code.
    unsigned int Run(const std::string& url, const CString& file = "")
    {
        const unsigned int id = Add(url, file);
        journal.Await(2031, id);
        return id;
    }
    // Waits until the worker has ended by itself; the test has that many servers of its own.
    void AwaitEnd(int nServers = 0)
    {
        test::Await([&] { return test::Threads() <= nThreads + nServers; });
    }

    test::TempDir dir;
    test::Journal journal;
    RawServer hello{RawServer::Answering(kHello)};
    int nThreads = test::Threads();
    std::optional<test::Manager> manager{std::in_place};
};

TEST_F(Downloads, TellEachStepOfACompleteTransfer)
{
    const std::string body(5000, 'b');
    RawServer known(RawServer::Answering(kOk + "Content-Length: 5000\r\n\r\n" + body));
    RawServer chunked(
        RawServer::Answering(kOk + "Transfer-Encoding: chunked\r\n\r\n1388\r\n" + body + "\r\n0\r\n\r\n"));
    RawServer empty(RawServer::Answering(kOk + "Content-Length: 0\r\n\r\n"));
    RawServer error(RawServer::Answering("HTTP/1.1 500 Oh\r\nContent-Length: 3\r\n\r\noh!"));
    const std::tuple<RawServer&, unsigned long, std::string> cases[] = {
        {known, 5000, body}, {chunked, 0, body}, {empty, 0, ""}, {error, 3, "oh!"}};
    for (const auto& [server, total, content] : cases) {
        dir.Write("file", "what was there before, longer than some of the bodies");
        const unsigned int id = Run(server.Url(), dir.Win("file"));
        EXPECT_EQ(dir.Read("file"), content);
        const std::string url = server.Url(), file(dir.Win("file"));
        const std::vector<Notice> notices = journal.Notices(id);
        EXPECT_EQ(notices.front(), (Notice{2029, id, total, 0, url, file}));
        EXPECT_EQ(notices.back(), (Notice{2031, id, total, content.size(), url, file}));
        unsigned long received = 0;
        for (std::size_t n = 1; n + 1 < notices.size(); ++n) {
            EXPECT_EQ(notices[n].code, 2030u);
            EXPECT_GT(notices[n].received, received);
            EXPECT_LE(notices[n].received, received + 2048);
            received = notices[n].received;
        }
        EXPECT_EQ(received, content.size());
    }
}

TEST_F(Downloads, FollowOneAnotherInOrderOnOneConnection)
{
    const unsigned int first = Add(hello.Url("/1"), dir.Win("1"));
    EXPECT_EQ(Add(hello.Url("/2")), first + 1); // nowhere
    EXPECT_EQ(manager->AddTask(hello.Url("/3").c_str(), "", nullptr), first + 2);
    EXPECT_EQ(manager->AddTask(hello.Url("/4").c_str(), "", nullptr, 0), first + 3);
    const unsigned int last = Run(hello.Url("/5"), dir.Win("5"));
    EXPECT_EQ(last, first + 4);
    std::vector<unsigned int> ids;
    for (const Notice& notice : journal.Notices())
        ids.push_back(notice.id);
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
    EXPECT_EQ(dir.Read("1"), "hello");
    EXPECT_EQ(dir.Read("5"), "hello");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 2);
    EXPECT_EQ(hello.Connections(), 1);
}

TEST_F(Downloads, AFileHoldsWhatATaskHasReceived)
{
    std::vector<std::size_t> sizes, received;
    bool bClosed = false; // at the end, so that the callback may use it
    journal.act = [&](unsigned int code) {
        if (code == 2030) sizes.push_back(std::filesystem::file_size(dir.Path("file")));
        if (code == 2031) bClosed = CFile().Open(dir.Win("file"), CFile::modeWrite) != 0;
    };
    RawServer server(RawServer::Answering(kOk + "Content-Length: 9000\r\n\r\n" + std::string(9000, 'x')));
    const unsigned int id = Add(server.Url(), dir.Win("file"), 2030);
    journal.Await(2031, id);
    for (const Notice& notice : journal.Notices())
        if (notice.code == 2030) received.push_back(notice.received);
    EXPECT_EQ(sizes, received);
    Run(hello.Url());
    EXPECT_TRUE(bClosed);
}

TEST_F(Downloads, ACallbackMayAddTasks)
{
    unsigned int added = 0;
    journal.act = [&](unsigned int code) {
        if (code == 2029) added = Add(hello.Url("/more"));
    };
    const unsigned int id = Add(hello.Url(), "", 2029);
    journal.Await(2031, id);
    journal.Await(2031, added);
    EXPECT_EQ(journal.Codes(added), (Codes{2029, 2030, 2031}));
}

// Whatever fails ends the worker: no last code, and no task after it.
TEST_F(Downloads, TheFirstFailureIsTheEnd)
{
    RawServer cut(RawServer::Answering(kOk + "Content-Length: 9\r\n\r\nhello", true));
    const std::string gone = [] { return RawServer([](test::Peer&) {}).Url(); }();
    const CString file = dir.Win("file");
    KXHost::MountDrive('D', {"/dev", DRIVE_FIXED, "", "", 0});
    const Codes none, begun{2029}, inBlocks{2029, 2030};
    // The URL, the local file, what is done at 2030, the codes, what is in the file then, and a part of what
    // is told of it.
    const std::tuple<const char*, std::string, CString, std::function<void(unsigned int)>, Codes, std::string,
                     std::string>
        cases[] = {
            {"server gone", gone, file, {}, none, "old", "onnect"},
            {"no URL", "optype&optypeval=3", file, {}, none, "old", "URL"},
            {"another protocol", "file:///etc/hostname", file, {}, none, "old", "file:///etc/hostname: "},
            {"cut", cut.Url(), file, {}, inBlocks, "hello", cut.Url() + ": "},
            {"cut, nowhere", cut.Url(), "", {}, inBlocks, "old", cut.Url() + ": "},
            {"no directory", hello.Url(), dir.Win("none\\file"), {}, begun, "old", "none\\file: "},
            {"a directory", hello.Url(), dir.Win(), {}, begun, "old", "denied"},
            {"full disk", hello.Url(), "D:\\full", {}, begun, "old", "full"},
            {"number thrown", hello.Url(), file, [](auto) { throw 5; }, inBlocks, "hello", "callback threw"},
            {"exception thrown", hello.Url(), file, [](auto) { AfxThrowMemoryException(); }, inBlocks,
             "hello", "memory"},
        };
    for (const auto& [name, url, localFile, act, codes, kept, reason] : cases) {
        SCOPED_TRACE(name);
        dir.Write("file", "old");
        journal.act = act;
        const test::DebugText debug(true);
        EXPECT_TRUE(manager->IsRunning());
        EXPECT_EQ(manager->GetLastFailure(), "");
        const unsigned int id = Add(url, localFile, 2030);
        AwaitEnd(1);
        EXPECT_FALSE(manager->IsRunning());
        EXPECT_THAT(std::string(manager->GetLastFailure()),
                    testing::AllOf(testing::StartsWith(url + ": "), testing::HasSubstr(reason)));
        EXPECT_EQ(debug.Text(), "http: " + std::string(manager->GetLastFailure()) +
                                    "; the download worker has ended, and what is queued is never served\n");
        EXPECT_EQ(journal.Codes(id), codes);
        EXPECT_EQ(dir.Read("file"), kept);
        const int nConnections = hello.Connections();
        const unsigned int later = Add(hello.Url());
        EXPECT_EQ(later, id + 1);
        manager.emplace(); // frees the task that waits
        EXPECT_EQ(journal.Codes(later), Codes{});
        EXPECT_EQ(hello.Connections(), nConnections);
    }
    KXHost::UnmountDrive('D');
}

TEST_F(Downloads, AStopCutsShortAtOnceWhatASilentServerHoldsUp)
{
    RawServer afterBlock(RawServer::Stalling(kOk + "Content-Length: 9\r\n\r\nhello"));
    RawServer afterHeaders(RawServer::Stalling(kOk + "Content-Length: 9\r\n\r\n"));
    const std::tuple<RawServer&, unsigned int, Codes> cases[] = {{afterBlock, 2030, {2029, 2030, 2032, 2031}},
                                                                 {afterHeaders, 2029, {2029, 2032}}};
    for (const auto& [server, await, codes] : cases) {
        const unsigned int id = Add(server.Url(), dir.Win("file"));
        const unsigned int waiting = Add(hello.Url());
        journal.Await(await, id);
        manager->Uninitialize();
        EXPECT_EQ(manager->GetNextTask(), nullptr);
        manager.emplace();
        EXPECT_EQ(journal.Codes(id), codes);
        EXPECT_EQ(journal.Codes(waiting), Codes{});
    }
    EXPECT_EQ(dir.Read("file"), ""); // the second one emptied it
}

TEST_F(Downloads, AStopEndsAServerThatNeverAnswers)
{
    std::binary_semaphore asked{0};
    RawServer server(RawServer::Stalling("", [&] { asked.release(); }));
    const unsigned int id = Add(server.Url());
    asked.acquire();
    manager->Uninitialize();
    manager->StartDownload(); // the stop stays: its worker ends at once
    const unsigned int later = Add(hello.Url());
    AwaitEnd(1);
    manager->StopDownload();
    std::jthread([this] { EXPECT_EQ(test::Manager::DownloadFunc(&*manager), 0u); }).join();
    manager->Initialize();
    EXPECT_FALSE(manager->IsRunning());
    EXPECT_EQ(manager->GetLastFailure(), ""); // a stop is no failure
    EXPECT_EQ(journal.Codes(id), Codes{});
    EXPECT_EQ(journal.Codes(later), Codes{});
    std::unique_ptr<CKXHttpDownloadMgr::Task> left(manager->GetNextTask());
    ASSERT_TRUE(left);
    EXPECT_EQ(left->uTaskId, later);
    EXPECT_EQ(left->strUrl, hello.Url().c_str());
    EXPECT_EQ(manager->GetNextTask(), nullptr);
    EXPECT_EQ(test::Manager::DownloadFunc(nullptr), 1u);
}

// A live server at a stop: what arrives is told of before the stop is.
TEST_F(Downloads, AStopIsSeenBehindABlock)
{
    RawServer endless([](test::Peer& peer) {
        peer.Request();
        peer.Send(kOk + "\r\n");
        while (peer.Send(std::string(10'000, 'x'))) {
        }
    });
    const unsigned int id = Add(endless.Url(), dir.Win("file"));
    journal.Await(2030, id);
    manager.reset();
    EXPECT_EQ(journal.Codes(id), (Codes{2029, 2030, 2032, 2031}));
    EXPECT_EQ(dir.Read("file").size(), journal.Notices().back().received);
}

// A connection that is cut serves no other task.
TEST_F(Downloads, ACutConnectionIsClosedWhenItsTaskIsOver)
{
    std::atomic<bool> bClosed = false;
    const RawServer cut([&](test::Peer& peer) {
        peer.Request();
        peer.Send(kOk + "Content-Length: 10\r\n\r\nhello");
        peer.AwaitClose();
        bClosed = true;
    });
    journal.act = [&](unsigned int code) {
        if (code == 2030) manager->StopDownload();
        if (code == 2031) test::Await([&] { return bClosed.load(); });
    };
    Add(cut.Url(), "", 2030);
    AwaitEnd(1);
    EXPECT_TRUE(bClosed);
}

TEST_F(Downloads, TasksOfManyThreadsAreAllServed)
{
    test::RunThreads(4, [this](int) {
        for (int n = 0; n < 50; ++n)
            Add(hello.Url());
    });
    Run(hello.Url());
    EXPECT_EQ(std::ranges::count(journal.Notices(), 2031u, &Notice::code), 201);
}

TEST_F(Downloads, LeaveNoHandleBehind)
{
    Run(hello.Url());
    manager.reset();
    const test::NoLeak noLeak;
    manager.emplace();
    Run(hello.Url());
    Add("no URL");
    AwaitEnd();
    manager->StartDownload(); // another worker, for the one that has ended
    ASSERT_TRUE(manager->IsRunning());
    Run(hello.Url());
    manager.reset();
}

TEST_F(Downloads, AForkEndsWithoutTheWorker)
{
    Run(hello.Url());
    EXPECT_EQ(test::InFork([this] {
                  const bool bRuns = manager->IsRunning() != 0;
                  return manager.reset(), bRuns ? 1 : 7;
              }),
              7);
    Run(hello.Url());
    EXPECT_EQ(hello.Connections(), 1);
}

// The library's one manager, at the process's end: DownloadChild prints what it is told.
TEST_F(Downloads, EndWithTheProcess)
{
    RawServer silent(RawServer::Stalling(kOk + "Content-Length: 9\r\n\r\nhello"));
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"return", silent.Url(), "2 2029\n2 2030\n2 2032\n2 2031\n"},
        {"exit", silent.Url(), "2 2029\n2 2030\n"}, // by the callback itself, which doesn't return
        {"wait", hello.Url(), "2 2029\n2 2030\n2 2031\n3 2029\n3 2030\n3 2031\n"},
        {"limit", hello.Url(), "2 2029\n"}, // no room on its disk
    };
    for (const auto& [how, url, text] : cases) {
        EXPECT_EQ(test::RunChild("DownloadChild", {how, url, std::string(dir.Win("file"))}), text) << how;
    }
}

} // namespace
