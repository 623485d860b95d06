#include "bench/BenchDir.h"
#include "bench/Loop.h"

#include <KXCrashDumper.h>
#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <platform/Host.h>
#include <spawn.h>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

// From a fault to the reporter's main function, all of the crash filter's steps before it included, beside a
// bare posix_spawn of the same program. The reporter is `echo` here, which is among the programs that start
// fastest and tells by its first byte that it runs. Each crash is one of a child of its own.

namespace {

using Clock = std::chrono::steady_clock;

// The times at which a child began to crash, or to spawn, which it shares with this process.
Clock::time_point& Begin()
{
    static void* const shared =
        mmap(nullptr, sizeof(Clock::time_point), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *static_cast<Clock::time_point*>(shared);
}

std::string Reporter()
{
    static const std::string path = [] {
        const std::string link = bench::Dir().Path("KXCrashReport.exe");
        std::filesystem::create_symlink("/bin/echo", link);
        bench::Dir().Write("nv_dbg_14.txt", "");
        return link;
    }();
    return path;
}

void Crash()
{
    KXHost::Drive drive;
    drive.strRoot = bench::Dir().Path("");
    KXHost::MountDrive('C', drive);
    CKXCrashDumper dumper;
    dumper.Initialize("Trainer", "C:\\", "client", "", "ann@example.com", 1, 1);
    volatile int* volatile pWord = nullptr;
    Begin() = Clock::now();
    *pWord = 1;
}

void Spawn()
{
    std::string program = Reporter();
    std::string argument = "-sd";
    const std::array<char*, 3> args{program.data(), argument.data(), nullptr};
    pid_t pid = 0;
    Begin() = Clock::now();
    posix_spawn(&pid, program.c_str(), nullptr, nullptr, args.data(), environ);
    waitpid(pid, nullptr, 0);
}

template <void (*pfnChild)()>
void ToMain(benchmark::State& state)
{
    Reporter();
    for (auto _ : bench::Loop(state)) {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) return state.SkipWithError("no pipe");
        Begin() = {};
        const pid_t pid = fork();
        if (pid == 0) {
            dup2(ends[1], STDOUT_FILENO);
            pfnChild();
            _exit(0);
        }
        close(ends[1]);
        char chFirst = '\0';
        const bool bCame = read(ends[0], &chFirst, 1) == 1 && chFirst == '-';
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - Begin()).count());
        close(ends[0]);
        waitpid(pid, nullptr, 0);
        if (!bCame) state.SkipWithError("no reporter");
    }
}

const int registered = [] {
    benchmark::RegisterBenchmark("crash_to_main/ours", ToMain<Crash>)->UseManualTime()->Iterations(6);
    benchmark::RegisterBenchmark("crash_to_main/posix_spawn", ToMain<Spawn>)->UseManualTime()->Iterations(6);
    return 0;
}();

} // namespace
