#include "bench/Measure.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

class Pairs : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            if (run.error_occurred) {
                std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
                m_bFailed = true;
                continue;
            }
            const std::string& name = run.run_name.function_name;
            const auto slash = name.find('/');
            m_times[name.substr(0, slash)][name.substr(slash + 1)].push_back(
                run.real_accumulated_time * 1e9 / static_cast<double>(run.iterations));
        }
    }
    // A work of which any run failed has no rows: a side without times would look infinitely fast.
    bool HasFailed() const { return m_bFailed; }
    std::vector<Row> Rows()
    {
        std::vector<Row> rows;
        for (auto& [work, sides] : m_times)
            for (auto& [side, times] : sides)
                if (side != "ours") rows.push_back({work, side, Median(sides["ours"]), Median(times)});
        return rows;
    }

private:
    static double Median(std::vector<double>& times)
    {
        std::sort(times.begin(), times.end());
        return times.empty() ? 0 : times[times.size() / 2];
    }

    bool m_bFailed = false;
    std::map<std::string, std::map<std::string, std::vector<double>>> m_times;
};

// Repetitions alternate at random, so that a busy machine disturbs both sides alike.
void Run(Pairs& pairs, std::string filter, std::string list)
{
    std::string program = "kx_bench";
    filter.insert(0, "--benchmark_filter=");
    list.insert(0, "--benchmark_list_tests=");
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    std::string repeat = "--benchmark_repetitions=9";
    std::string least = "--benchmark_min_time=0.02";
    std::vector<char*> args{program.data(), filter.data(), list.data(), interleave.data(),
                            repeat.data(),  least.data(),  nullptr};
    int nArgs = static_cast<int>(args.size()) - 1;
    benchmark::Initialize(&nArgs, args.data());
    benchmark::RunSpecifiedBenchmarks(&pairs);
}

[[noreturn]] void RunAndTell(const std::string& work, int out)
{
    Pairs pairs;
    Run(pairs, "^" + work + "/", "false");
    if (pairs.HasFailed()) std::exit(1);
    std::ostringstream text;
    for (const Row& row : pairs.Rows())
        text << row.work << ' ' << row.peer << ' ' << row.ours << ' ' << row.theirs << '\n';
    const std::string told = text.str();
    const bool bTold = write(out, told.data(), told.size()) == static_cast<ssize_t>(told.size());
    std::exit(bTold ? 0 : 1);
}

std::string ReadAll(int in)
{
    std::string text;
    char block[4096];
    for (ssize_t nRead; (nRead = read(in, block, sizeof(block))) > 0;)
        text.append(block, static_cast<std::size_t>(nRead));
    return text;
}

} // namespace

std::vector<std::string> FindWorks(const std::string& filter)
{
    std::ostringstream list;
    Pairs pairs;
    pairs.SetOutputStream(&list);
    Run(pairs, filter, "true");
    std::istringstream lines(list.str());
    std::set<std::string> works;
    for (std::string line; std::getline(lines, line);)
        works.insert(line.substr(0, line.find('/')));
    return {works.begin(), works.end()};
}

std::vector<Row> Measure(const std::string& work)
{
    int ends[2];
    if (pipe(ends) != 0) return {};
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        RunAndTell(work, ends[1]);
    }
    close(ends[1]);
    std::istringstream told(ReadAll(ends[0]));
    close(ends[0]);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) return {};
    std::vector<Row> rows;
    for (Row row; told >> row.work >> row.peer >> row.ours >> row.theirs;)
        rows.push_back(row);
    return rows;
}

} // namespace bench
