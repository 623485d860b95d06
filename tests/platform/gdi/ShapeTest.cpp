#include "tests/support/Picture.h"
#include "tests/support/Test.h"

using namespace test;

namespace {

// A white sheet on which something is drawn; `-` stands for a pen or a brush that paints nothing.
template <class Draw>
Picture Drawn(int cx, int cy, char pen, char brush, int penWidth, Draw draw)
{
    const Scoped<HPEN> hPen(CreatePen(pen == '-' ? PS_NULL : PS_SOLID, penWidth, ColorOf(pen)));
    const Scoped<HBRUSH> hBrush(CreateSolidBrush(ColorOf(brush)));
    const Paper paper(cx, cy, 'W');
    SelectObject(paper, hPen);
    SelectObject(paper, brush == '-' ? GetStockObject(NULL_BRUSH) : HGDIOBJ{hBrush});
    EXPECT_EQ(draw(paper), 1);
    return paper.Read();
}

} // namespace

TEST(FillRect, ExcludesRightAndBottomAndClips)
{
    const Paper paper(4, 3, 'W');
    const Scoped<HBRUSH> red(CreateSolidBrush(ColorOf('R')));
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
        return Drawn(6, 5, pen, brush, width,
                     [=](HDC dc) { return Rectangle(dc, rect.left, rect.top, rect.right, rect.bottom); });
    };
    EXPECT_EQ(drawn('R', 'B', 1, {1, 1, 5, 4}), (Picture{"WWWWWW", "WRRRRW", "WRBBRW", "WRRRRW", "WWWWWW"}));
    EXPECT_EQ(drawn('R', '-', 2, {0, 0, 6, 5}), (Picture{"RRRRRR", "RRRRRR", "RRWWRR", "RRRRRR", "RRRRRR"}));
    EXPECT_EQ(drawn('-', 'B', 1, {1, 1, 5, 4}), (Picture{"WWWWWW", "WBBBWW", "WBBBWW", "WWWWWW", "WWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 9, {1, 1, 4, 3}), (Picture{"WWWWWW", "WRRRWW", "WRRRWW", "WWWWWW", "WWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 1, {2, 2, 3, 3})[2], "WWRWWW");
    EXPECT_EQ(drawn('R', 'B', 1, {-3, -3, 3, 3})[2], "RRRWWW");
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
        return Drawn(10, 8, pen, brush, width, [=](HDC dc) {
            return RoundRect(dc, rect.left, rect.top, rect.right, rect.bottom, cx, cy);
        });
    };
    const RECT all{0, 0, 10, 8};
    EXPECT_EQ(drawn('R', 'B', 1, all, 8, 8),
              (Picture{"WWRRRRRRWW", "WRBBBBBBRW", "RBBBBBBBBR", "RBBBBBBBBR", "RBBBBBBBBR", "RBBBBBBBBR",
                       "WRBBBBBBRW", "WWRRRRRRWW"}));
    EXPECT_EQ(drawn('R', '-', 2, all, 8, 8),
              (Picture{"WWRRRRRRWW", "WRRRRRRRRW", "RRRWWWWRRR", "RRWWWWWWRR", "RRWWWWWWRR", "RRRWWWWRRR",
                       "WRRRRRRRRW", "WWRRRRRRWW"}));
    EXPECT_EQ(drawn('R', 'B', 1, {0, 0, 10, 4}, 8, 2),
              (Picture{"WRRRRRRRRW", "RBBBBBBBBR", "RBBBBBBBBR", "WRRRRRRRRW", "WWWWWWWWWW", "WWWWWWWWWW",
                       "WWWWWWWWWW", "WWWWWWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 1, {0, 0, 10, 4}, 10, 4)[1], "RRBBBBBBRR"); // below two pixels that are white
    EXPECT_EQ(drawn('-', 'B', 1, {0, 0, 5, 5}, 4, 4)[0], "WBBWWWWWWW");   // a pixel narrower and lower
    EXPECT_EQ(drawn('R', 'B', 1, {-4, -4, 6, 4}, 8, 8),
              (Picture{"BBBBBRWWWW", "BBBBBRWWWW", "BBBBRWWWWW", "RRRRWWWWWW", "WWWWWWWWWW", "WWWWWWWWWW",
                       "WWWWWWWWWW", "WWWWWWWWWW"}));
    EXPECT_EQ(drawn('R', 'B', 3, {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, INT_MAX, INT_MIN),
              Picture(8, "BBBBBBBBBB"));
    EXPECT_EQ(RoundRect(nullptr, 0, 0, 1, 1, 1, 1), 0);
}
