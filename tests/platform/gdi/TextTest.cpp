#include "include/KXText.h"
#include "tests/support/Picture.h"
#include "tests/support/Process.h"
#include "tests/support/Test.h"

#include <ctime>

namespace {

// A white surface with a font of a face and height selected.
class Text : public testing::Test
{
protected:
    Text() { Use("DejaVu Sans", 20); }
    ~Text() override
    {
        SelectObject(paper, GetStockObject(SYSTEM_FONT));
        DeleteObject(font);
    }

    void Use(const char* pszFace, int nHeight, int nWeight = FW_NORMAL, bool bItalic = false)
    {
        LOGFONTA log{};
        log.lfHeight = nHeight;
        log.lfWeight = nWeight;
        log.lfItalic = bItalic;
        std::strncpy(log.lfFaceName, pszFace, sizeof(log.lfFaceName) - 1);
        Use(log);
    }
    void Use(const LOGFONTA& log)
    {
        const HFONT made = CreateFontIndirectA(&log);
        SelectObject(paper, made);
        DeleteObject(font);
        font = made;
    }
    int WidthOf(const std::string& text)
    {
        RECT rect{0, 0, 1, 1};
        DrawTextA(paper, text.data(), static_cast<int>(text.size()), &rect,
                  DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
        return rect.right;
    }
    // The box of what isn't white.
    RECT Ink()
    {
        RECT ink{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 200; ++x)
                if (GetPixel(paper, x, y) != 0xFFFFFF)
                    ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y),
                           std::max<LONG>(ink.right, x + 1), std::max<LONG>(ink.bottom, y + 1)};
        return ink;
    }
    RECT Draw(const char* psz, UINT nFormat, RECT rect = {0, 0, 200, 60})
    {
        const RECT all{0, 0, 200, 60};
        FillRect(paper, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
        DrawTextA(paper, psz, -1, &rect, nFormat);
        return Ink();
    }

    test::Paper paper{200, 60, 'W'};
    HFONT font = nullptr;
};

TEST_F(Text, ALineIsAsLongAsItsLetters)
{
    for (const char* psz : {"A", "WAVE", "a b", "R&B\n", "\xD6\xD0\xCE\xC4", "mixed \xD6\xD0"}) {
        const std::string text = psz;
        int sum = 0;
        for (std::size_t n = 0; n < text.size(); ++n) {
            const std::size_t length = IsDBCSLeadByte(static_cast<BYTE>(text[n])) ? 2 : 1;
            sum += WidthOf(text.substr(n, length));
            n += length - 1;
        }
        EXPECT_EQ(WidthOf(text), sum) << text;
        EXPECT_GT(sum, 0);
        SIZE size;
        EXPECT_NE(GetTextExtentPoint32A(paper, psz, static_cast<int>(text.size()), &size), 0);
        EXPECT_EQ(size.cx, sum);
        EXPECT_EQ(size.cy, 20); // the cell's height, as asked
    }
    const CString four = KXText::FromUtf8("ñ"); // one letter in four bytes
    ASSERT_EQ(four.GetLength(), 4);
    const int nWidth = WidthOf(four.GetString());
    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(nWidth, WidthOf("ñ"));
    // The first letters behind ASCII, of which no face has any.
    EXPECT_EQ(WidthOf("\xC2\x80"), WidthOf("\xC2\x81"));
    EXPECT_EQ(WidthOf("a\xFFz"), WidthOf("a\xEF\xBF\xBDz")); // no letter
    EXPECT_EQ(WidthOf("\xEF\xBF\xBF"), 10);                  // the sign of the best face
    EXPECT_EQ(WidthOf("\xCC\x81"), 0);                       // an accent over the letter before it
}

TEST_F(Text, StandsWhereTheFlagsSay)
{
    const int nWidth = WidthOf("HH");
    const RECT left = Draw("HH", DT_SINGLELINE);
    const RECT right = Draw("HH", DT_SINGLELINE | DT_RIGHT);
    const RECT centre = Draw("HH", DT_SINGLELINE | DT_CENTER | DT_VCENTER, {20, 10, 180, 50});
    EXPECT_EQ(right.left - left.left, 200 - nWidth);
    EXPECT_EQ(centre.left - left.left, (200 - nWidth) / 2);
    EXPECT_EQ(centre.top - left.top, (60 - 20) / 2);
    EXPECT_EQ(Draw("HH", DT_SINGLELINE | DT_BOTTOM).top - left.top, 40);
    EXPECT_EQ(Draw("HH", DT_VCENTER).top, left.top); // counts with DT_SINGLELINE alone
    EXPECT_GE(Draw("H\nH", 0).bottom - left.top, 20);
    EXPECT_EQ(Draw("H\r\nH", DT_SINGLELINE).bottom, left.bottom);
    const RECT at = Draw("&H", DT_SINGLELINE | DT_NOPREFIX);
    Draw("", 0);
    TextOutA(paper, 50, 30, "&\nH", 3);
    EXPECT_EQ(Ink(), CRect(at.left + 50, at.top + 30, at.right + 50, at.bottom + 30));
    // It is clipped to its rectangle.
    const RECT room{10, 5, 30, 15};
    const RECT ink = Draw("WWWWWWWW", DT_SINGLELINE, room);
    EXPECT_GE(ink.left, room.left);
    EXPECT_GE(ink.top, room.top);
    EXPECT_EQ(ink.right, room.right);
    EXPECT_LE(ink.bottom, room.bottom);
    EXPECT_GT(Draw("WWWWWWWW", DT_SINGLELINE | DT_NOCLIP, room).right, room.right);
}

// However a letter is cut into parts, they are those of the whole.
TEST_F(Text, PartsMakeUpTheWhole)
{
    SetBkMode(paper, TRANSPARENT);
    SetTextColor(paper, RGB(200, 40, 90));
    const auto pixels = [&] {
        std::vector<COLORREF> all;
        for (int n = 0; n < 40 * 24; ++n)
            all.push_back(GetPixel(paper, n % 40, n / 40));
        return all;
    };
    Draw("mg", DT_SINGLELINE);
    const auto whole = pixels();
    for (int x = 1; x < 40; ++x) {
        Draw("mg", DT_SINGLELINE, {0, 0, x, 60});
        SelectClipRgn(paper, test::Scoped<HRGN>(CreateRectRgn(x, 0, 200, 60)));
        RECT rect{0, 0, 200, 60};
        DrawTextA(paper, "mg", 2, &rect, DT_SINGLELINE);
        SelectClipRgn(paper, nullptr);
        EXPECT_EQ(pixels(), whole) << x;
    }
}

TEST_F(Text, MeasuresLinesAndWraps)
{
    RECT rect{5, 6, 7, 8};
    EXPECT_EQ(DrawTextA(paper, "ab\r\nabcd\nc", -1, &rect, DT_CALCRECT), 60);
    EXPECT_EQ(rect, CRect(5, 6, 5 + WidthOf("abcd"), 66));
    EXPECT_EQ(DrawTextA(paper, "a\rb\n\nc\r\n", -1, &rect, DT_CALCRECT), 100);
    rect = {100, 0, 100 + WidthOf("one two"), 1};
    EXPECT_EQ(DrawTextA(paper, "one two three", -1, &rect, DT_CALCRECT | DT_WORDBREAK), 40);
    rect = {0, 0, 1, 1};
    EXPECT_EQ(DrawTextA(paper, "abc", -1, &rect, DT_CALCRECT | DT_WORDBREAK), 60); // a letter a line at least
    const std::string radical = KXText::FromUtf8("⺀ii").GetString(); // the first behind which Chinese breaks
    const int nRoom = WidthOf(radical.substr(0, radical.size() - 1));
    rect = {0, 0, nRoom, 1};
    EXPECT_EQ(DrawTextA(paper, radical.c_str(), -1, &rect, DT_CALCRECT | DT_WORDBREAK), 40);
    EXPECT_LT(rect.right, nRoom);
    rect = {0, 0, WidthOf(" a"), 1};
    EXPECT_EQ(DrawTextA(paper, " ab", -1, &rect, DT_CALCRECT | DT_WORDBREAK), 60); // " ", "a", "b"
    EXPECT_EQ(DrawTextA(paper, "abc", 0, &rect, DT_CALCRECT), 20);
    EXPECT_EQ(rect.right, 0);
    EXPECT_EQ(WidthOf("\ta\x1F\x7F"), WidthOf(" a"));
    // A text of any length is cut in a time that grows with it: one that grew with its square would take
    // minutes.
    const std::clock_t begin = std::clock();
    const std::string text(1 << 20, 'a');
    rect = {0, 0, 1, 1};
    EXPECT_EQ(DrawTextA(paper, text.data(), 1 << 20, &rect, DT_CALCRECT | DT_WORDBREAK), 20 << 20);
    EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 30);
}

TEST_F(Text, PrefixesUnderlineALetter)
{
    RECT plain{};
    RECT marked{};
    DrawTextA(paper, "AB", -1, &plain, DT_CALCRECT | DT_SINGLELINE);
    DrawTextA(paper, "&AB&", -1, &marked, DT_CALCRECT | DT_SINGLELINE);
    EXPECT_EQ(marked, plain);
    EXPECT_EQ(Draw("&AB", DT_SINGLELINE).bottom, Draw("AB", DT_SINGLELINE).bottom + 2); // a pixel below
    EXPECT_EQ(Draw("&&AB", DT_SINGLELINE), Draw("&AB", DT_SINGLELINE | DT_NOPREFIX));
    const RECT narrow{100, 0, 130, 60};
    EXPECT_EQ(Draw("AA &B", DT_WORDBREAK, narrow), Draw("AA\n&B", 0, narrow));
    EXPECT_EQ(WidthOf("a&&b"), WidthOf("a") + WidthOf("b") + 2 * WidthOf("&"));
}

TEST_F(Text, LinesRunUnderAndThroughAllOfIt)
{
    const LONG base = Draw("H", DT_SINGLELINE).bottom;
    LOGFONTA log{};
    GetObjectA(font, sizeof log, &log);
    log.lfUnderline = 1;
    Use(log);
    EXPECT_EQ(Draw("    ", DT_SINGLELINE), (RECT{0, base + 1, WidthOf("    "), base + 2}));
    log.lfUnderline = 0;
    log.lfStrikeOut = 1;
    Use(log);
    EXPECT_EQ(Draw("    ", DT_SINGLELINE), (RECT{0, base - base / 3, WidthOf("    "), base - base / 3 + 1}));
}

TEST_F(Text, ColoursAndBackground)
{
    SetTextColor(paper, test::ColorOf('R'));
    SetBkColor(paper, test::ColorOf('B'));
    Draw("H", DT_SINGLELINE);
    EXPECT_EQ(test::LetterOf(GetPixel(paper, 0, 1)), 'B'); // OPAQUE: the cell is filled
    SetBkMode(paper, TRANSPARENT);
    Draw("H", DT_SINGLELINE);
    EXPECT_EQ(test::LetterOf(GetPixel(paper, 0, 1)), 'W');
    Use("DejaVu Sans", 40);
    Draw("H", DT_SINGLELINE);
    int nRed = 0;
    for (int x = 0; x < 40; ++x)
        nRed += test::LetterOf(GetPixel(paper, x, 20)) == 'R';
    EXPECT_GT(nRed, 2);
}

// A family without a bold or a slanted face has its one face's letters made so.
TEST_F(Text, LettersAreOfTheFaceAndKindAskedFor)
{
    const auto ink = [&](const char* pszFace, int nWeight, bool bItalic = false) {
        Use(pszFace, -40, nWeight, bItalic);
        return CRect(Draw("l", DT_SINGLELINE));
    };
    EXPECT_EQ(ink("DejaVu Sans", FW_NORMAL), CRect(3, 7, 8, 38));
    EXPECT_EQ(ink("DejaVu Sans", FW_BOLD), CRect(3, 7, 11, 38));
    EXPECT_EQ(ink("DejaVu Sans", 0), ink("DejaVu Sans", FW_NORMAL));
    EXPECT_EQ(ink("WenQuanYi Micro Hei", 599), CRect(3, 8, 7, 38));
    EXPECT_EQ(ink("WenQuanYi Micro Hei", 600), CRect(3, 6, 9, 38));
    EXPECT_EQ(ink("WenQuanYi Micro Hei", FW_NORMAL, true), CRect(3, 8, 14, 38));
    EXPECT_EQ(ink("WenQuanYi Micro Hei Mono", FW_NORMAL), CRect(3, 7, 21, 38)); // another face of the file
    Use("DejaVu Sans", -40);
    EXPECT_EQ(CRect(Draw("L", DT_SINGLELINE, {0, 0, 200, 30})), CRect(3, 8, 8, 30)); // the stem alone
    Use("WenQuanYi Micro Hei", 42, 600);
    EXPECT_EQ(WidthOf("W"), 33); // and 31/64
    Use("monospace", -40);       // a name of the system's configuration
    EXPECT_EQ(WidthOf("i"), WidthOf("W"));
    // The cell: 0.928 of the em square above the base line, and 0.236 below.
    const auto sizeAt = [&](int nHeight) {
        Use("DejaVu Sans", nHeight);
        SIZE size;
        GetTextExtentPoint32A(paper, "H", 1, &size);
        return CSize(size);
    };
    EXPECT_EQ(sizeAt(-100), CSize(75, 93 + 24));
    EXPECT_EQ(sizeAt(100), CSize(65, 100));
    EXPECT_EQ(sizeAt(1).cy, 1);
    EXPECT_EQ(sizeAt(0), sizeAt(-12));
    EXPECT_EQ(sizeAt(INT_MAX), sizeAt(1024)); // no larger
    EXPECT_EQ(sizeAt(INT_MIN), sizeAt(-1024));
    EXPECT_EQ(WidthOf(std::string(1 << 20, 'W')), INT_MAX / 4); // no further
}

TEST_F(Text, UnknownFacesAndSizesFallBack)
{
    Use("No Such Face", -16);
    EXPECT_GT(WidthOf("A"), 0);
    EXPECT_EQ(WidthOf("\xD6\xD0"), 16); // a Chinese letter from whatever face has it
    Use("\xCB\xCE\xCC\xE5", 0);         // a Chinese face name; the default size
    EXPECT_GT(WidthOf("A"), 0);
    const int nNormal = WidthOf("W");
    Use("DejaVu Sans", INT_MAX, FW_BOLD);
    EXPECT_GT(WidthOf("W"), nNormal);
    EXPECT_GT(WidthOf("\xFF\xFE\x81"), 0); // no text: signs for it
    for (const int nHeight : {INT_MIN, -1, 1}) {
        Use("DejaVu Sans", nHeight);
        Draw("Some text", DT_SINGLELINE | DT_CENTER);
    }
}

#if !defined(KX_SANITIZED) // under which memory that ended is kept
// At this size the letters of ASCII would take a quarter of a gigabyte.
TEST_F(Text, LettersAreKeptWithinABound)
{
    Use("DejaVu Sans", -1024);
    const long nBefore = test::ResidentKilobytes();
    for (char ch = '!'; ch <= '~'; ++ch)
        EXPECT_GT(WidthOf(std::string(1, ch)), 0);
    EXPECT_LT(test::ResidentKilobytes(), nBefore + (64 << 10));
}
#endif

TEST_F(Text, BadArgumentsDrawNothing)
{
    const test::NoLeak noLeak;
    RECT rect{};
    SIZE size;
    for (const int nDone :
         {DrawTextA(nullptr, "a", 1, &rect, 0), DrawTextA(paper, nullptr, 1, &rect, 0),
          DrawTextA(paper, "a", 1, nullptr, 0), GetTextExtentPoint32A(paper, "a", 1, nullptr),
          GetTextExtentPoint32A(nullptr, "a", 1, &size), GetTextExtentPoint32A(paper, nullptr, 1, &size),
          TextOutA(nullptr, 0, 0, "a", 1), TextOutA(paper, 0, 0, nullptr, 1)})
        EXPECT_EQ(nDone, 0);
    EXPECT_EQ(CreateFontIndirectA(nullptr), nullptr);
    EXPECT_EQ(TextOutA(paper, INT_MAX, INT_MIN, "a", 1), 1);
    RECT far{INT_MIN, INT_MIN, INT_MAX, INT_MAX};
    DrawTextA(paper, "a", 1, &far, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
}

} // namespace
