#include "KXEnglishWord.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

CString Make(const CString& strWord, int nHideCount, int bKeepFirst)
{
    CString strTest = strWord;
    CKXEnglishWord::MakeTestWord(strTest, nHideCount, bKeepFirst);
    return strTest;
}

// The numbers after `srand(1)` end in 3, 6, 7, 5, then 3, 5, 6, 2, then 9; none are drawn to hide all
// letters.
TEST(MakeTestWord, HidesWhereTheGeneratorSays)
{
    std::istringstream cases("apple 9 0 ***** 3  apple 5 0 ***** 3  apple 2147483647 1 a**** 3  a 0 0 * 3  "
                             "a -2147483648 7 a 3  \xD6\xD0 2 0 ** 3  \xD6\xD0 2 1 \xD6* 3  "
                             "abcdefghij -3 0 abc*efghij 6  abcdefghij 3 0 abc*ef**ij 5  "
                             "abcdefghij 4 1 abc*e***ij 3  abcdefghij 5 0 ab**e***ij 9");
    std::string word, expected;
    for (int nHideCount, bKeepFirst, nNext; cases >> word >> nHideCount >> bKeepFirst >> expected >> nNext;) {
        std::srand(1);
        EXPECT_EQ(Make(word.c_str(), nHideCount, bKeepFirst), expected.c_str());
        EXPECT_EQ(std::rand() % 10, nNext) << expected;
    }
}

// Whether the first six numbers after a seed name the first of three places.
bool AreAllFirst(unsigned nSeed)
{
    std::srand(nSeed);
    int nFirst = 0;
    for (int n = 0; n < 6; ++n)
        nFirst += std::rand() % 3 == 0;
    return nFirst == 6;
}

TEST(MakeTestWord, TakesTheLowestPlaceAfterSixRefusals)
{
    unsigned nSeed = 1;
    while (!AreAllFirst(nSeed))
        ++nSeed;
    const int nSeventh = std::rand();
    std::srand(nSeed);
    EXPECT_EQ(Make("abc", 1, 1), "a*c"); // where the first is kept
    EXPECT_EQ(std::rand(), nSeventh);
    std::srand(nSeed);
    EXPECT_EQ(Make("*bc", 1, 0), "**c"); // or hidden already
    EXPECT_EQ(Make("a**", 2, 1), "a**"); // and nothing is left to hide
}

// For words of all lengths, of letters and of the bytes of Chinese ones.
TEST(MakeTestWord, HidesAsManyAsAskedAndChangesNothingElse)
{
    for (int at = 0; at < 41 * 44 * 4; ++at) {
        const int nLength = at % 41, nCount = at / 41 % 44 - 2, bKeepFirst = at / 1804 % 2;
        std::string word;
        for (int n = 0; n < nLength; ++n)
            word += static_cast<char>((at / 3608 == 0 ? 'a' : 0x81) + n);
        const CString strWord = word.c_str(), strTest = Make(strWord, nCount, bKeepFirst);
        EXPECT_EQ(strWord, word.c_str()); // whose buffer the other shared
        const int nWanted = std::min(std::max(nCount, 1), nLength);
        const bool bOneShort = bKeepFirst && nLength > 0 && nWanted == nLength;
        ASSERT_EQ(std::ranges::count(strTest.View(), '*'), nWanted - bOneShort) << word << nCount;
        for (int n = 0; n < nLength; ++n)
            ASSERT_TRUE(strTest[n] == strWord[n] || (strTest[n] == '*' && n >= bKeepFirst)) << strTest;
        ASSERT_EQ(strTest.GetLength(), nLength);
    }
}

} // namespace
