#include "tests/faults/Faults.h"

#include "include/platform/Host.h"
#include "tests/support/Process.h"
#include "tests/support/RawServer.h"
#include "tests/support/TempDir.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <iostream>

namespace {

using faults::Call;
using faults::Place;
using faults::Plan;
using faults::Try;
using faults::Work;

int g_report = -1; // a child's pipe

// A frame as "library+offset", which addr2line reads.
std::string Frame(void* pCode)
{
    Dl_info info{};
    if (!dladdr(pCode, &info) || !info.dli_fname) return "?";
    std::array<char, 64> offset{};
    std::snprintf(offset.data(), offset.size(), "+%#lx",
                  static_cast<unsigned long>(static_cast<char*>(pCode) - static_cast<char*>(info.dli_fbase)));
    return std::string(info.dli_fname) + offset.data();
}

void Report(const std::string& what, void* const* frames, int nFrames)
{
    std::string text = what + "\n";
    for (int n = 0; n < nFrames; ++n)
        text += Frame(frames[n]) + "\n";
    (void)!write(g_report, text.data(), text.size());
}

[[noreturn]] void Finish(const std::string& what)
{
    const std::vector<void*> frames = faults::FirstFailure();
    Report(what, frames.data(), static_cast<int>(frames.size()));
    _exit(0);
}

void OnSignal(int nSignal)
{
    faults::Disarm();
    std::array<void*, 40> frames{};
    const int nFrames = backtrace(frames.data(), static_cast<int>(frames.size()));
    Report(nSignal == SIGALRM || nSignal == SIGXCPU ? "hangs" : std::string("crashes: ") + strsignal(nSignal),
           frames.data() + 2, nFrames - 2);
    _exit(0);
}

void Prepare(const Work& work, const Place& place)
{
    if (work.bClock) KXHost::UseVirtualClock(1'700'000'000, KXHost::VirtualSleep::Advances);
    if (work.prepare) work.prepare(place);
}

struct Left
{
    int handles = 0, files = 0;
};

// In a child: the work with the fault, and once more without.
[[noreturn]] void RunChild(const Work& work, const Place& place, const Plan& plan, const Left& usual,
                           int report)
{
    g_report = report;
    for (const int nSignal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGABRT, SIGALRM, SIGXCPU})
        std::signal(nSignal, OnSignal);
    const rlimit seconds{20, 30};
    setrlimit(RLIMIT_CPU, &seconds);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    alarm(200); // for one that waits; the machine may be busy
    Prepare(work, place);
    faults::Arm(plan);
    const std::string first = Try(work, place);
    const long calls = faults::Disarm();
    if (calls < plan.nth) Finish(first.empty() ? "end " + std::to_string(calls) : "fails without a fault");
    if (first.size() > 1) Finish(first);
    if (work.intact && !work.intact(place)) Finish("leaves a torn file");
    const std::string second = Try(work, place);
    if (!second.empty()) Finish("works no more afterwards: " + second);
    if (work.intact && !work.intact(place)) Finish("leaves a torn file afterwards");
    const int handles = KXHost::LiveHandles(), files = test::CountEntries("/proc/self/fd");
    if (handles > usual.handles) Finish("leaves a handle");
    if (files > usual.files) Finish("leaves a file open");
    Finish("ok" + first);
}

// The words of a child, "" for none.
template <class Body>
std::string InChild(Body&& body)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) std::abort();
    const pid_t pid = fork();
    if (pid == 0) {
        close(ends[0]);
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO); // libraries tell much there
        body(ends[1]);
        _exit(0);
    }
    close(ends[1]);
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t n; (n = read(ends[0], buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(n));
    close(ends[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    if (WIFSIGNALED(status)) text = std::string("crashes: ") + strsignal(WTERMSIG(status)) + "\n" + text;
    return text;
}

// The calls left when a work was done twice; nothing where that fails.
std::optional<Left> UsuallyLeft(const Work& work, const std::string& data)
{
    const test::TempDir own;
    const std::string text = InChild([&](int report) {
        const Place place{own.Path(), data};
        Prepare(work, place);
        const std::string first = Try(work, place), second = Try(work, place);
        const std::string figures = first + second + " " + std::to_string(KXHost::LiveHandles()) + " " +
                                    std::to_string(test::CountEntries("/proc/self/fd"));
        (void)!write(report, figures.data(), figures.size());
        _exit(0);
    });
    Left usual;
    const bool bWorks = std::sscanf(text.c_str(), " %d %d", &usual.handles, &usual.files) == 2;
    return bWorks ? std::optional(usual) : std::nullopt;
}

} // namespace

// kx_faults SAMPLE-DIR, which scripts/faults runs: prints the works. Then each line of its input is a work
// and a plan's numbers in their order; the answer is what came of it, the places where the first call failed,
// and an empty line.
int main(int nArgs, char** args)
{
    if (nArgs != 2) return 2;
    const test::TempDir data;
    for (const char* pszName : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        setenv(pszName, data.Path().c_str(), 1);
    unsetenv("DISPLAY");
    // Spared (Interpose.cpp) is what is loaded when the calls begin to fail; the letters module would load it
    // later.
    dlopen("libfontconfig.so.1", RTLD_NOW);
    for (const char* pszTree : {"Skins", "Languages"})
        std::filesystem::copy(std::filesystem::path(args[1]) / pszTree, data.Path(pszTree),
                              std::filesystem::copy_options::recursive);
    KXHost::SetExecutablePath(data.Path("app"));
    KXHost::UseMemoryDesktop();
    const test::RawServer server(
        test::RawServer::Answering("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\ndownloaded", true));
    faults::SetServer(server.Url());
    InChild([&](int) { faults::MakeData(data.Path()); });

    std::map<std::string_view, std::pair<const Work*, std::optional<Left>>> works;
    for (const Work& work : faults::Works()) {
        works[work.pszName] = {&work, UsuallyLeft(work, data.Path())};
        std::printf("%s ", work.pszName);
    }
    std::printf("\n");
    for (std::string line; std::fflush(stdout) == 0 && std::getline(std::cin, line);) {
        std::string name;
        int call = 0;
        Plan plan;
        std::istringstream(line) >> name >> call >> plan.nth >> plan.bAll >> plan.error >> plan.bShort >>
            plan.bBelow;
        plan.call = static_cast<Call>(call);
        const auto& [pWork, usual] = works.at(name);
        const test::TempDir own;
        const Place place{own.Path(), data.Path()};
        std::puts(usual ? InChild([&](int report) { RunChild(*pWork, place, plan, *usual, report); }).c_str()
                        : "fails without a fault\n");
    }
    return 0;
}
