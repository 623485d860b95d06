#include "tests/tools/kx/Tool.h"

namespace {

constexpr char kLog[] = "[2009-03-14 08:05:09] 1 begin\n[2009-03-14 08:05:10] 2 bad\nmore of it \xC4\xE3\n";

// The lines that kx shows on a terminal, which end in CR LF.
std::vector<std::string> OnTerminal(const test::TempDir& dir, const std::string& arguments)
{
    return test::LinesOf(dir, "env -u NO_COLOR PATH=\".:$PATH\" script -qec \"'" KX_TEST_BIN "/kx' " +
                                  arguments + "\" /dev/null </dev/null");
}

TEST(Show, LogInColourOnATerminal)
{
    const test::TempDir dir;
    dir.Write("l.txt", "[2009-03-14 08:05:09] 1 a\033[31m\n[2009-03-14 08:05:10] 2 bad\n");
    EXPECT_THAT(OnTerminal(dir, "log l.txt"), // what a log holds sets no colours
                testing::ElementsAre("[2009-03-14 08:05:09] 1 a?[31m\r",
                                     "\033[31m[2009-03-14 08:05:10] 2 bad\033[0m\r"));
}

TEST(Show, LogByLevelAndText)
{
    const test::TempDir dir;
    dir.Write("l.txt", kLog);
    // Options, the lines but for the last, and that one.
    const std::tuple<const char*, std::vector<std::string>, std::string> cases[] = {
        {"", {"[2009-03-14 08:05:09] 1 begin", "[2009-03-14 08:05:10] 2 bad"}, "more of it 你"},
        {"--level 2", {"[2009-03-14 08:05:10] 2 bad"}, "more of it 你"}, // which belongs to the line before
        {"--match beg", {}, "[2009-03-14 08:05:09] 1 begin"},
        {"--level 3", {}, ""},
    };
    for (const auto& [pszOptions, lines, last] : cases) {
        const auto shown = test::Kx(dir, std::string("log l.txt ") + pszOptions);
        EXPECT_EQ(shown.nCode, 0);
        EXPECT_EQ(shown.lines, lines) << pszOptions;
        EXPECT_EQ(shown.last, last);
    }
    dir.Write("gbk.txt", "[2009-03-14 08:05:11] 1 \xC4\xE3");
    EXPECT_EQ(test::Kx(dir, "log gbk.txt").last, "[2009-03-14 08:05:11] 1 你");
    EXPECT_EQ(test::Kx(dir, "log none.txt").nCode, 2);
    EXPECT_EQ(test::Kx(dir, "log .").nCode, 2);
}

// A line is shown once, when it is whole; a log that is begun anew, or another file of its name, from its
// beginning; and the end is the file's.
TEST(Show, LogFollowed)
{
    const test::TempDir dir;
    dir.Write("l.txt", kLog);
    test::Running log("log -f --match beg '" + dir.Path("l.txt") + "'");
    const auto append = [&](const char* psz) { std::ofstream(dir.Path("l.txt"), std::ios::app) << psz; };
    EXPECT_EQ(log.Line(), "[2009-03-14 08:05:09] 1 begin");
    append("[2009-03-14 08:05:10] 1 begun\n[2009-03-14 08:05:11] 1 beg");
    EXPECT_EQ(log.Line(), "[2009-03-14 08:05:10] 1 begun");
    append("inning\n");
    EXPECT_EQ(log.Line(), "[2009-03-14 08:05:11] 1 beginning");
    dir.Write("l.txt", "[2010-01-01 00:00:00] 1 begin\n");
    EXPECT_EQ(log.Line(), "[2010-01-01 00:00:00] 1 begin");
    dir.Write("new.txt", "[2010-01-01 00:00:01] 1 begin\n[2010-01-01 00:00:02] 1 beg");
    std::filesystem::rename(dir.Path("new.txt"), dir.Path("l.txt"));
    EXPECT_EQ(log.Line(), "[2010-01-01 00:00:01] 1 begin");
    append("gar\n[2010-01-01 00:00:03] 1 beg");
    EXPECT_EQ(log.Line(), "[2010-01-01 00:00:02] 1 beggar");
    std::filesystem::remove(dir.Path("l.txt"));
    EXPECT_EQ(log.Line(), "[2010-01-01 00:00:03] 1 beg");
    EXPECT_EQ(log.Line(), "");
    EXPECT_EQ(log.End(), 0);
}

TEST(Show, ReportByEitherFile)
{
    const test::TempDir dir;
    dir.Write("c.txt", "signal 6\nthread 1\n");
    dir.Write("c.dmp", "a dump");
    for (const char* pszFile : {"c.txt", "c.dmp"}) {
        const auto shown = test::Kx(dir, std::string("report ") + pszFile); // in a pipe no gdb is begun
        EXPECT_EQ(shown.nCode, 0);
        EXPECT_THAT(shown.lines, testing::ElementsAre("signal 6"));
        EXPECT_EQ(shown.last, "thread 1");
    }
    // On a terminal gdb gets the dump, and the program where that is still there.
    dir.Write("gdb", "#!/bin/sh\necho \"gdb: $@\"\n");
    std::filesystem::permissions(dir.Path("gdb"), std::filesystem::perms::owner_all);
    for (const std::string& program : {dir.Path("gdb"), dir.Path("gone")}) {
        dir.Write("c.txt", "signal 6\nprocess      4711 " + program + "\n");
        const std::string expected =
            program == dir.Path("gdb") ? "gdb: -core c.dmp " + program : "gdb: -core c.dmp";
        EXPECT_EQ(OnTerminal(dir, "report c.dmp").back(), expected + "\r");
    }
    const auto none = test::Kx(dir, "report none.txt");
    EXPECT_EQ(none.nCode, 2);
    EXPECT_THAT(none.last, testing::HasSubstr("there is no report none.txt"));
}

} // namespace
