#pragma once

#include "tests/support/TempDir.h"

namespace soak {

struct Figures
{
    std::size_t operations = 0;
    std::size_t faults = 0; // injected
    std::size_t losses = 0; // what was lost or came out wrong

    // Counts a loss where something isn't kept, and says on stderr which.
    void Need(bool bKept, const std::string& what)
    {
        if (bKept) return;
        ++losses;
        std::fprintf(stderr, "lost: %s\n", what.c_str());
    }
};

// Each work gets this: until when, and chance of its own.
struct Turn
{
    std::chrono::steady_clock::time_point end;
    std::mt19937 chance;

    bool Goes() const { return std::chrono::steady_clock::now() < end; }
    int Below(int nBound) { return std::uniform_int_distribution<int>(0, nBound - 1)(chance); }
};

// Works on one thing until its turn ends. `dir` is the application's directory.
using Work = Figures (*)(Turn turn, const test::TempDir& dir);

// Lines of eight threads, each of which must be in the file once, in its thread's order.
Figures RunLog(Turn turn, const test::TempDir& dir);
// Languages that change under readers.
Figures RunLanguages(Turn turn, const test::TempDir& dir);
// Skins that change, some of them short of a file.
Figures RunSkins(Turn turn, const test::TempDir& dir);
// Downloads from a server that cuts, lies and hangs up.
Figures RunDownloads(Turn turn, const test::TempDir& dir);
// Processes that write into one registry and are killed.
Figures RunRegistry(Turn turn, const test::TempDir& dir);
// The library's other uses, while calls of the thread that runs them fail.
Figures RunFaults(Turn turn, const test::TempDir& dir);

} // namespace soak
