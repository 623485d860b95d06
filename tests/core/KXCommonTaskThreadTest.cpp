#include "KXCommonTaskThread.h"
#include "KXLogSys.h"
#include "platform/Exception.h"
#include "platform/Sync.h"
#include "tests/support/Test.h"

namespace {

struct Worker : CKXCommonTaskThread
{
    using CKXCommonTaskThread::GetNextTask;
    using CKXCommonTaskThread::ProcessTaskThread;
    using CKXCommonTaskThread::StartThread;
    using CKXCommonTaskThread::StopThread;
};

// Does what it is told, and leaves its name's two forms in the trace: when it runs, and when it is deleted.
struct Job : tagKXCommonTask
{
    Job(std::string& journal, std::string text, std::function<void(HANDLE)> what = {})
        : tagKXCommonTask(Run), trace(journal), name(std::move(text)), act(std::move(what))
    {
        pszTaskName = name.c_str();
    }
    ~Job() override { trace += "~" + name + " "; }
    static int Run(tagKXCommonTask* task, HANDLE stop)
    {
        auto& self = *static_cast<Job*>(task);
        self.trace += self.name + " ";
        if (self.act) self.act(stop);
        return 0;
    }

    std::string& trace;
    std::string name;
    std::function<void(HANDLE)> act;
};

struct Tasks : testing::Test
{
    void Add(const std::string& name, std::function<void(HANDLE)> act = {})
    {
        worker->AddTask(new Job(trace, name, std::move(act)));
    }
    // Waits until all tasks that were added before are deleted.
    void Drain()
    {
        std::binary_semaphore reached{0};
        Add("", [&](HANDLE) { reached.release(); });
        reached.acquire();
    }

    std::string trace; // the worker's while that runs
    std::optional<Worker> worker{std::in_place};
};

TEST_F(Tasks, RunOneAfterTheOther)
{
    worker->Initialize();
    worker->Initialize();
    Add("a");
    worker->AddTask(nullptr);
    auto idle = std::make_unique<Job>(trace, "idle"); // is deleted alone
    idle->pfnTaskProc = nullptr;
    worker->AddTask(idle.release());
    Add("b", [this](HANDLE) { Add("c"); });
    Drain();
    Drain();
    worker->UnInitialize();
    EXPECT_EQ(trace.substr(0, 16), "a ~a ~idle b ~b ");
    EXPECT_NE(trace.find("c ~c"), std::string::npos);
}

TEST_F(Tasks, ThatFailLeaveALineInTheLogAndTheThreadAlive)
{
    const test::TempDir dir;
    const test::VirtualClock clock(1'237'017'909); // 2009-03-14 08:05:09 UTC
    CKXLogSys* log = CKXLogSys::GetSingletonPtr();
    ASSERT_TRUE(log->Initialize(dir.Win("app.log")));
    worker->Initialize();
    Add("thrown", [](HANDLE) { throw 5; });
    Add("standard", [](HANDLE) { throw std::runtime_error("no"); });
    Add("framework", [](HANDLE) { AfxThrowMemoryException(); });
    auto nameless = std::make_unique<Job>(trace, "nameless", [](HANDLE) { throw 5; });
    nameless->pszTaskName = nullptr;
    worker->AddTask(nameless.release());
    Add("well");
    Drain();
    worker->UnInitialize();
    EXPECT_EQ(trace,
              "thrown ~thrown standard ~standard framework ~framework nameless ~nameless well ~well  ~ ");
    const auto line = [](const std::string& name) {
        return "[2009-03-14 08:05:09] 2 "
               "\xB4\xA6\xC0\xED\xC8\xCE\xCE\xF1\xCA\xB1\xB3\xF6\xB4\xED\xA3\xA1\xA3\xA8taskname:" +
               name + "\xA3\xA9\n";
    };
    const std::string expected = line("thrown") + line("standard") + line("framework") + line("");
    test::Await([&] { return dir.Read("app.log").size() >= expected.size(); });
    log->Uninitialize();
    EXPECT_EQ(dir.Read("app.log"), expected);
}

TEST_F(Tasks, AreStoppedByTheirEventAndDeletedUnrunWithTheirQueue)
{
    std::binary_semaphore running{0};
    const auto untilStopped = [&](HANDLE stop) {
        EXPECT_EQ(WaitForSingleObject(stop, 0), WAIT_TIMEOUT);
        running.release();
        EXPECT_EQ(WaitForSingleObject(stop, INFINITE), WAIT_OBJECT_0);
        trace += "stopped ";
    };
    worker->Initialize();
    Add("long", [&](HANDLE stop) {
        untilStopped(stop);
        Add("next");
    });
    Add("left");
    running.acquire();
    worker->UnInitialize();
    worker->UnInitialize();
    EXPECT_EQ(trace, "long stopped ~long ");
    worker->Initialize(); // what was left runs with the next task
    Drain();
    Add("last", untilStopped);
    Add("a");
    Add("b");
    running.acquire();
    worker.reset(); // stops the thread by itself
    EXPECT_EQ(trace, "long stopped ~long left ~left next ~next  ~ last stopped ~last ~a ~b ");
}

TEST_F(Tasks, WaitForAnInitialize)
{
    const int nHandles = KXHost::LiveHandles();
    EXPECT_EQ(worker->StartThread(), 1); // there is one, if not for long
    EXPECT_EQ(KXHost::LiveHandles(), nHandles + 1);
    Add("early");
    EXPECT_EQ(worker->StopThread(), 1);
    EXPECT_EQ(worker->StopThread(), 1);
    EXPECT_EQ(trace, "");
    worker->UnInitialize();
    worker->Initialize();
    Drain();
    worker->UnInitialize();
    EXPECT_EQ(trace, "early ~early  ~ ");
}

TEST_F(Tasks, ThreadSaysWhenItBeginsAndEnds)
{
    const test::DebugText debug;
    EXPECT_EQ(Worker::ProcessTaskThread(nullptr), 0u);
    EXPECT_EQ(worker->ProcessTaskThread(), 0u); // there is nothing to wait for yet
    worker->UnInitialize();
    worker->Initialize();
    EXPECT_EQ(debug.Text(), "");
    Drain();
    EXPECT_EQ(debug.Text(), "\xBD\xF8\xC8\xEB CommonTaskThread! \n");
    worker->UnInitialize();
    EXPECT_EQ(debug.Text(), "\xBD\xF8\xC8\xEB CommonTaskThread! \n\xCD\xCB\xB3\xF6 CommonTaskThread! \n");
}

TEST_F(Tasks, OfSeveralProducersKeepEachOnesOrder)
{
    constexpr int nProducers = 4;
    constexpr int nTasks = 5000;
    std::vector<std::vector<int>> seen(nProducers); // by the worker alone
    const int nHandles = KXHost::LiveHandles();
    worker->Initialize();
    test::RunThreads(nProducers, [&](int p) {
        for (int n = 0; n < nTasks; ++n)
            Add("", [&list = seen[static_cast<std::size_t>(p)], n](HANDLE) { list.push_back(n); });
    });
    Drain();
    EXPECT_EQ(KXHost::LiveHandles(), nHandles + 3); // one thread, however many began
    worker->UnInitialize();
    EXPECT_EQ(KXHost::LiveHandles(), nHandles);
    for (const auto& list : seen) {
        ASSERT_EQ(list.size(), static_cast<std::size_t>(nTasks));
        EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));
    }
}

TEST_F(Tasks, AForkEndsWithoutTheThread)
{
    worker->Initialize();
    Drain();
    EXPECT_EQ(test::InFork([this] { return worker->UnInitialize(), 7; }), 7);
    worker->UnInitialize();
}

} // namespace
