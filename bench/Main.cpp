#include "bench/Rows.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

// Runs all pairs. A benchmark is named WORK/ours or WORK/PEER; repetitions of all of them alternate at
// random, so that a busy machine disturbs both sides alike. A row of the table is a work, the median times of
// both, and how many times faster we are; only that ratio says anything on a shared machine.

using namespace bench;

namespace {

class Pairs : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const std::string& name = run.run_name.function_name;
            const auto slash = name.find('/');
            m_times[name.substr(0, slash)][name.substr(slash + 1)].push_back(
                run.real_accumulated_time * 1e9 / static_cast<double>(run.iterations));
        }
    }
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

    std::map<std::string, std::map<std::string, std::vector<double>>> m_times;
};

} // namespace

// --json FILE and --page FILE write the rows there too; --only TEXT runs the works whose names match it.
int main(int argc, char** argv)
{
    const char* pszJson = nullptr;
    std::filesystem::path page; // whole, for a work may move to another directory
    std::string filter = "--benchmark_filter=.";
    for (int n = 1; n + 1 < argc; ++n) {
        if (std::strcmp(argv[n], "--json") == 0) pszJson = argv[n + 1];
        if (std::strcmp(argv[n], "--page") == 0) page = std::filesystem::absolute(argv[n + 1]);
        if (std::strcmp(argv[n], "--only") == 0) filter = std::string("--benchmark_filter=") + argv[n + 1];
    }
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    std::string repeat = "--benchmark_repetitions=9";
    std::string least = "--benchmark_min_time=0.02";
    std::vector<char*> args{argv[0], filter.data(), interleave.data(), repeat.data(), least.data(), nullptr};
    int nArgs = static_cast<int>(args.size()) - 1;
    benchmark::Initialize(&nArgs, args.data());
    Pairs pairs;
    benchmark::RunSpecifiedBenchmarks(&pairs);
    const auto rows = pairs.Rows();
    Print(rows);
    if (pszJson) WriteJson(rows, pszJson);
    if (!page.empty()) WritePage(rows, page.c_str());
    return rows.empty() ? 1 : 0;
}
