#include "include/platform/Error.h"
#include "platform/text/CharWalk.h"
#include "tests/support/Test.h"

namespace {

std::u16string Wide(UINT page, std::string_view bytes)
{
    std::u16string units(bytes.size(), u'\0');
    const int nBytes = static_cast<int>(bytes.size());
    const int nUnits = MultiByteToWideChar(page, 0, bytes.data(), nBytes, units.data(), nBytes);
    return units.substr(0, static_cast<std::size_t>(nUnits));
}

std::string Narrow(UINT page, std::u16string_view units)
{
    std::string bytes(4 * units.size(), '\0');
    const int nUnits = static_cast<int>(units.size());
    const int nBytes = WideCharToMultiByte(page, 0, units.data(), nUnits, bytes.data(), 4 * nUnits);
    return bytes.substr(0, static_cast<std::size_t>(nBytes));
}

TEST(CodePage, ConvertsBothWays)
{
    const std::u16string chinese = u"\u4E2D\u6587"; // "Chinese" in Chinese
    EXPECT_EQ(Wide(CP_ACP, "\xD6\xD0\xCE\xC4"), chinese);
    EXPECT_EQ(Narrow(CP_GBK, chinese), "\xD6\xD0\xCE\xC4");
    EXPECT_EQ(Wide(CP_UTF8, "\xE4\xB8\xAD"), u"\u4E2D");
    const std::u16string beyond = u"\U0001F600\u00E9"; // neither is in GBK itself
    EXPECT_EQ(Wide(CP_GBK, Narrow(CP_GBK, beyond)), beyond);
}

// Every character comes back from either code page, and is one character to a walk through its bytes.
TEST(CodePage, HoldsAllOfUnicode)
{
    std::u16string all;
    std::size_t nCharacters = 0;
    for (char32_t ch = 0; ch <= 0x10FFFF; ++ch) {
        if (ch >= 0xD800 && ch < 0xE000) continue;
        if (ch >= 0x10000) all += static_cast<char16_t>(0xD7C0 + (ch >> 10));
        all += static_cast<char16_t>(ch >= 0x10000 ? 0xDC00 + (ch & 0x3FF) : ch);
        ++nCharacters;
    }
    for (const UINT page : {CP_GBK, CP_UTF8}) {
        const std::string bytes = Narrow(page, all);
        EXPECT_TRUE(Wide(page, bytes) == all) << page;
        if (page == CP_UTF8) continue;
        std::size_t nWalked = 0;
        for (std::size_t n = 0; n < bytes.size(); n += kx::text::CharLength(bytes, n, true))
            ++nWalked;
        EXPECT_EQ(nWalked, nCharacters);
    }
    EXPECT_EQ(Wide(CP_GBK, "\x80"), u"\u20AC");
    EXPECT_EQ(Narrow(CP_GBK, u"\u20AC"), "\xA2\xE3");
    EXPECT_EQ(Narrow(CP_GBK, u"\u0080"), "\x81\x30\x81\x30");
}

TEST(CodePage, BytesThatAreNoTextAreReplaced)
{
    EXPECT_EQ(Wide(CP_GBK, "a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(Wide(CP_UTF8, "\xE4\xB8"), u"\uFFFD\uFFFD");
    EXPECT_EQ(Narrow(CP_UTF8, std::u16string(1, char16_t{0xD800}) + u"x"), "?x");
}

TEST(CodePage, SizesAndFailures)
{
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 4);
    WCHAR two[2];
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, two, 2), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, two, 2), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, nullptr, 4, two, 2), 0);
    EXPECT_FALSE(KXHost::SetCodePage(1252));
    EXPECT_TRUE(IsDBCSLeadByte(0x81));
    EXPECT_FALSE(IsDBCSLeadByte('a'));
    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(GetACP(), CP_UTF8);
    EXPECT_FALSE(IsDBCSLeadByte(0x81));
}

TEST(CodePage, ComparesIgnoringTheCaseOfAllLetters)
{
    EXPECT_EQ(lstrcmpiA("aB", "Ab"), 0);
    EXPECT_EQ(lstrcmpiA(nullptr, ""), 0);
    EXPECT_LT(lstrcmpiA("a", "B"), 0);
    EXPECT_NE(lstrcmpiA("\xB0\x61", "\xB0\x41"), 0); // the second byte of a character is no letter
    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(lstrcmpiA("Яｂ", "яＢ"), 0);
    EXPECT_NE(lstrcmpiA("\xFFz", "\xFFZ"), 0);
}

} // namespace
