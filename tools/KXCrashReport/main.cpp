// The crash reporter. The crash filter starts it and waits for it; it stops the crashed process, writes a
// dump and a text beside it, lets it go, and then sends and restarts as it was asked to.

#include "platform/files/WholeFile.h"
#include "tools/KXCrashReport/CommandLine.h"
#include "tools/KXCrashReport/CoreFile.h"
#include "tools/KXCrashReport/CoreNotes.h"
#include "tools/KXCrashReport/LogFile.h"
#include "tools/KXCrashReport/ReportFiles.h"
#include "tools/KXCrashReport/ReportText.h"
#include "tools/KXCrashReport/Restart.h"
#include "tools/KXCrashReport/Text.h"
#include "tools/KXCrashReport/Upload.h"

#include <cstdio>
#include <unistd.h>

namespace {

using namespace kx::report;

// The crashed process waits without limit, so the limit is here. At its end the system ends this process, and
// lets the other one go.
constexpr unsigned kLongestRun = 90;

std::string Join(int nArgs, char** args)
{
    std::string text;
    for (int n = 1; n < nArgs; ++n)
        text.append(n > 1 ? " " : "").append(args[n]);
    return text;
}

bool WriteDump(int fd, const Tracee& tracee, const std::vector<ThreadState>& threads,
               const std::optional<CrashRecord>& crash, const std::vector<Mapping>& maps)
{
    return WriteCore(fd, tracee, CoreNotes(tracee, threads, crash, maps), ChooseMemory(maps, threads));
}

// Whether the whole report could be made. Of a process that may not be stopped there is a text alone.
bool Report(const CommandLine& line, const ReportFiles& files)
{
    const Tracee tracee(line.pid, line.tid);
    constexpr std::size_t kMaps = 64 << 20; // far more than the system allows: stacks come last
    const auto maps = ParseMaps(ReadFile(tracee.ProcFile("maps"), kMaps));
    const std::string lines = BringLinesHome(tracee, maps); // first, as it is done soonest
    const auto crash = ReadCrash(tracee, line.exception);
    const auto threads = ReadThreads(tracee, line.tid, crash);
    const bool bDump = !threads.empty() && WriteWhole(files.dump, [&](int fd) {
        return WriteDump(fd, tracee, threads, crash, maps);
    });
    const std::string text = ReportText(line, tracee, crash, threads, lines);
    const bool bText = WriteWhole(
        files.text, [&](int fd) { return kx::files::WriteAll(fd, text.data(), text.size()) == 0; });
    return bDump && bText;
}

} // namespace

int main(int nArgs, char** args)
{
    alarm(kLongestRun);
    const auto line = ParseCommandLine(Join(nArgs, args));
    if (!line) {
        std::fprintf(stderr, "KXCrashReport.exe is started by a program that crashes.\n");
        return 2;
    }
    if (line->bRestart) RestartAfter(line->pid, line->restart);
    const ReportFiles files = PlaceOf(args[0], line->dump);
    const bool bWhole = Report(*line, files);
    const bool bSent = !line->bSend || Upload(*line, files);
    return bWhole && bSent ? 0 : 1;
}
