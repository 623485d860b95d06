#include "tests/support/CopyList.h"
#include "tests/wordtest/WordSheet.h"

using test::WordSheet;

namespace {

constexpr COLORREF clrText = RGB(200, 10, 20);
constexpr COLORREF clrBox = RGB(30, 160, 40);
constexpr int nTextTop = 20; // of letters in the middle of a word's rectangle
const CRect rcWord(20, 10, 180, 50);
const CRect extremes[] = {CRect(INT_MAX, INT_MAX, INT_MAX, INT_MAX),
                          CRect(INT_MIN, INT_MIN, INT_MIN, INT_MIN),
                          CRect(INT_MAX - 5, INT_MIN, INT_MIN, INT_MAX)};

using DrawTestWord = test::Words;
using RedrawWord = test::Words;

TEST_F(DrawTestWord, LeavesGapsAsWideAsTheHiddenLetters)
{
    std::istringstream cases("dinosaur dinosaur dinosaur d*no**ur will **** a\xD6\xD0 *\xD6* cat cat,dog");
    for (std::string word, shown; cases >> word >> shown;)
        for (const int nRight : {180, 45, 0}) { // a word runs on past the rectangle's side
            WordSheet sheet, expected;
            CKXEnglishWord::DrawTestWord(&sheet, word.c_str(), shown.c_str(), CRect(20, 10, nRight, 50),
                                         &font, clrBox, clrText, 0);
            expected.WriteLetters(20, nTextTop, word, shown, font, clrText);
            EXPECT_EQ(sheet.DifferenceTo(expected), "") << word << shown << nRight;
        }
}

// It is as wide as the letter and a pixel more, which is the next one's first; nothing within is painted.
TEST_F(DrawTestWord, FramesThePlacesOfHiddenLetters)
{
    const std::string word = "wi\xD6\xD0l";
    WordSheet sheet, expected;
    CKXEnglishWord::DrawTestWord(&sheet, word.c_str(), "w***l", rcWord, &font, clrBox, clrText, 1);
    expected.WriteLetters(20, nTextTop, word, "w***l", font, clrText);
    for (std::size_t n = 1; n < 4; ++n) {
        const int nFrom = 20 + expected.WidthOf(word.substr(0, n), font);
        const int nTo = 20 + expected.WidthOf(word.substr(0, n + 1), font);
        for (int x = nFrom; x <= nTo; ++x)
            for (int y = 11; y < 49; ++y)
                if (x == nFrom || x == nTo || y == 11 || y == 48) expected.SetPixel(x, y, clrBox);
    }
    EXPECT_EQ(sheet.DifferenceTo(expected), "");
}

TEST_F(DrawTestWord, EndsQuietlyForWhatIsNone)
{
    WordSheet sheet, expected;
    CDC none;
    for (CDC* pDC : {&none, static_cast<CDC*>(nullptr)}) {
        CKXEnglishWord::DrawTestWord(pDC, "cat", "c*t", rcWord, &font, clrBox, clrText, 1);
        CKXEnglishWord::RedrawWordInvalidPart(pDC, &sheet, "cat", "", rcWord, &font, clrText);
        CKXEnglishWord::RedrawWordInvalidPart(&sheet, pDC, "cat", "", rcWord, nullptr, clrText);
    }
    for (const CRect& rc : extremes) {
        CKXEnglishWord::DrawTestWord(&sheet, "cat", "c*t", rc, &font, clrBox, clrText, 1);
        CKXEnglishWord::RedrawWordInvalidPart(&sheet, &sheet, "cat", "dog", rc, &font, clrText);
    }
    EXPECT_EQ(sheet.DifferenceTo(expected), "");
    // Without a font, in the device's.
    CKXEnglishWord::DrawTestWord(&sheet, "l", "", rcWord, nullptr, clrBox, clrText, 1);
    EXPECT_NE(sheet.DifferenceTo(expected), "");
}

// From the first letter that differs the old ones are wiped, however far they went, and the new ones drawn,
// up to the last that fits; nothing else is touched.
TEST_F(RedrawWord, TouchesWhatChangesAlone)
{
    // The texts, how many letters are the same, how many fit, and by how many pixels there's more room.
    std::istringstream cases(
        "cat cart 2 4 0  cat ca 2 2 0  - cat 0 3 0  ca cat 2 3 0  cat cat 3 3 0  cat Cat 0 3 0  "
        "cat - 0 0 0  a\xD6\xD0 a\xD6\xD1 2 3 0  dinosaur dialogue 2 4 0  "
        "dinosaur dialogue 2 5 1  dino dialogue 2 1 0  d e 0 0 3");
    std::string old, now;
    for (std::size_t nSame, nFit, nSpare; cases >> old >> now >> nSame >> nFit >> nSpare;) {
        std::erase(old, '-');
        std::erase(now, '-');
        WordSheet field, expected, back(77);
        CRect rc = rcWord;
        rc.right = 20 + field.WidthOf(now.substr(0, nFit), font) + static_cast<int>(nSpare);
        test::CopyList copies;
        CKXEnglishWord::RedrawWordInvalidPart(&field, &back, old.c_str(), now.c_str(), rc, &font, clrText);
        EXPECT_EQ(copies.Take().size(), nSame < old.size()) << old << now;
        const int nFrom = 20 + field.WidthOf(old.substr(0, nSame), font);
        expected.BitBlt(nFrom, 10, 20 + field.WidthOf(old, font) - nFrom, 40, &back, nFrom, 0, SRCCOPY);
        std::string shown = now;
        for (std::size_t n = 0; n < now.size(); ++n)
            if (n < nSame || n >= nFit) shown[n] = '*';
        expected.WriteLetters(20, nTextTop, now, shown, font, clrText);
        EXPECT_EQ(field.DifferenceTo(expected), "") << old << now << nFit;
    }
}

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

TEST(MakeTestWord, TakesTheLowestPlaceAfterSixRefusals)
{
    constexpr unsigned nSeed = 763; // whose first six numbers name the first of three places
    std::srand(nSeed);
    for (int n = 0; n < 6; ++n)
        ASSERT_EQ(std::rand() % 3, 0);
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
        ASSERT_EQ(strTest.GetLength(), nLength);
        for (int n = bKeepFirst; n < nLength; ++n)
            if (strTest[n] == '*') word[static_cast<std::size_t>(n)] = '*';
        ASSERT_EQ(strTest, word.c_str());
    }
}

} // namespace
