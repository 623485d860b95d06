#include "tests/support/Picture.h"

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

TEST(Shapes, AreCutToTheClip)
{
    const Sheet sheet(6, 4, 'R', 'B');
    const RECT parts[] = {{0, 0, 2, 2}, {3, 1, 6, 4}};
    const Scoped<HRGN> region(CreateRectsRgn(parts, 2));
    SelectClipRgn(sheet, region);
    Rectangle(sheet, 1, 0, 5, 4);
    SelectClipRgn(sheet, nullptr);
    EXPECT_EQ(sheet.Read(), (Picture{"WRWWWW", "WRWBRW", "WWWBRW", "WWWRRW"}));
}
