#include "KXDebug.h"
#include "KXText.h"
#include "include/KXStrHelper.h"
#include "tests/support/Test.h"

namespace {

using testing::ElementsAre;

std::vector<CString> Pieces(const char* pszText, const char* pszDelim)
{
    std::vector<CString> pieces;
    const int count = CKXStrHelper::Split(pszText, pszDelim, pieces);
    EXPECT_EQ(count, static_cast<int>(pieces.size()));
    return pieces;
}

TEST(KXStrHelper, SplitCutsAtEachDelimiterAndAppends)
{
    EXPECT_THAT(Pieces("a,bc,d", ","), ElementsAre("a", "bc", "d"));
    EXPECT_THAT(Pieces("a,b,", ","), ElementsAre("a", "b"));
    EXPECT_THAT(Pieces("whole", ","), ElementsAre("whole"));
    EXPECT_THAT(Pieces("", ","), ElementsAre());
    EXPECT_THAT(Pieces(",", ","), ElementsAre(""));
    EXPECT_THAT(Pieces(",a,,b,,", ","), ElementsAre("", "a", "", "b", ""));
    EXPECT_THAT(Pieces("a--b---c", "--"), ElementsAre("a", "b", "-c"));
    EXPECT_THAT(Pieces("a,b", ""), ElementsAre("a,b"));
    EXPECT_THAT(Pieces("", ""), ElementsAre());
    // A trail byte of code page 936 is no bar.
    EXPECT_THAT(Pieces("\xD0|\x81||\xD6\xD0", "|"), ElementsAre("\xD0|\x81|", "\xD6\xD0"));

    std::vector<CString> pieces{"1;2", ";"};
    EXPECT_EQ(CKXStrHelper::Split(pieces[0], pieces[1], pieces), 4); // from and by its own strings
    EXPECT_THAT(pieces, ElementsAre("1;2", ";", "1", "2"));
}

TEST(KXStrHelper, String2DateTimeTakesWhatIsThere)
{
    // A text and its time.
    const std::pair<const char*, const char*> cases[] = {
        {"2009-03-14 15:09:26", "2009-03-14 15:09:26"},   {"2009-03-14", "2009-03-14 00:00:00"},
        {"2009-3-4 5:6:7", "2009-03-04 05:06:07"},        {"2009-03-14 15:09", "2009-03-14 15:09:00"},
        {"2008-02-29 23:59:59.9", "2008-02-29 23:59:59"}, {"1899-12-29 06:00:00", "1899-12-29 06:00:00"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(CKXStrHelper::String2DateTime(text).Format("%Y-%m-%d %H:%M:%S"), expected) << text;
    for (const char* pszText :
         {"2009-02-30", "2009-13-01", "2009-03-14 24:00:00", "2009-03-14 23:60:00", "2009-03", "20090314",
          "99999999999999999999-01-01", "-009-01-01", "text", ""})
        EXPECT_EQ(CKXStrHelper::String2DateTime(pszText).GetStatus(), COleDateTime::invalid) << pszText;
}

TEST(Text, GoesToUtf8AndBackInEachCodePage)
{
    const std::tuple<UINT, std::string, std::string> cases[] = {
        {936, "", ""},
        {936, "plain", "plain"},
        {936, std::string("a\0b", 3), std::string("a\0b", 3)},
        {936, "\xC4\xE3\xBA\xC3", "你好"},
        {936, "\x94\x39\xDA\x33", "💩"}, // four bytes in GB18030
        {65001, "你好", "你好"},
    };
    for (const auto& [nCodePage, text, utf8] : cases) {
        const test::CodePage page(nCodePage);
        EXPECT_EQ(KXText::ToUtf8(text), utf8);
        EXPECT_EQ(std::string(KXText::FromUtf8(utf8).View()), text);
    }
    EXPECT_EQ(KXText::ToUtf8("a\xFF!"), "a\xEF\xBF\xBD!");
    EXPECT_EQ(KXText::ToUtf8(KXText::FromUtf8("a\xFF!")), "a\xEF\xBF\xBD!");
}

// A text is a view for every call that takes one, and made of one.
TEST(Text, IsAStringView)
{
    const CString str("text");
    const std::string_view view = str;
    EXPECT_EQ(view.data(), str.GetString());
    CString other(view.substr(1));
    EXPECT_EQ(other, "ext");
    other = view.substr(0, 2);
    other += view.substr(2);
    EXPECT_EQ(other, str);
    other = std::string_view(other).substr(1); // of itself
    EXPECT_EQ(other, "ext");
}

TEST(Debug, PrintsFormattedAndCutsAtItsBuffer)
{
    const test::DebugText debug;
    EXPECT_EQ(KXPrintDebugStr("%s=%d\n", "n", 5), 4);
    EXPECT_EQ(KXPrintDebugStr("%s", ""), 0);
    EXPECT_EQ(debug.Text(), "n=5\n");
    EXPECT_EQ(KXPrintDebugStr("%s", std::string(5000, 'x').c_str()), 1023);
    EXPECT_EQ(debug.Text().size(), 4u + 1023);
}

// The one that goes first at the end has nothing that still needs those that go later.
TEST(Debug, SingletonsAnnounceThemselvesAndEndInOrder)
{
    EXPECT_EQ(test::RunChild("UnloadChild", {}, {"KX_DEBUG=1", "DISPLAY="}),
              "loaded\n"
              "window: DISPLAY names no display; windows appear on a desktop in memory\n"
              "CKXFileSystem construction!\n" // the skins ask for it
              "CKXSkinResManager Construction!\n"
              "CKXLogSys Construction!\n"
              "CKXLanResManager Construction!\n"
              "end of main\n"
              "CKXSkinResManager Deconstruction!\n"
              "CKXLanResManager Deconstruction!\n"
              "CKXLogSys Deconstruction!\n"
              "CKXFileSystem destroy!\n");
}

} // namespace
