#include <memory>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <string>

// A client that logs as many lines as ours does, in the same form: `kx_bench_spdlog log|basic DIRECTORY`.

namespace {

// By a queue of spdlog's own length and a thread that writes, as ours.
std::shared_ptr<spdlog::logger> MakeAsync(const std::string& file)
{
    return spdlog::basic_logger_mt<spdlog::async_factory>("client", file, true);
}

// By the caller's own thread.
std::shared_ptr<spdlog::logger> MakeBasic(const std::string& file)
{
    return spdlog::basic_logger_mt("client", file, true);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return 2;
    const std::string file = std::string(argv[2]) + "/spdlog.log";
    const auto log = std::string(argv[1]) == "basic" ? MakeBasic(file) : MakeAsync(file);
    log->set_pattern("[%Y-%m-%d %H:%M:%S] 1 %v");
    for (int n = 0; n < 100; ++n)
        log->info("line {} of {}", n, 100);
    log->flush();
    spdlog::shutdown();
    return 0;
}
