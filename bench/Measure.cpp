#include "bench/Measure.h"

#include "bench/Loop.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <map>
#include <regex>
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
            m_times[name.substr(name.find('/') + 1)].push_back(run.real_accumulated_time * 1e9 /
                                                               static_cast<double>(run.iterations));
            const auto peak = run.counters.find(pszPeak);
            if (peak != run.counters.end()) m_peak = peak->second;
        }
    }
    // A work of which any run failed has no rows: a side without times would look infinitely fast.
    bool HasFailed() const { return m_bFailed; }
    // The times of each side.
    const std::map<std::string, std::vector<double>>& Times() const { return m_times; }
    // The last run told this; 0 if it told nothing.
    double Peak() const { return m_peak; }

private:
    bool m_bFailed = false;
    double m_peak = 0;
    std::map<std::string, std::vector<double>> m_times;
};

// Repetitions alternate at random, so that a busy machine disturbs all sides alike.
void Run(Pairs& pairs, const std::string& filter, bool bList, int nTimes)
{
    std::vector<std::string> texts{"kx_bench",
                                   "--benchmark_filter=" + filter,
                                   std::string("--benchmark_list_tests=") + (bList ? "true" : "false"),
                                   "--benchmark_enable_random_interleaving=true",
                                   "--benchmark_repetitions=" + std::to_string(nTimes),
                                   "--benchmark_min_time=0.02"};
    std::vector<char*> args;
    for (auto& text : texts)
        args.push_back(text.data());
    args.push_back(nullptr);
    int nArgs = static_cast<int>(texts.size());
    benchmark::Initialize(&nArgs, args.data());
    benchmark::RunSpecifiedBenchmarks(&pairs);
}

std::map<std::string, Side> TimeSidesOnce(const std::string& work)
{
    std::istringstream told(RunApart([&](std::ostream& out) {
        constexpr int nTimes = 9;
        Pairs pairs;
        Run(pairs, "^" + work + "/", false, nTimes);
        for (const auto& [name, times] : pairs.Times()) {
            const Side side = QuartilesOf(times);
            out << name << ' ' << side.lower << ' ' << side.median << ' ' << side.upper << '\n';
        }
        return !pairs.HasFailed();
    }));
    std::map<std::string, Side> sides;
    std::string name;
    for (Side side; told >> name >> side.lower >> side.median >> side.upper;)
        sides[name] = side;
    return sides;
}

// A disturbance of the machine passes in seconds, so a work that met one is measured again.
std::map<std::string, Side> TimeSides(const std::string& work)
{
    std::map<std::string, Side> calmest;
    double least = 0;
    for (int n = 0; n < nMostTries && (n == 0 || least > restless); ++n) {
        auto sides = TimeSidesOnce(work);
        if (sides.empty()) return {};
        double widest = 0;
        for (const auto& [name, side] : sides)
            widest = std::max(widest, side.Apart());
        if (n > 0 && widest >= least) continue;
        least = widest;
        calmest = std::move(sides);
    }
    return calmest;
}

// The memory that this process had before it prepared a side, in bytes; 0 where memory isn't measured.
double residentBefore = 0;

double PeakOf(const std::string& work, const std::string& side)
{
    std::istringstream told(RunApart([&](std::ostream& out) {
        residentBefore = PeakMemory();
        Pairs pairs;
        Run(pairs, "^" + work + "/" + side + "(/|$)", false, 1);
        out << pairs.Peak();
        return !pairs.HasFailed();
    }));
    double peak = 0;
    told >> peak;
    return peak;
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

bool IsMemoryMeasured()
{
    return residentBefore > 0;
}

void ResetPeak()
{
    if (!IsMemoryMeasured()) return;
    malloc_trim(0); // what was freed before is no memory of the work
    std::ofstream("/proc/self/clear_refs") << 5;
}

void TellPeak(benchmark::State& state)
{
    if (!IsMemoryMeasured()) return;
    state.counters[pszPeak] =
        benchmark::Counter(PeakMemory() - residentBefore, benchmark::Counter::kAvgThreads);
}

double PeakMemory()
{
    std::ifstream file("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (file >> word && word != "VmHWM:") {
    }
    file >> kilobytes;
    return kilobytes * 1024;
}

std::string RunApart(const std::function<bool(std::ostream&)>& run)
{
    int ends[2];
    if (pipe(ends) != 0) return {};
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        std::ostringstream out;
        const bool bDone = run(out);
        const std::string told = out.str();
        const bool bTold = write(ends[1], told.data(), told.size()) == static_cast<ssize_t>(told.size());
        std::exit(bDone && bTold ? 0 : 1);
    }
    close(ends[1]);
    std::string told = ReadAll(ends[0]);
    close(ends[0]);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) return {};
    return told;
}

std::vector<std::string> FindWorks(const std::string& filter)
{
    std::ostringstream list;
    Pairs pairs;
    pairs.SetOutputStream(&list);
    Run(pairs, ".", true, 1);
    std::istringstream lines(list.str());
    std::set<std::string> works;
    const std::regex wanted(filter);
    for (std::string line; std::getline(lines, line);)
        if (std::regex_search(line, wanted)) works.insert(line.substr(0, line.find('/')));
    return {works.begin(), works.end()};
}

std::vector<Row> Measure(const std::string& work)
{
    auto sides = TimeSides(work);
    for (auto& [name, side] : sides)
        if ((side.peak = PeakOf(work, name)) <= 0) return {};
    std::vector<Row> rows;
    for (const auto& [name, side] : sides)
        if (name != "ours") rows.push_back({work, name, sides["ours"], side});
    return rows;
}

} // namespace bench
