#include "include/platform/Error.h"
#include "platform/text/CharWalk.h"
#include "tests/support/Test.h"

using testing::ElementsAre;

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
    EXPECT_EQ(Wide(CP_ACP, "\xD6\xD0\xCE\xC4"), u"\u4E2D\u6587"); // "Chinese" in Chinese
    EXPECT_EQ(Wide(CP_UTF8, "\xE4\xB8\xAD"), u"\u4E2D");
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

// "\x95\x5C" is one GBK letter whose second byte is a backslash; "\xB0\x41" one with a trailing "A".
constexpr char szTrail[] = "C:\\\x95\x5C\\a";

std::vector<std::string> Tokens(const char* psz, const char* pszDelims)
{
    const CString str(psz);
    std::vector<std::string> tokens;
    for (int nPos = 0;;) {
        const CString token = str.Tokenize(pszDelims, nPos);
        if (nPos < 0) return tokens;
        tokens.emplace_back(token);
    }
}

TEST(String, CopiesShareUntilOneChanges)
{
    CString a("abc"), b = a;
    EXPECT_EQ(a.GetString(), b.GetString());
    b.SetAt(0, 'x');
    b += "d";
    EXPECT_STREQ(b, "xbcd");
    a = a;
    EXPECT_STREQ(CString(std::move(a)), "abc");
    EXPECT_STREQ(CString(static_cast<const char*>(nullptr)), "");
    EXPECT_STREQ(CString('x', 3), "xxx");
    EXPECT_STREQ(CString('x', -1), "");
}

TEST(String, AppendsItselfAndPartsOfItself)
{
    CString str("abc");
    str += str;
    str += str.GetString() + 4;
    EXPECT_STREQ(str, "abcabcbc");
    str = str.GetString() + 5;
    EXPECT_STREQ(str, "cbc");
    EXPECT_STREQ("<" + str + ">" + CString("!"), "<cbc>!");
}

// One long run of lead bytes, in which only counting from its beginning tells where letters begin.
TEST(String, LongTextsOfDoubleBytesAreSearchedInOneGo)
{
    std::string letters;
    for (int n = 0; n < 500'000; ++n)
        letters += "\xB0\xA1";
    CString str(letters.c_str());
    EXPECT_EQ(str.Find("\xA1\xB0"), -1);
    EXPECT_EQ(str.ReverseFind('\xA1'), -1);
    EXPECT_EQ(str.ReverseFind('\xB0'), 999'998);
    EXPECT_EQ(str.Replace("\xB0\xA1", "ab"), 500'000);
    EXPECT_EQ(str.GetLength(), 1'000'000);
}

TEST(String, PartsArePulledIntoRange)
{
    const CString str("abcdef");
    EXPECT_THAT((std::array{str.Left(2), str.Left(-1), str.Left(99), str.Right(2), str.Right(INT_MIN),
                            str.Mid(2, 3), str.Mid(5, INT_MAX), str.Mid(INT_MAX)}),
                ElementsAre("ab", "", "abcdef", "ef", "", "cde", "f", ""));
    EXPECT_EQ(str.GetAt(6), '\0');
    EXPECT_EQ(str[-1], '\0');
}

TEST(String, SearchesNeverMatchATrailByte)
{
    const CString str(szTrail);
    EXPECT_THAT((std::array{str.Find('\\'), str.Find('\\', 3), str.ReverseFind('\\')}), ElementsAre(2, 5, 5));
    EXPECT_EQ(CString("\x95\x5C").ReverseFind('\\'), -1);
    EXPECT_EQ(CString("\xB0\x41\x41").Find("A"), 2);
    EXPECT_EQ(CString("\x5C\x95").Find('\\'), 0);         // a stray lead byte behind it
    EXPECT_EQ(CString("\xB0\xB0\x5C").Find('\\'), 2);     // behind a whole letter
    EXPECT_EQ(CString("\x81\x5Cx\x5C").Find('\\', 1), 3); // begun on the second byte
    EXPECT_EQ(CString("\xB0\xB0\xB0\xB0").Find("\xB0\xB0", 1), 2);
    const CString four("\x81\x39\xEE\x39\x39\x61"); // a character of four bytes, and "9a"
    EXPECT_THAT((std::array{four.Find('9'), four.Find("9\xEE"), four.Left(4).ReverseFind('9')}),
                ElementsAre(4, -1, -1));
    EXPECT_EQ(CString(four).Replace('9', 'x'), 1);
    EXPECT_THAT(Tokens(four, "9"), ElementsAre("\x81\x39\xEE\x39", "a"));
    EXPECT_STREQ(CString("A" + four).MakeLower(), "a" + four);
    EXPECT_EQ(str.Find('a', 99), -1);
    EXPECT_EQ(str.Find("", 3), 3);

    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(str.Find('\\', 3), 4);
}

TEST(String, ReplacesWholeLettersOnly)
{
    CString str("a\\n\x95\x5Cn\\n");
    EXPECT_EQ(str.Replace("\\n", "\r\n"), 2);
    EXPECT_STREQ(str, "a\r\n\x95\x5Cn\r\n");
    EXPECT_EQ(str.Replace("", "x"), 0);
    EXPECT_EQ(str.Replace('a', 'b'), 1);
    CString doubled("aaa");
    EXPECT_EQ(doubled.Replace("aa", "a"), 1);
    EXPECT_STREQ(doubled, "aa");
}

TEST(String, CaseFoldsAsciiLettersAlone)
{
    EXPECT_STREQ(CString("ABZ\xB0\x41[").MakeLower(), "abz\xB0\x41[");
    EXPECT_STREQ(CString("az\xB0\x61").MakeUpper(), "AZ\xB0\x61");
    EXPECT_EQ(CString("abc").CompareNoCase("ABC"), 0);
    EXPECT_NE(CString("\xB0\x41").CompareNoCase("\xB0\x61"), 0); // two different letters
    EXPECT_LT(CString("a").CompareNoCase("B"), 0);
    EXPECT_LT(CString("a").CompareNoCase("aa"), 0);
    EXPECT_GT(CString("\xB0").Compare("a"), 0); // bytes are unsigned
}

TEST(String, TrimsAndTokenizes)
{
    EXPECT_STREQ(CString(" \t\r\n\v\fa b\n").Trim(), "a b");
    EXPECT_STREQ(CString(" \n").Trim(), "");
    EXPECT_STREQ(CString(" a ").TrimLeft(), "a ");
    EXPECT_STREQ(CString(" a ").TrimRight(), " a");
    EXPECT_THAT(Tokens(",a,,b", ","), ElementsAre("a", "b"));
    EXPECT_THAT(Tokens("\x95\x5C\\x", "\\"), ElementsAre("\x95\x5C", "x"));
    EXPECT_THAT(Tokens("", ","), ElementsAre());
    EXPECT_THAT(Tokens("one", ""), ElementsAre("one"));
}

TEST(String, FormatsAnyLengthAndItsOwnText)
{
    CString str;
    str.Format("%s-%d", "a", 7);
    str.Format("%s%s", str.GetString(), str.GetString());
    EXPECT_STREQ(str, "a-7a-7");
    const std::string big(5000, 'x');
    str.Format("%s!", big.c_str());
    EXPECT_EQ(str.GetLength(), 5001);
    str.AppendFormat("%c", '?');
    EXPECT_EQ(str.Right(2), "!?");
}

TEST(String, BufferIsWritableAndCutToItsSize)
{
    CString str("ab");
    const CString other = str;
    char* pch = str.GetBuffer(10);
    pch[2] = 'c';
    pch[3] = '\0';
    str.ReleaseBuffer();
    EXPECT_STREQ(str, "abc");
    EXPECT_STREQ(other, "ab");
    str.Truncate(9);
    str.Truncate(1);
    str += "z";
    EXPECT_STREQ(str, "az");
    CString shared = str;
    shared.Truncate(-1);
    EXPECT_STREQ(shared, "");
    EXPECT_STREQ(str, "az");
    CString empty;
    empty.GetBuffer()[0] = 'x';
    empty.ReleaseBuffer(1);
    EXPECT_STREQ(empty, "x");
    EXPECT_STREQ(CString(), "");
}

} // namespace
