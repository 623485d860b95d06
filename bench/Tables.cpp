#include "bench/Rows.h"

#include <cstdio>
#include <ctime>
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

// Three digits that count, in the unit that suits.
std::string Time(double nanoseconds)
{
    const char* const units[] = {"ns", "us", "ms", "s"};
    std::size_t n = 0;
    for (; nanoseconds >= 1000 && n < 3; ++n)
        nanoseconds /= 1000;
    char text[32];
    std::snprintf(text, sizeof(text), "%.*f %s",
                  nanoseconds < 10    ? 2
                  : nanoseconds < 100 ? 1
                                      : 0,
                  nanoseconds, units[n]);
    return text;
}

} // namespace

void Print(const std::vector<Row>& rows)
{
    std::printf("%-24s %12s   %-15s %12s %8s %8s\n", "work", "ours (us)", "peer", "peer (us)", "ratio",
                "aim");
    for (const Row& row : rows) {
        std::printf("%-24s %12.3f   %-15s %12.3f %8.2f %8.2f%s\n", row.work.c_str(), row.ours / 1000,
                    row.peer.c_str(), row.theirs / 1000, row.Ratio(), row.Aim(),
                    row.IsShort() ? "  short of it" : "");
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

void WritePage(const std::vector<Row>& rows, const char* pszFile)
{
    std::ofstream file(pszFile);
    file << "# Benchmarks\n\n"
            "Written by `scripts/bench` on "
         << Today() << ": " << Machine()
         << ".\n\n"
            "A row is a work, done by the library and by a peer in one process of its own: medians of nine, "
            "in "
            "turns at random. The\n"
            "ratio is how many times faster the library is; the aim is the least that it is meant to be. "
            "Machines\n"
            "are shared: a ratio moves by a tenth or two from run to run.\n\n"
            "| Work | Row | Ours | Peer | Its time | Ratio | Aim |\n|---|---|--:|---|--:|--:|--:|\n"
         << std::fixed << std::setprecision(2);
    for (const Row& row : rows) {
        file << "| " << WhatIs(row.work) << " | " << row.work << " | " << Time(row.ours) << " | " << row.peer
             << " | " << Time(row.theirs) << " | " << (row.IsShort() ? "**" : "") << row.Ratio()
             << (row.IsShort() ? "**" : "") << " | ";
        if (row.Aim() > 0) file << row.Aim();
        file << " |\n";
    }
    file << "\nRatios short of their aim are in bold.\n\n";
    for (const Row& row : rows)
        if (row.IsShort())
            file << "- " << row.work << " against " << row.peer << ": "
                 << (*row.WhyShort() ? row.WhyShort() : "not known yet why") << ".\n";
}

} // namespace bench
