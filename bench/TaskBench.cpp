#include "bench/Loop.h"

#include <KXCommonTaskThread.h>
#include <array>
#include <benchmark/benchmark.h>
#include <condition_variable>
#include <deque>
#include <malloc.h>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>
#include <type_traits>
#include <utility>

// A million tasks that do nothing, from one producer, until the last is deleted: by the task thread, and by
// the least that could do it, a deque with a mutex and a condition variable, with the same two allocations
// for each task: its record, and a node of a list's size that names it.

namespace {

constexpr int nTasks = 1'000'000;

int nRun = 0; // the worker's while there are tasks

int Nothing(tagKXCommonTask*, HANDLE)
{
    ++nRun;
    return 0;
}

struct LastTask : tagKXCommonTask
{
    explicit LastTask(std::binary_semaphore& done) : tagKXCommonTask(Nothing), semaphore(done) {}
    ~LastTask() override { semaphore.release(); }
    std::binary_semaphore& semaphore;
};

class Ours
{
public:
    Ours() { m_thread.Initialize(); }
    ~Ours() { m_thread.UnInitialize(); }
    void Add(tagKXCommonTask* task) { m_thread.AddTask(task); }

private:
    CKXCommonTaskThread m_thread;
};

class Deque
{
public:
    ~Deque() { Add(nullptr); }
    void Add(tagKXCommonTask* task)
    {
        auto node = std::make_unique<Node>(task);
        {
            const std::lock_guard lock(m_lock);
            m_queue.push_back(std::move(node));
        }
        m_wake.notify_one();
    }

private:
    struct Node
    {
        explicit Node(tagKXCommonTask* p) : task(p) {}
        std::array<void*, 2> links{};
        tagKXCommonTask* task;
    };

    tagKXCommonTask* Take()
    {
        std::unique_lock lock(m_lock);
        m_wake.wait(lock, [this] { return !m_queue.empty(); });
        const auto node = std::move(m_queue.front()); // is freed when the lock isn't held any more
        m_queue.pop_front();
        lock.unlock();
        return node->task;
    }
    void Work()
    {
        while (const std::unique_ptr<tagKXCommonTask> task{Take()})
            task->pfnTaskProc(task.get(), nullptr);
    }

    std::mutex m_lock;
    std::condition_variable m_wake;
    std::deque<std::unique_ptr<Node>> m_queue;
    std::jthread m_thread{[this] { Work(); }};
};

// False unless each was run once.
template <class Queue>
bool RunAll(Queue& queue)
{
    nRun = 0;
    std::binary_semaphore done{0};
    for (int n = 1; n < nTasks; ++n)
        queue.Add(new tagKXCommonTask(Nothing));
    queue.Add(new LastTask(done));
    done.acquire();
    return nRun == nTasks;
}

// The second time, when the heap has had as many before.
template <class Queue>
void Measure(benchmark::State& state)
{
    Queue queue;
    RunAll(queue);
    const std::size_t before = mallinfo2().uordblks;
    for (auto _ : bench::Loop(state))
        if (!RunAll(queue)) state.SkipWithError("not all run");
    const bool bGrown = mallinfo2().uordblks > before + 16 * 1024;
    if (bGrown && std::is_same_v<Queue, Ours>) state.SkipWithError("memory grows");
}

const int registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->UseRealTime()->Iterations(1);
    };
    add("tasks_1_producer/ours", Measure<Ours>);
    add("tasks_1_producer/bare_deque", Measure<Deque>);
    return 0;
}();

} // namespace
