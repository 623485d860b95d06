#include "include/KXStrHelper.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

std::vector<CString> Pieces(const char* pszText, const char* pszDelim)
{
    std::vector<CString> pieces;
    const int count = CKXStrHelper::Split(pszText, pszDelim, pieces);
    EXPECT_EQ(count, static_cast<int>(pieces.size()));
    return pieces;
}

TEST(KXStrHelper, SplitCutsAtEachDelimiter)
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
}

TEST(KXStrHelper, SplitAppends)
{
    std::vector<CString> pieces{"1;2", ";"};
    EXPECT_EQ(CKXStrHelper::Split(pieces[0], pieces[1], pieces), 4); // from and by its own strings
    EXPECT_THAT(pieces, ElementsAre("1;2", ";", "1", "2"));
}

TEST(KXStrHelper, String2DateTimeTakesWhatIsThere)
{
    const struct
    {
        const char *text, *time; // null: no such time
    } cases[] = {
        {"2009-03-14 15:09:26", "2009-03-14 15:09:26"},
        {"2009-03-14", "2009-03-14 00:00:00"},
        {"2009-3-4 5:6:7", "2009-03-04 05:06:07"},
        {"2009-03-14 15:09", "2009-03-14 15:09:00"},
        {"2008-02-29 23:59:59.9", "2008-02-29 23:59:59"},
        {"1899-12-29 06:00:00", "1899-12-29 06:00:00"},
        {"2009-02-30", nullptr},
        {"2009-13-01", nullptr},
        {"2009-03-14 24:00:00", nullptr},
        {"2009-03-14 23:60:00", nullptr},
        {"2009-03", nullptr},
        {"20090314", nullptr},
        {"99999999999999999999-01-01", nullptr},
        {"-009-01-01", nullptr},
        {"text", nullptr},
        {"", nullptr},
    };
    for (const auto& c : cases) {
        const COleDateTime time = CKXStrHelper::String2DateTime(c.text);
        EXPECT_EQ(time.GetStatus(), c.time ? COleDateTime::valid : COleDateTime::invalid) << c.text;
        if (c.time) {
            EXPECT_EQ(time.Format("%Y-%m-%d %H:%M:%S"), c.time);
        }
    }
}

} // namespace
