// The crash reporter brings home lines that were queued.

#include "tests/core/CrashPlace.h"
#include "tests/core/ForgedQueue.h"
#include "tests/support/LogLines.h"

namespace {

using testing::HasSubstr;

// With the reporter.
struct Place : test::CrashPlace
{
    Place() { RealReporter(); }
    std::string Log() const { return test::ReadFile(Path("app.log")); }
};

using LogCrash = test::CrashTest;

// Each line whose push had returned is in the file, once and in its thread's order; one that was being pushed
// may be.
TEST_F(LogCrash, AtAnyMomentLosesNoLine)
{
    constexpr std::size_t nThreads = 8;
    const unsigned nRounds = test::kSanitized ? 5 : 20; // a crash takes seconds under sanitizers
    for (unsigned nSeed = 0; nSeed < nRounds; ++nSeed) {
        SCOPED_TRACE("seed " + std::to_string(nSeed));
        const Place place;
        ASSERT_EQ(place.Crash("threads", {}, std::to_string(nSeed)), 128 + SIGSEGV);
        const std::string counts = place.Dir().Read("counts");
        ASSERT_EQ(counts.size(), nThreads * sizeof(std::uint64_t));
        const std::string log = place.Log();
        const test::ThreadLines lines(log, nThreads);
        EXPECT_EQ(lines.wrong, "");
        EXPECT_TRUE(log.ends_with('\n'));
        for (std::size_t t = 0; t < nThreads; ++t) {
            std::uint64_t nPushed = 0;
            std::memcpy(&nPushed, counts.data() + t * sizeof(nPushed), sizeof(nPushed));
            EXPECT_GE(lines.counts[t], nPushed);
            EXPECT_LE(lines.counts[t], nPushed + 1);
        }
    }
}

TEST_F(LogCrash, OfEveryKindBringsWaitingLinesHomeOrIntoTheReport)
{
    std::vector<std::string> kinds{"read", "abort",           "heap",   "overflow", "thread",
                                   "call", "thread_overflow", "locked", "together"};
    if (test::kSanitized) std::erase(kinds, "heap"); // its allocator is another one
    for (const std::string& kind : kinds) {
        SCOPED_TRACE(kind);
        const Place place;
        place.Crash("waiting", {}, kind);
        std::istringstream lines(place.Log());
        int nLines = 0;
        for (std::string line; std::getline(lines, line); ++nLines) {
            const std::string message = line.substr(std::min(line.find("] 1 "), line.size() - 4) + 4);
            ASSERT_EQ(message,
                      "n" + std::to_string(nLines) + " " + std::string(nLines % 500 ? 9 : 100'000, 'x'));
        }
        EXPECT_EQ(nLines, 1000);
        EXPECT_THAT(place.Report(), HasSubstr("\n" + place.Log()));
    }
    const Place place;
    place.Crash("waiting", {}, "unopened");
    EXPECT_FALSE(place.Dir().Exists("app/app.log"));
    EXPECT_THAT(place.Report(), testing::AllOf(HasSubstr("] 1 n0 xxx"), HasSubstr("] 1 n999 xxx")));
}

TEST_F(LogCrash, LeavesFaultsOfTheQueueBehind)
{
    const std::string torn = "before\nfirst\nsec";
    const std::string damage = "KXCrashReport: the queue of the log is damaged: lines are missing here\n";
    for (const auto& [pszName, pfnMake, pszSaved, bDamage] : test::kQueueFaults) {
        const std::string what = pszName;
        SCOPED_TRACE(what);
        const Place place;
        EXPECT_EQ(place.Crash("forged", {}, what), 128 + SIGSEGV);
        std::string log = place.Log();
        const auto own = log.find("KXCrashReport: ");
        if (own != log.npos) log.erase(own - 24, 24); // its stamp and level
        EXPECT_EQ(log, torn + pszSaved + (bDamage ? damage : ""));
        const std::string report = place.Report();
        EXPECT_THAT(report, HasSubstr("\nmodules\n"));
        EXPECT_EQ(report.find("queue of the log is damaged") != report.npos, own != log.npos);
        const bool bReported =
            what == "file" || what == "check" || (what != "first" && what != "break" && log != torn);
        EXPECT_EQ(report.find("\nfirst\nsecond\n") != report.npos, bReported);
    }
}

} // namespace
