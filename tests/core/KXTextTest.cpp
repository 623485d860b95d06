#include "KXText.h"

#include "tests/support/Host.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Text, GoesToUtf8AndBackInEachCodePage)
{
    const struct
    {
        UINT nCodePage;
        std::string text;
        std::string utf8;
    } cases[] = {
        {936, "", ""},
        {936, "plain", "plain"},
        {936, std::string("a\0b", 3), std::string("a\0b", 3)},
        {936, "\xC4\xE3\xBA\xC3", "你好"},
        {936, "\x94\x39\xDA\x33", "💩"}, // four bytes in GB18030
        {65001, "你好", "你好"},
    };
    for (const auto& c : cases) {
        const test::CodePage page(c.nCodePage);
        EXPECT_EQ(KXText::ToUtf8(c.text), c.utf8);
        EXPECT_EQ(std::string(KXText::FromUtf8(c.utf8).View()), c.text);
    }
    EXPECT_EQ(KXText::ToUtf8("a\xFF"
                             "b"),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(KXText::ToUtf8(KXText::FromUtf8("a\xFF"
                                              "b")),
              "a\xEF\xBF\xBD"
              "b");
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

} // namespace
