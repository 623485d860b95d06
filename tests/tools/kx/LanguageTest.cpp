#include "tests/tools/kx/Tool.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct Languages : testing::Test
{
    void Add(const std::string& id, const std::string& data) const
    {
        dir.Write("l/" + id + "/Lan.ini", "[Language]\r\nLanguage=" + id + "\r\n");
        dir.Write("l/" + id + "/Data.txt", data);
    }
    // The findings with these options.
    std::vector<std::string> Check(const std::string& options = {}) const
    {
        return test::Kx(dir, "language check l " + options).lines;
    }

    test::TempDir dir;
};

// Everything that the checks know of one language, each with the line that it gives.
TEST_F(Languages, FindsWhatIsWrongInOne)
{
    const std::string escape = " is no escape, which are \\n, \\r\\n and \\t, and is shown as it stands "
                               "[language.escape]";
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"[heading]\n\nA = a\\r\\nb\\tc\\nd\n; remark\n", {}},
        {"\xEF\xBB\xBF"
         "A = a\n",
         {": error: seems to be UTF-8, and is read in another code page [language.utf-8]",
          ":1:1: error: begins with a mark of UTF-8, which becomes part of the first key [language.mark]"}},
        {"just words\n", {":1:1: warning: has no \"=\" and is passed over [language.no-key]"}},
        {" = a\n", {":1:1: warning: has nothing before its \"=\" [language.empty-key]"}},
        {"A = a\nB = b\nA = \\q\n",
         {":3:1: warning: key A stands at line 1 already, and that text is taken [language.key-twice]"}},
        {"A B = a\n", {":1:1: warning: key \"A B\" has a blank in it [language.blank-in-key]"}},
        {"A =\n", {":1:4: note: key A has an empty text [language.empty-text]"}},
        {"A = x\\qy\\r\n", {":1:6: warning: \"\\q\"" + escape, ":1:9: warning: \"\\r\"" + escape}},
        {"A = \\\\qy\n", // there is none for the backslash
         {":1:5: warning: \"\\\\\"" + escape, ":1:6: warning: \"\\q\"" + escape}},
        {"A = ok\nB = \xC4\xE3\xFF!\n",
         {":2:6: error: has bytes here that are no character of code page 936 [language.code-page]"}},
        {"A = \xE4\xBD\xA0\xE5\xA5\xBD\n",
         {": error: seems to be UTF-8, and is read in another code page [language.utf-8]"}},
    };
    for (const auto& [data, findings] : cases) {
        Add("X", data);
        std::vector<std::string> expected;
        for (const std::string& finding : findings)
            expected.push_back("X/Data.txt" + finding);
        EXPECT_THAT(Check(), testing::ElementsAreArray(expected)) << data;
    }
    std::filesystem::resize_file(dir.Path("l/X/Data.txt"), 1 << 30); // sparse
    EXPECT_THAT(
        Check(),
        ElementsAre("X/Data.txt: error: is larger than 64 MiB and wasn't looked at [language.too-large]"));
    std::filesystem::remove(dir.Path("l/X/Data.txt"));
    dir.Write("l/X/Lan.ini", "");
    EXPECT_THAT(
        Check(),
        ElementsAre(
            "X/Data.txt: error: can't be read: every text is its key [language.no-data]",
            "X/Lan.ini: error: isn't there or has no key Language in section [Language]: the directory is "
            "passed over [language.no-name]"));
}

TEST_F(Languages, ComparesWithTheBase)
{
    Add("B", "A = %d of %s\nC = same\nD = gone\nN = 12\nP = 100%%\n");
    Add("A", "A = %s of %d\nC = same\nE = more\nN = 12\nP = 100%%\n");
    EXPECT_THAT(Check("--base B"),
                ElementsAre("A/Data.txt: error: lacks key D, line 3 of B [language.missing]",
                            "A/Data.txt:1:5: error: key A has the placeholders %s %d, and %d %s in B "
                            "[language.placeholders]",
                            "A/Data.txt:2:5: note: key C has the text of B [language.untranslated]",
                            "A/Data.txt:3:5: warning: key E is not in B [language.left-over]"));
    Add("B", "A = %d of %s\nC = same\nD = gone\nN = 1\nO = %2$s has %1$d\nP = 100%%\nQ = 100% of\n");
    Add("A", "A = %3d of %ls\nC = x\nD = y\nN = 1\nO = %1$d of %2$-5s\nP = 10%%\nQ = 100% des\n");
    EXPECT_THAT(Check("--base B"), // sizes may differ, and the order of numbers
                ElementsAre("A/Data.txt:1:5: error: key A has the placeholders %d %ls, and %d %s in B "
                            "[language.placeholders]"));
    Add("A", "A = %3d of %s\nC = x\nD = y\nN = 1\nO = %2$s\nP = 100%\nQ = of\n");
    EXPECT_THAT(Check("--base B"),
                ElementsAre("A/Data.txt:5:5: error: key O has the placeholders %2$s, and %1$d %2$s in B "
                            "[language.placeholders]"));
    Add("B", "A = %d of %s\nC = same\nD = gone\nN = 12\nP = 100%%\n");
    Add("A", "A = %5d of %-8s\nC = other\nD = there\nN = 12\nP = 100%%\n");
    const auto clean = test::Kx(dir, "language check l --base B");
    EXPECT_EQ(clean.nCode, 0);
    EXPECT_EQ(clean.last, "0 errors, 0 warnings, 0 notes");
    std::filesystem::remove(dir.Path("l/A/Data.txt")); // not each of its texts is told of
    EXPECT_THAT(Check("--base B"),
                ElementsAre("A/Data.txt: error: can't be read: every text is its key [language.no-data]"));
    EXPECT_EQ(test::Kx(dir, "language check l --base Z").nCode, 2);
    EXPECT_EQ(test::Kx(dir, "language check none").nCode, 2);
}

TEST_F(Languages, LooksThroughSources)
{
    Add("A", "IDS_ONE = 1\nIDS_OLD = 2\nother = 3\n");
    dir.Write("src/a.cpp", "Get(\"IDS_ONE\");\nGet(\"IDS_TWO\"); // \"IDS_PART...\n");
    EXPECT_THAT(Check("--sources 'src/*.cpp'"),
                ElementsAre("A/Data.txt:2: note: no source asks for key IDS_OLD [language.never-asked]",
                            "../src/a.cpp:2: error: no language has key IDS_TWO, which is asked for here "
                            "[language.no-text]"));
    EXPECT_EQ(test::Kx(dir, "language check l --sources 'src/*.x'").nCode, 2);
}

TEST_F(Languages, MakesOthers)
{
    Add("A", "; first\n[page]\nIDS_ONE=a %d tea\\n\xC4\xE3\n\nIDS_TWO = x\r\n; last");
    EXPECT_EQ(test::Kx(dir, "language new N --from A l").nCode, 0);
    EXPECT_EQ(dir.Read("l/N/Data.txt"),
              "; first\r\n[page]\r\nIDS_ONE = a %d tea\\n\xC4\xE3\r\n\r\nIDS_TWO = x\r\n; last\r\n");
    EXPECT_EQ(test::Kx(dir, "language pseudo P --from A l").nCode, 0);
    EXPECT_THAT(dir.Read("l/P/Data.txt"), HasSubstr("IDS_TWO = [x ooo]\r\n"));
    EXPECT_THAT(dir.Read("l/P/Data.txt"), HasSubstr(" %d t"));
    EXPECT_THAT(dir.Read("l/P/Data.txt"), HasSubstr("\\n\xC4\xE3 ooo]"));
    EXPECT_EQ(test::Kx(dir, "language check l --base A").nCode, 0); // notes alone
    EXPECT_EQ(test::Kx(dir, "language new N --from A l").nCode, 2);
    EXPECT_EQ(test::Kx(dir, "language new ../out --from A l").nCode, 2);
}

} // namespace
