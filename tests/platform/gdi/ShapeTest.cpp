#include "tests/support/Picture.h"

#include <array>
#include <climits>

using test::Paper;
using test::Picture;
using test::Scoped;

namespace {

// A white sheet with a pen and a brush in hand; `-` stands for one that paints nothing.
class Sheet : public Paper
{
public:
    Sheet(int width, int height, char pen, char brush, int penWidth = 1)
        : Paper(width, height, 'W'),
          m_pen(CreatePen(pen == '-' ? PS_NULL : PS_SOLID, penWidth, test::ColorOf(pen))),
          m_brush(CreateSolidBrush(test::ColorOf(brush)))
    {
        m_oldPen = SelectObject(*this, m_pen);
        m_oldBrush = SelectObject(*this, brush == '-' ? GetStockObject(NULL_BRUSH) : m_brush);
    }
    ~Sheet()
    {
        SelectObject(*this, m_oldPen);
        SelectObject(*this, m_oldBrush);
    }

private:
    Scoped<HPEN> m_pen;
    Scoped<HBRUSH> m_brush;
    HGDIOBJ m_oldPen;
    HGDIOBJ m_oldBrush;
};

Picture Line(POINT from, POINT to, int width = 1)
{
    const Sheet sheet(6, 5, 'K', '-', width);
    MoveToEx(sheet, from.x, from.y, nullptr);
    EXPECT_EQ(LineTo(sheet, to.x, to.y), 1);
    return sheet.Read();
}

} // namespace

TEST(FillRect, ExcludesRightAndBottomAndClips)
{
    const Paper paper(4, 3, 'W');
    const Scoped<HBRUSH> red(CreateSolidBrush(test::ColorOf('R')));
    for (const RECT& rect :
         {RECT{1, 1, 3, 2}, RECT{3, 2, INT_MAX, INT_MAX}, RECT{INT_MIN, INT_MIN, 1, 1}, RECT{2, 2, 1, 1},
          RECT{1, 1, 1, 5}, RECT{INT_MAX, 0, INT_MIN, 3}, RECT{9, 9, 12, 12}})
        EXPECT_EQ(FillRect(paper, &rect, red), 1);
    EXPECT_EQ(paper.Read(), (Picture{"RWWW", "WRRW", "WWWR"}));
    const RECT all{0, 0, 4, 3};
    EXPECT_EQ(FillRect(paper, &all, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))), 1);
    EXPECT_EQ(FillRect(paper, &all, nullptr), 0);
    EXPECT_EQ(FillRect(paper, nullptr, red), 0);
    EXPECT_EQ(FillRect(nullptr, &all, red), 0);
    EXPECT_EQ(paper.Read()[1], "WRRW");
}

TEST(Rectangle, IsOutlinedInsideItsSides)
{
    const auto drawn = [](char pen, char brush, int width, RECT rect) {
        const Sheet sheet(6, 5, pen, brush, width);
        EXPECT_EQ(Rectangle(sheet, rect.left, rect.top, rect.right, rect.bottom), 1);
        return sheet.Read();
    };
    EXPECT_EQ(drawn('R', 'B', 1, {1, 1, 5, 4}), (Picture{"WWWWWW", "WRRRRW", "WRBBRW", "WRRRRW", "WWWWWW"}));
    EXPECT_EQ(drawn('R', '-', 1, {1, 1, 5, 4}), (Picture{"WWWWWW", "WRRRRW", "WRWWRW", "WRRRRW", "WWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 2, {0, 0, 6, 5}), (Picture{"RRRRRR", "RRRRRR", "RRBBRR", "RRRRRR", "RRRRRR"}));
    EXPECT_EQ(drawn('-', 'B', 1, {1, 1, 5, 4}), (Picture{"WWWWWW", "WBBBWW", "WBBBWW", "WWWWWW", "WWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 9, {1, 1, 4, 3}), (Picture{"WWWWWW", "WRRRWW", "WRRRWW", "WWWWWW", "WWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 1, {2, 2, 3, 3})[2], "WWRWWW");
    EXPECT_EQ(drawn('R', 'B', 1, {-3, -3, 3, 3}),
              (Picture{"BBRWWW", "BBRWWW", "RRRWWW", "WWWWWW", "WWWWWW"}));
    for (const RECT& empty : {RECT{3, 3, 3, 4}, RECT{INT_MIN, 2, INT_MAX, 2}})
        EXPECT_EQ(drawn('R', 'B', 1, empty), Picture(5, "WWWWWW"));
    EXPECT_EQ(drawn('R', 'B', 1, {5, 4, 1, 1}), drawn('R', 'B', 1, {1, 1, 5, 4}));
    EXPECT_EQ(drawn('-', 'B', 1, {5, 1, 1, 4}), drawn('-', 'B', 1, {1, 1, 5, 4}));
    EXPECT_EQ(drawn('R', 'B', 1, {INT_MAX, 9, INT_MIN, 0})[0], "RRRRRR");
    EXPECT_EQ(drawn('R', 'B', 9, {INT_MIN, INT_MIN, INT_MAX, INT_MAX}), Picture(5, "BBBBBB"));
    EXPECT_EQ(Rectangle(nullptr, 0, 0, 1, 1), 0);
}

TEST(RoundRect, IsOutlinedWithoutGapsOrClumps)
{
    const auto drawn = [](char pen, char brush, int width, RECT rect, int cx, int cy) {
        const Sheet sheet(10, 8, pen, brush, width);
        EXPECT_EQ(RoundRect(sheet, rect.left, rect.top, rect.right, rect.bottom, cx, cy), 1);
        return sheet.Read();
    };
    const RECT all{0, 0, 10, 8};
    EXPECT_EQ(drawn('R', 'B', 1, all, 8, 8),
              (Picture{"WWRRRRRRWW", "WRBBBBBBRW", "RBBBBBBBBR", "RBBBBBBBBR", "RBBBBBBBBR", "RBBBBBBBBR",
                       "WRBBBBBBRW", "WWRRRRRRWW"}));
    EXPECT_EQ(drawn('R', '-', 2, all, 8, 8),
              (Picture{"WWRRRRRRWW", "WRRRRRRRRW", "RRRWWWWRRR", "RRWWWWWWRR", "RRWWWWWWRR", "RRRWWWWRRR",
                       "WRRRRRRRRW", "WWRRRRRRWW"}));
    EXPECT_EQ(drawn('-', 'B', 1, {0, 0, 5, 5}, 4, 4)[0], "WBBWWWWWWW"); // a pixel narrower and lower
    EXPECT_EQ(drawn('R', 'B', 1, {-4, -4, 6, 4}, 8, 8),
              (Picture{"BBBBBRWWWW", "BBBBBRWWWW", "BBBBRWWWWW", "RRRRWWWWWW", "WWWWWWWWWW", "WWWWWWWWWW",
                       "WWWWWWWWWW", "WWWWWWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 3, {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, INT_MAX, INT_MIN),
              Picture(8, "BBBBBBBBBB"));
    EXPECT_EQ(RoundRect(nullptr, 0, 0, 1, 1, 1, 1), 0);
}

TEST(RoundRect, FillsWhatItsRegionHolds)
{
    for (int cx = 1; cx <= 21; cx += 2)
        for (int cy = 2; cy <= 14; cy += 3) {
            const Sheet sheet(21, 13, 'R', 'R', cx % 4);
            const Sheet filled(21, 13, 'R', 'R');
            RoundRect(sheet, 0, 0, 21, 13, cx, cy);
            const Scoped<HRGN> region(CreateRoundRectRgn(21, 0, 0, 13, cx, cy));
            const Scoped<HBRUSH> red(CreateSolidBrush(test::ColorOf('R')));
            FillRgn(filled, region, red);
            EXPECT_EQ(sheet.Read(), filled.Read()) << cx << ' ' << cy;
        }
}

TEST(Shapes, AreCutToTheClip)
{
    const Sheet sheet(6, 4, 'R', 'B');
    const RECT parts[] = {{0, 0, 2, 2}, {3, 1, 6, 4}};
    const Scoped<HRGN> region(CreateRectsRgn(parts, 2));
    SelectClipRgn(sheet, region);
    Rectangle(sheet, 1, 0, 5, 4);
    MoveToEx(sheet, 0, 1, nullptr);
    LineTo(sheet, 6, 1);
    SelectClipRgn(sheet, nullptr);
    EXPECT_EQ(sheet.Read(), (Picture{"WRWWWW", "RRWRRR", "WWWBRW", "WWWRRW"}));
}

TEST(LineTo, ExcludesItsEnd)
{
    EXPECT_EQ(Line({1, 1}, {4, 1}), (Picture{"WWWWWW", "W...WW", "WWWWWW", "WWWWWW", "WWWWWW"}));
    EXPECT_EQ(Line({4, 1}, {1, 1}), (Picture{"WWWWWW", "WW...W", "WWWWWW", "WWWWWW", "WWWWWW"}));
    EXPECT_EQ(Line({2, 4}, {2, 1}), (Picture{"WWWWWW", "WWWWWW", "WW.WWW", "WW.WWW", "WW.WWW"}));
    EXPECT_EQ(Line({0, 0}, {4, 4}), (Picture{".WWWWW", "W.WWWW", "WW.WWW", "WWW.WW", "WWWWWW"}));
    EXPECT_EQ(Line({5, 4}, {-1, 1}), (Picture{"WWWWWW", "WWWWWW", "..WWWW", "WW..WW", "WWWW.."}));
    EXPECT_EQ(Line({1, 0}, {3, 5}), (Picture{"W.WWWW", "W.WWWW", "WW.WWW", "WW.WWW", "WWW.WW"}));
    EXPECT_EQ(Line({3, 3}, {3, 3}), Picture(5, "WWWWWW"));
}

TEST(LineTo, GoesOnFromWhereItEnded)
{
    const Sheet sheet(3, 3, 'R', '-');
    POINT old{7, 7};
    EXPECT_EQ(MoveToEx(sheet, 0, 0, &old), 1);
    EXPECT_EQ(old, (POINT{0, 0}));
    LineTo(sheet, 2, 0);
    LineTo(sheet, 2, 3);
    EXPECT_EQ(sheet.Read(), (Picture{"RRR", "WWR", "WWR"}));
    MoveToEx(sheet, 0, 0, &old);
    EXPECT_EQ(old, (POINT{2, 3}));
    const Sheet none(3, 3, '-', '-');
    EXPECT_EQ(LineTo(none, 3, 3), 1);
    EXPECT_EQ(none.Read(), Picture(3, "WWW"));
    EXPECT_EQ(LineTo(nullptr, 1, 1), 0);
    EXPECT_EQ(MoveToEx(nullptr, 1, 1, &old), 0);
}

TEST(LineTo, HasThePensWidth)
{
    EXPECT_EQ(Line({1, 2}, {4, 2}, 2), (Picture{"WWWWWW", "WWWWWW", "W...WW", "W...WW", "WWWWWW"}));
    EXPECT_EQ(Line({2, 0}, {2, 4}, 3), (Picture{"W...WW", "W...WW", "W...WW", "W...WW", "WWWWWW"}));
    EXPECT_EQ(Line({0, 0}, {5, 5}, 2),
              (Picture{"..WWWW", "...WWW", "W...WW", "WW...W", "WWW..W"})); // 2 times the root of 2
    EXPECT_EQ(Line({3, 3}, {4, 3}, INT_MAX), (Picture(5, "WWW.WW")));
}

// From far outside a line is the same as nearby, and takes no longer.
TEST(LineTo, OfAnyLengthIsCutToTheSurface)
{
    EXPECT_EQ(Line({-600'000'000, -600'000'001}, {600'000'000, 599'999'999}), Line({0, -1}, {6, 5}));
    EXPECT_EQ(Line({INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}), Line({-9, -9}, {9, 9}));
    EXPECT_EQ(Line({INT_MAX, 2}, {INT_MIN, 2}), Line({9, 2}, {-9, 2}));
    const std::array<int, 6> numbers{INT_MIN, -1, 0, 3, 1'999'999'999, INT_MAX};
    for (const int a : numbers)
        for (const int b : numbers)
            for (const int c : numbers)
                for (const int width : {1, 7, INT_MAX})
                    Line({a, b}, {c, a}, width);
}
