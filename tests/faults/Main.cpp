#include "tests/faults/Faults.h"

#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "tests/support/Process.h"
#include "tests/support/RawServer.h"
#include "tests/support/TempDir.h"

#include <dlfcn.h>
#include <exception>
#include <execinfo.h>
#include <limits>

namespace {

using faults::Call;
using faults::Place;
using faults::Plan;
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

// Runs a work; "" for success, "-" for a failure that it tells, "!" for the memory exception, else what it
// should not have done.
std::string Try(const Work& work, const Place& place)
{
    try {
        return work.run(place) ? "" : "-";
    } catch (CMemoryException* exception) {
        faults::Disarm();
        exception->Delete();
        return "!";
    } catch (const std::exception& exception) {
        faults::Disarm();
        return std::string("lets through ") + exception.what();
    } catch (CException* exception) {
        faults::Disarm();
        exception->Delete();
        return "lets another exception through";
    } catch (...) {
        faults::Disarm();
        return "lets something through";
    }
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
    alarm(20);
    if (work.prepare) work.prepare(place);
    faults::Arm(plan);
    const std::string first = Try(work, place);
    const long calls = faults::Disarm();
    if (calls < plan.nth) Finish(first.empty() ? "end " + std::to_string(calls) : "fails without a fault");
    if (first.size() > 1) Finish(first);
    if (work.intact && !work.intact(place)) Finish("leaves a torn file");
    const std::string second = Try(work, place);
    if (!second.empty()) Finish("works no more afterwards: " + second);
    if (work.intact && !work.intact(place)) Finish("leaves a torn file afterwards");
    const int handles = KXHost::LiveHandles(), files = test::OpenFiles();
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

struct Mode
{
    std::string name;
    Plan plan;
};

std::vector<Mode> Modes()
{
    std::vector<Mode> modes{{"one allocation", {Call::Allocate, 1, false, ENOMEM, false}},
                            {"all allocations", {Call::Allocate, 1, true, ENOMEM, false}}};
    const std::pair<const char*, int> errors[] = {
        {"ENOSPC", ENOSPC}, {"EIO", EIO}, {"EDQUOT", EDQUOT}, {"EINTR", EINTR}};
    const auto add = [&](const char* pszCall, Call call, const char* pszError, int error, bool bAll) {
        modes.push_back({std::string(bAll ? "disk: each " : "disk: one ") + pszCall + " " + pszError,
                         {call, 1, bAll, error, false}});
    };
    for (const auto& [name, error] : errors)
        for (const bool bAll : {false, true}) {
            if (bAll && error == EINTR) continue; // would rightly be tried again for ever
            add("write", Call::Write, name, error, bAll);
            add("sync", Call::Sync, name, error, bAll);
            add("rename", Call::Rename, name, error, bAll);
            add("open", Call::Open, name, error, bAll);
        }
    modes.push_back({"disk: one short write", {Call::Write, 1, false, 0, true}});
    modes.push_back({"disk: short writes", {Call::Write, 1, true, 0, true}});
    return modes;
}

struct Options
{
    std::string only, modes;
    std::vector<std::string> without;
    unsigned seed = 1;
    long nth = 0;  // this one alone
    long most = 0; // about so many faults of each work and mode, by chance; 0: all of them in turn
    bool bFrames = false, bBelow = false;
};

struct Found
{
    long times = 0, first = 0;
    std::string frames;
};

// Tells the finding, and between which of the library's frames it came: the innermost and the one that was
// called.
std::string Kind(const std::string& text)
{
    std::istringstream lines(text);
    std::string what, line, inner, outer;
    for (std::getline(lines, what); std::getline(lines, line);) {
        if (line.find("/lib/KXCommonClass/") == line.npos && line.find("/libKXCommonClass") == line.npos)
            continue;
        if (inner.empty()) inner = line;
        outer = line;
    }
    return what + '\n' + inner + '\n' + outer;
}

// The library that a crash or hang is in, if that is none of ours; empty otherwise.
std::string LibraryBelow(const std::string& text)
{
    if (!text.starts_with("crashes") && !text.starts_with("hangs")) return {};
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::string name = line.substr(line.rfind('/') + 1, line.rfind('+') - line.rfind('/') - 1);
        const auto is = [&](const char* pszBegin) { return name.starts_with(pszBegin); };
        if (line.find('/') == line.npos || is("libc.so") || is("libstdc++") || is("libgcc")) continue;
        return is("libKXCommonClass") || is("kx_faults") ? "" : name;
    }
    return {};
}

// The faults of a mode in a work.
class Trials
{
public:
    Trials(const Work& work, const Mode& mode, const std::string& data, const Left& usual)
        : m_work(work), m_mode(mode), m_data(data), m_usual(usual)
    {
    }

    // False for a fault behind the work's last call.
    bool Try(long nth)
    {
        const test::TempDir own;
        Plan plan = m_mode.plan;
        plan.nth = nth;
        const Place place{own.Path(), m_data};
        const auto begin = std::chrono::steady_clock::now();
        std::string text = InChild([&](int report) { RunChild(m_work, place, plan, m_usual, report); });
        m_time += std::chrono::steady_clock::now() - begin;
        if (text.starts_with("end")) {
            m_calls = std::atol(text.c_str() + 4);
            return false;
        }
        ++m_tried;
        if (text.starts_with("ok")) {
            ++(text[2] == '!' ? m_thrown : text[2] == '-' ? m_told : m_passed);
            return true;
        }
        const bool bBelow = !LibraryBelow(text).empty();
        ++(bBelow ? m_below : m_bad);
        if (bBelow) text.insert(text.find('\n'), " in " + LibraryBelow(text));
        Found& one = m_found[Kind(text)];
        if (one.times++ == 0) one.frames = text.substr(text.find('\n') + 1);
        if (one.first == 0 || nth < one.first) one.first = nth;
        return !text.starts_with("fails without") || m_tried < 4;
    }
    long Calls()
    {
        if (m_calls < 0) Try(std::numeric_limits<long>::max());
        return m_calls;
    }
    // The number of those with findings; crashes in libraries below ours are told, not counted. The others
    // threw the memory exception, told of their failure, or passed all the same.
    long Print(bool bFrames) const
    {
        if (m_tried == 0) return 0;
        std::printf("%-12s %-24s %6ld tried %5ld thrown %5ld told %5ld passed %5ld bad %5ld below %5.0f s\n",
                    m_work.pszName, m_mode.name.c_str(), m_tried, m_thrown, m_told, m_passed, m_bad, m_below,
                    std::chrono::duration<double>(m_time).count());
        for (const auto& [what, one] : m_found) {
            std::printf("    %ld times, first %ld: %s\n", one.times, one.first,
                        what.substr(0, what.find('\n')).c_str());
            if (bFrames) std::printf("%s\n", one.frames.c_str());
        }
        std::fflush(stdout);
        return m_bad;
    }

private:
    const Work& m_work;
    const Mode m_mode;
    const std::string m_data;
    const Left m_usual;
    std::chrono::steady_clock::duration m_time{};
    long m_calls = -1, m_tried = 0, m_thrown = 0, m_told = 0, m_passed = 0, m_bad = 0, m_below = 0;
    std::map<std::string, Found> m_found;
};

long RunAll(std::vector<Trials>& all, const Options& options)
{
    std::mt19937 chance(options.seed);
    long bad = 0;
    for (Trials& trials : all) {
        const long most = options.most ? std::max(1L, trials.Calls() / options.most) : 1;
        std::uniform_int_distribution<long> step(1, 2 * most - 1);
        if (options.nth)
            trials.Try(options.nth);
        else
            for (long n = step(chance); trials.Try(n);)
                n += step(chance);
        bad += trials.Print(options.bFrames);
    }
    return bad;
}

// The calls left when a work was done twice; nothing, with a line that says so, where that fails.
std::optional<Left> UsuallyLeft(const Work& work, const std::string& data)
{
    const test::TempDir own;
    const std::string text = InChild([&](int report) {
        const Place place{own.Path(), data};
        if (work.prepare) work.prepare(place);
        const std::string first = Try(work, place), second = Try(work, place);
        const std::string figures = first + second + " " + std::to_string(KXHost::LiveHandles()) + " " +
                                    std::to_string(test::OpenFiles());
        (void)!write(report, figures.data(), figures.size());
        _exit(0);
    });
    Left usual;
    if (std::sscanf(text.c_str(), " %d %d", &usual.handles, &usual.files) == 2) return usual;
    std::printf("%-12s fails without a fault: %s\n", work.pszName, text.c_str());
    return std::nullopt;
}

Options ReadOptions(int nArgs, char** args)
{
    Options options;
    for (int n = 2; n < nArgs; ++n) {
        const std::string option = args[n];
        if (option == "--frames" || option == "--below") {
            (option == "--frames" ? options.bFrames : options.bBelow) = true;
            continue;
        }
        const char* pszValue = ++n < nArgs ? args[n] : "";
        if (option == "--only") options.only = pszValue;
        if (option == "--without") options.without.emplace_back(pszValue);
        if (option == "--modes") options.modes = pszValue;
        if (option == "--seed") options.seed = static_cast<unsigned>(std::atoi(pszValue));
        if (option == "--nth") options.nth = std::atol(pszValue);
        if (option == "--most") options.most = std::max(1L, std::atol(pszValue));
    }
    return options;
}

} // namespace

// kx_faults SAMPLE-DIR [OPTION...], as scripts/faults says.
int main(int nArgs, char** args)
{
    if (nArgs < 2) return 2;
    const Options options = ReadOptions(nArgs, args);
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
    const test::RawServer server(
        test::RawServer::Answering("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\ndownloaded", true));
    faults::SetServer(server.Url());
    InChild([&](int) { faults::MakeData(data.Path()); });

    long bad = 0;
    std::vector<Trials> all;
    for (const Work& work : faults::Works()) {
        const auto& without = options.without;
        const bool bLeftOut = std::find(without.begin(), without.end(), work.pszName) != without.end();
        if (bLeftOut || (!options.only.empty() && options.only != work.pszName)) continue;
        const auto usual = UsuallyLeft(work, data.Path());
        bad += !usual;
        if (!usual) continue;
        for (Mode mode : Modes()) {
            mode.plan.bBelow = options.bBelow;
            const bool bApplies = mode.plan.call == Call::Allocate || work.bWritesFiles;
            if (bApplies && mode.name.find(options.modes) != std::string::npos)
                all.emplace_back(work, mode, data.Path(), *usual);
        }
    }
    if (!all.empty()) bad += RunAll(all, options);
    std::printf("%ld faults with findings\n", bad);
    return bad == 0 ? 0 : 1;
}
