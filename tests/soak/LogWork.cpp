#include "KXLogSys.h"
#include "tests/soak/Soak.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kThreads = 8;
constexpr int kLines = 2'000; // of a thread in a round

// How many of the lines aren't where they belong.
std::uint64_t CountLosses(const std::string& text)
{
    std::array<int, kThreads> next{};
    std::istringstream stream(text);
    std::uint64_t losses = 0;
    for (std::string line; std::getline(stream, line);) {
        int nThread = 0, nLine = 0;
        const std::size_t at = line.find("] 1 ");
        const bool bRead =
            at != line.npos && std::sscanf(line.c_str() + at + 4, "thread %d line %d", &nThread, &nLine) == 2;
        const bool bExpected =
            bRead && nThread >= 0 && nThread < kThreads && nLine == next[static_cast<std::size_t>(nThread)]++;
        losses += !bExpected;
    }
    for (const int n : next)
        losses += static_cast<std::uint64_t>(kLines - std::min(n, kLines));
    return losses;
}

} // namespace

soak::Figures soak::RunLog(Turn turn, const test::TempDir& dir)
{
    Figures figures;
    CKXLogSys* const pLog = CKXLogSys::GetSingletonPtr();
    while (turn.Goes()) {
        figures.Need(pLog->Initialize(dir.Win("soak.log")), "the log's file");
        {
            std::vector<std::jthread> threads;
            for (int nThread = 0; nThread < kThreads; ++nThread)
                threads.emplace_back([=] {
                    for (int n = 0; n < kLines; ++n)
                        pLog->PushLogEx(CKXLogSys::LogInfo, "thread %d line %d", nThread, n);
                });
        }
        figures.Need(pLog->Flush(30'000), "a flush in thirty seconds");
        pLog->Uninitialize();
        const std::uint64_t losses = CountLosses(dir.Read("soak.log"));
        figures.Need(losses == 0, std::to_string(losses) + " log lines of a round");
        figures.operations += kThreads * kLines;
    }
    return figures;
}
