#include "bench/Curves.h"
#include "bench/Rows.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sys/utsname.h>
#include <thread>

namespace bench {

namespace {

std::string Processor()
{
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
    return "unknown processor";
}

std::string Machine()
{
    utsname name{};
    uname(&name);
    return Processor() + ", " + std::to_string(std::thread::hardware_concurrency()) + " cores, " +
           name.machine + ", Linux " + name.release;
}

std::string Today()
{
    const std::time_t now = std::time(nullptr);
    tm date{};
    gmtime_r(&now, &date);
    char text[16];
    std::strftime(text, sizeof(text), "%Y-%m-%d", &date);
    return text;
}

// A ratio, in bold where it is short of its aim, and the aim.
void WriteRatio(std::ostream& out, double ratio, double aim)
{
    const char* const pszBold = ratio < aim ? "**" : "";
    out << " | " << pszBold << ratio << pszBold << " | ";
    if (aim > 0) out << aim;
}

// With the memory's ratio too where whole processes are compared.
void WriteTable(std::ostream& out, const std::vector<Row>& rows, bool bProcesses)
{
    out << "| Work | Row | Ours | Quartiles | Peer | Version | Its time | Quartiles | Ratio | Aim | Memory | "
           "Its memory |"
        << (bProcesses ? " Ratio | Aim |" : "") << "\n|---|---|--:|--:|---|---|--:|--:|--:|--:|--:|--:|"
        << (bProcesses ? "--:|--:|" : "") << '\n';
    for (const Row& row : rows) {
        if (row.IsProcess() != bProcesses) continue;
        out << "| " << WhatIs(row.work) << " | " << row.work << " | " << Spread(row.ours) << " | "
            << WhatIsPeer(row.peer) << " | " << VersionOf(row.peer) << " | " << Spread(row.theirs);
        WriteRatio(out, row.Ratio(), row.Aim());
        out << " | " << Memory(row.ours.peak) << " | " << Memory(row.theirs.peak);
        if (bProcesses) WriteRatio(out, row.MemoryRatio(), row.MemoryAim());
        out << " |\n";
    }
}

} // namespace

std::string Time(double nanoseconds)
{
    const char* const units[] = {"ns", "us", "ms", "s"};
    std::size_t n = 0;
    for (; nanoseconds >= 999.5 && n < 3; ++n)
        nanoseconds /= 1000;
    char text[32];
    std::snprintf(text, sizeof(text), "%.*f %s",
                  nanoseconds < 9.995   ? 2
                  : nanoseconds < 99.95 ? 1
                                        : 0,
                  nanoseconds, units[n]);
    return text;
}

std::string Memory(double bytes)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f MB", bytes / (1 << 20));
    return text;
}

std::string Spread(const Side& side)
{
    const std::string quartiles = Time(side.lower) + " to " + Time(side.upper);
    return Time(side.median) + " | " + (side.lower < side.upper ? quartiles : "measured once");
}

double Unrest(const std::vector<Row>& rows)
{
    std::vector<double> ranges;
    for (const Row& row : rows)
        for (const Side& side : {row.ours, row.theirs})
            ranges.push_back(side.Apart());
    return QuartilesOf(ranges).median;
}

void Print(const std::vector<Row>& rows)
{
    std::printf("%-28s %12s %8s   %-15s %12s %8s %8s %8s\n", "work", "ours (us)", "MB", "peer", "peer (us)",
                "MB", "ratio", "aim");
    for (const Row& row : rows) {
        const bool bShort = row.Ratio() < row.Aim(), bFat = row.MemoryRatio() < row.MemoryAim();
        std::printf("%-28s %12.3f %8.1f   %-15s %12.3f %8.1f %8.2f %8.2f%s%s\n", row.work.c_str(),
                    row.ours.median / 1000, row.ours.peak / (1 << 20), row.peer.c_str(),
                    row.theirs.median / 1000, row.theirs.peak / (1 << 20), row.Ratio(), row.Aim(),
                    bShort ? "  short of it" : "", bFat ? "  too much memory" : "");
    }
}

void WriteJson(const std::vector<Row>& rows, const char* pszFile)
{
    std::ofstream file(pszFile);
    file << std::setprecision(9) << "[";
    const char* pszSeparator = "\n";
    for (const Row& row : rows) {
        const auto write = [&](const char* pszName, const Side& side) {
            file << R"(, ")" << pszName << R"(_ns": )" << side.median << R"(, ")" << pszName
                 << R"(_quartiles": [)" << side.lower << ", " << side.upper << R"(], ")" << pszName
                 << R"(_bytes": )" << side.peak;
        };
        file << pszSeparator << R"(  {"work": ")" << row.work << R"(", "peer": ")" << row.peer
             << R"(", "version": ")" << VersionOf(row.peer) << '"';
        write("ours", row.ours);
        write("peer", row.theirs);
        file << R"(, "ratio": )" << row.Ratio() << R"(, "aim": )" << row.Aim() << "}";
        pszSeparator = ",\n";
    }
    file << "\n]\n";
}

void WritePage(const std::vector<Row>& rows, const std::vector<Curve>& curves, const char* pszFile)
{
    const auto picture = std::filesystem::path(pszFile).replace_extension(".svg");
    DrawCurves(curves, picture);
    std::ofstream file(pszFile);
    file << std::fixed << std::setprecision(2);
    file
        << "# Benchmarks\n\nWritten by `scripts/bench` on " << Today() << ": " << Machine() << R"(.

Each work is done by the library and by a peer, nine times each, in turns at random. A time is the median of the nine,
and beside it are their quartiles, which lie )"
        << Unrest(rows) * 100 << R"( % of the time apart in the median. A work with quartiles
more than )"
        << restless * 100 << R"( % apart is measured again, )" << nMostTries
        << R"( times at most, and the calmest of them is shown. The ratio is how many times faster the library is; the aim is the least that it is
meant to be, and a ratio short of it is in bold. A peer without a version is a loop of the benchmark's own, or the
library itself at another work.

## Parts of a program

Both sides run in one process, and after that each in one of its own for its memory: the peak of its resident memory
while it does the work, above what the benchmark's program has before it prepares that. Inputs and servers are in it.

)";
    WriteTable(file, rows, false);
    file << R"(
## Whole processes

What small programs take from their start to their end: processor time, and the peak of resident memory. Each maps the
libraries of its own side alone. A client of ours that does nothing
is linked with the library and ends at once.

)";
    WriteTable(file, rows, true);
    file << R"(
## Cost against size

What users grow: medians of up to nine. The slope is the power of the size by which the time has grown since the row
above: 0 is a time that stays, 1 one that grows with the size. Each size runs in a process of its own, and its memory is
the peak above what that has before it prepares the size. Files lie in memory. A document has 64 MiB at most.

![Time by size, both axes logarithmic]()"
         << picture.filename().string() << ")\n\n";
    WriteCurves(curves, file);
}

} // namespace bench
