#include "bench/BenchDir.h"
#include "bench/Loop.h"

#include <KXLogSys.h>
#include <benchmark/benchmark.h>
#include <chrono>
#include <filesystem>
#include <memory>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <thread>
#include <vector>

// Messages of 60 bytes into a file, by this library's log and by spdlog's asynchronous logger with the same
// stamp: all the way until the file holds the last one, and what the pushing thread alone pays.

namespace {

constexpr int nLines = 200'000;
constexpr char szMessage[] = "the quick brown fox jumps over the lazy dog 0123456789 abcde"; // 60 bytes
constexpr std::uintmax_t cbLine = sizeof("[2009-03-14 08:05:09] 1 ") - 1 + sizeof(szMessage);

class Ours
{
public:
    explicit Ours(const char* pszName) : m_path(bench::Dir().Path(pszName))
    {
        m_pLog->Initialize(bench::Dir().Win(pszName));
    }
    ~Ours() { m_pLog->Uninitialize(); }
    void Push() { m_pLog->PushLog(CKXLogSys::LogInfo, m_strMessage); }
    void Finish() {}
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
    const CString m_strMessage = szMessage;
    CKXLogSys* m_pLog = CKXLogSys::GetSingletonPtr();
};

class Spdlog
{
public:
    explicit Spdlog(const char* pszName) : m_path(bench::Dir().Path(pszName))
    {
        m_pool = std::make_shared<spdlog::details::thread_pool>(8192, 1);
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(m_path, true);
        m_log = std::make_shared<spdlog::async_logger>("bench", std::move(sink), m_pool,
                                                       spdlog::async_overflow_policy::block);
        m_log->set_pattern("[%Y-%m-%d %H:%M:%S] 1 %v");
    }
    void Push() { m_log->info(szMessage); }
    void Finish() { m_log->flush(); }
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
    std::shared_ptr<spdlog::details::thread_pool> m_pool;
    std::shared_ptr<spdlog::async_logger> m_log;
};

void WaitForSize(const std::string& path, std::uintmax_t size)
{
    while (std::filesystem::file_size(path) < size)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
}

using Clock = std::chrono::steady_clock;
double Seconds(Clock::time_point from)
{
    return std::chrono::duration<double>(Clock::now() - from).count();
}

template <class Log>
void Drain(benchmark::State& state, int nProducers)
{
    for (auto _ : bench::Loop(state)) {
        Log log("drain.log");
        const auto start = Clock::now();
        {
            std::vector<std::jthread> producers;
            for (int n = 0; n < nProducers; ++n)
                producers.emplace_back([&] {
                    for (int k = 0; k < nLines / nProducers; ++k)
                        log.Push();
                });
        }
        log.Finish();
        WaitForSize(log.Path(), nLines * cbLine);
        state.SetIterationTime(Seconds(start));
    }
}

template <class Log>
void Caller(benchmark::State& state)
{
    for (auto _ : bench::Loop(state)) {
        Log log("caller.log");
        const auto start = Clock::now();
        for (int n = 0; n < nLines; ++n)
            log.Push();
        state.SetIterationTime(Seconds(start) / nLines);
        log.Finish();
        WaitForSize(log.Path(), nLines * cbLine);
    }
}

const int registered = [] {
    const auto add = [](const char* pszName, auto run) {
        benchmark::RegisterBenchmark(pszName, run)->UseManualTime()->Iterations(1);
    };
    add("log_drain_1_producer/ours", [](benchmark::State& state) { Drain<Ours>(state, 1); });
    add("log_drain_1_producer/spdlog", [](benchmark::State& state) { Drain<Spdlog>(state, 1); });
    add("log_drain_4_producers/ours", [](benchmark::State& state) { Drain<Ours>(state, 4); });
    add("log_drain_4_producers/spdlog", [](benchmark::State& state) { Drain<Spdlog>(state, 4); });
    add("log_caller_1_producer/ours", Caller<Ours>);
    add("log_caller_1_producer/spdlog", Caller<Spdlog>);
    return 0;
}();

} // namespace
