#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <map>
#include <string>
#include <vector>

// Runs all pairs. A benchmark is named WORK/ours or WORK/PEER; repetitions of all of them alternate at
// random, so that a busy machine disturbs both sides alike. A row of the table is a work, the median times of
// both, and how many times faster we are; only that ratio says anything on a shared machine.

namespace {

// What a row is meant to reach: the least ratio.
const std::map<std::string, double> aims = {
    {"log_drain_1_producer/spdlog", 2},
    {"log_drain_4_producers/spdlog", 10},
    {"log_caller_1_producer/spdlog", 2},
    {"ini_read100/stat", 1 / 1.3},
    {"ini_read100/gkeyfile", 15},
    {"ini_cold/gkeyfile", 1},
    {"text_1_thread/map_and_mutex", 1},
    {"text_4_threads/map_and_mutex", 1.5},
    {"text_load/read_and_split", 0.5},
    {"copy_64x64/pixman", 1},
    {"copy_64x64/sdl2", 1},
    {"copy_256x256/memcpy", 0.9},
    {"copy_256x256/pixman", 1},
    {"copy_256x256/sdl2", 1},
    {"copy_1920x1080/memcpy", 0.9},
    {"copy_1920x1080/pixman", 1},
    {"copy_1920x1080/sdl2", 1},
    {"keyed_runs_64x64/select_loop", 0.9},
    {"keyed_runs_64x64/sdl2", 3},
    {"keyed_noise_64x64/select_loop", 0.9},
    {"keyed_noise_64x64/sdl2", 3},
    {"keyed_runs_256x256/select_loop", 0.9},
    {"keyed_runs_256x256/sdl2", 3},
    {"keyed_noise_256x256/select_loop", 0.9},
    {"keyed_noise_256x256/sdl2", 3},
    {"keyed_runs_1920x1080/select_loop", 0.9},
    {"keyed_runs_1920x1080/sdl2", 3},
    {"keyed_noise_1920x1080/select_loop", 0.9},
    {"keyed_noise_1920x1080/sdl2", 3},
    {"region_disc/cairo", 1},
    {"region_checkerboard/cairo", 2},
    {"region_noise/cairo", 2},
    {"draw_scaled/pixbuf", 1},
    {"draw_scaled_alpha/pixbuf", 1},
    {"draw_enlarged/pixbuf", 1},
    {"load_png/libpng", 1 / 1.1},
    {"load_png/gdk_pixbuf", 1},
    {"load_jpeg/libjpeg", 1 / 1.1},
    {"load_jpeg/gdk_pixbuf", 1},
    {"load_gif20/giflib", 1 / 1.1},
    {"load_gif20/gdk_pixbuf", 1},
    {"gif_step_320x240/giflib", 1},
    {"save_jpeg/libjpeg", 1 / 1.3},
    {"save_gray/libjpeg", 1 / 1.3},
    {"thumbnail/pixbuf", 1},
    {"line_down/cairo", 1},
    {"line_across/cairo", 1},
    {"line_oblique/cairo", 1},
    {"path_gradient/cairo_radial", 1},
    {"path_gradient/cairo_mesh", 1},
    {"draw_fill/sdl2", 1},
    {"bitmap_rgn_disc_1024/scan_pixman", 1 / 1.3},
    {"bitmap_rgn_checkerboard_1024/scan_pixman", 1 / 1.3},
    {"bitmap_rgn_noise_1024/scan_pixman", 1 / 1.3},
    {"bitmap_rgn_noise_2048/256_64_times", 0.7},
    {"letter/cairo", 5},
    {"test_word/cairo", 5},
    {"send_own/function", 1 / 20.0},
    {"send_across/condvar", 1 / 1.5},
    {"repaint_800x600/cairo", 1.5},
    {"download_256mb/libcurl_2048", 0.9},
    {"download_2000_small/libcurl", 0.95},
    {"tasks_1_producer/bare_deque", 0.8},
    {"skin_change/read_and_decode", 1 / 1.5},
    {"skin_ini_reads/whole_change", 20},
    {"crash_to_main/posix_spawn", 0.5},
    {"xml_load_5mb/libxml2", 1 / 1.15},
    {"xml_read_childs/libxml2_xpath", 5},
    {"xml_read_childs/ten_tenths", 0.8},
    {"xml_write/libxml2", 1 / 1.5},
};

struct Row
{
    std::string work;
    std::string peer;
    double ours = 0;
    double theirs = 0;
    double Ratio() const { return theirs / ours; }
    double Aim() const
    {
        const auto found = aims.find(work + "/" + peer);
        return found != aims.end() ? found->second : 0;
    }
};

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

void Print(const std::vector<Row>& rows)
{
    std::printf("%-24s %12s   %-15s %12s %8s %8s\n", "work", "ours (us)", "peer", "peer (us)", "ratio",
                "aim");
    for (const Row& row : rows) {
        const bool bShort = row.Ratio() < row.Aim();
        std::printf("%-24s %12.3f   %-15s %12.3f %8.2f %8.2f%s\n", row.work.c_str(), row.ours / 1000,
                    row.peer.c_str(), row.theirs / 1000, row.Ratio(), row.Aim(),
                    bShort ? "  short of it" : "");
    }
}

void WriteJson(const std::vector<Row>& rows, const char* pszFile)
{
    std::ofstream file(pszFile);
    file << std::setprecision(9) << "[";
    const char* pszSeparator = "\n";
    for (const Row& row : rows) {
        file << pszSeparator << R"(  {"work": ")" << row.work << R"(", "ours_ns": )" << row.ours
             << R"(, "peer": ")" << row.peer << R"(", "peer_ns": )" << row.theirs << R"(, "ratio": )"
             << row.Ratio() << R"(, "aim": )" << row.Aim() << "}";
        pszSeparator = ",\n";
    }
    file << "\n]\n";
}

} // namespace

// --json FILE writes the rows there too; --only TEXT runs the works whose names match it.
int main(int argc, char** argv)
{
    const char* pszJson = nullptr;
    std::string filter = "--benchmark_filter=.";
    for (int n = 1; n + 1 < argc; ++n) {
        if (std::strcmp(argv[n], "--json") == 0) pszJson = argv[n + 1];
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
    return rows.empty() ? 1 : 0;
}
