#include "tests/support/Picture.h"
#include "tests/support/Test.h"

using namespace test;

namespace {

using Region = LeakTest;
using Rgn = Scoped<HRGN>;

Rgn FromRects(const std::vector<RECT>& rects)
{
    return Rgn(CreateRectsRgn(rects.data(), static_cast<int>(rects.size())));
}

bool IsSame(HRGN a, HRGN b)
{
    const Rgn difference(CreateRectRgn(0, 0, 0, 0));
    return CombineRgn(difference, a, b, RGN_XOR) == NULLREGION;
}

// Its box, and what GetRgnBox says of it.
RECT BoxOf(HRGN region, int kind)
{
    RECT box{7, 7, 7, 7};
    EXPECT_EQ(GetRgnBox(region, &box), kind);
    return box;
}

Picture Show(HRGN region, int width, int height)
{
    const Paper paper(width, height);
    FillRgn(paper, region, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    return paper.Read();
}

} // namespace

TEST_F(Region, TakesItsCornersInAnyOrder)
{
    const Rgn region(CreateRectRgn(5, 6, 2, 1));
    EXPECT_EQ(BoxOf(region, SIMPLEREGION), (RECT{2, 1, 5, 6}));
    EXPECT_TRUE(PtInRegion(region, 2, 1));
    EXPECT_TRUE(PtInRegion(region, 4, 5));
    EXPECT_FALSE(PtInRegion(region, 5, 5)); // right and bottom are outside
    EXPECT_FALSE(PtInRegion(region, 4, 6));
    const Rgn empty(CreateRectRgn(3, 3, 3, 9));
    EXPECT_EQ(BoxOf(empty, NULLREGION), RECT{});
    EXPECT_FALSE(PtInRegion(empty, 3, 3));
}

TEST_F(Region, OfRectanglesIsTheirUnion)
{
    EXPECT_EQ(Show(FromRects({{3, 1, 5, 3}, {0, 0, 2, 2}, {1, 1, 4, 2}, {4, 4, 2, 2}, {0, 0, 2, 2}}), 5, 3),
              (Picture{"WW...", "WWWWW", "...WW"}));
    EXPECT_EQ(Show(FromRects({{0, 0, 2, 1}, {0, 1, 3, 2}, {1, 2, 3, 3}, {1, 4, 3, 5}}), 3, 5),
              (Picture{"WW.", "WWW", ".WW", "...", ".WW"}));
    EXPECT_EQ(Show(FromRects({{0, 0, 1, 1}, {1, 1, 2, 2}, {1, 2, 2, 3}, {3, 2, 4, 3}, {5, 2, 6, 3}}), 6, 3),
              (Picture{"W.....", ".W....", ".W.W.W"}));
    EXPECT_EQ(Show(FromRects({{0, 0, 1, 1}, {1, 0, 2, 2}}), 2, 2), (Picture{"WW", ".W"}));
    EXPECT_EQ(BoxOf(FromRects({{0, 0, 2, 1}, {1, 0, 3, 1}}), SIMPLEREGION), (RECT{0, 0, 3, 1}));
    EXPECT_EQ(BoxOf(FromRects({{0, 0, 1, 1}, {1, 0, 2, 1}, {0, 1, 2, 2}}), SIMPLEREGION), (RECT{0, 0, 2, 2}));
    EXPECT_EQ(BoxOf(FromRects({}), NULLREGION), RECT{});
    std::uint64_t mask[] = {0b1011, 1, 0b1011, 1, std::uint64_t{1} << 63, 1, 0, 0};
    const std::string gap(60, '.'), row = "WW.W" + gap + 'W';
    EXPECT_EQ(Show(Rgn(CreateMaskRgn(mask, 65, 4)), 66, 4),
              (Picture{row + '.', row + '.', std::string(63, '.') + "WW.", std::string(66, '.')}));
    std::vector<std::uint64_t> many; // four runs a row, no row like the one above
    for (int y = 0; y < 10'000; ++y)
        many.insert(many.end(), {std::uint64_t{1} << 63 | 1u << 2 * (y % 2), std::uint64_t{1} << 63 | 2});
    const Rgn runs(CreateMaskRgn(many.data(), 128, 10'000));
    EXPECT_TRUE(PtInRegion(runs, 127, 9'999));
    EXPECT_FALSE(PtInRegion(runs, 0, 9'999));
    EXPECT_EQ(BoxOf(Rgn(CreateMaskRgn(nullptr, 0, 9)), NULLREGION), RECT{});
    EXPECT_EQ(BoxOf(Rgn(CreateMaskRgn(nullptr, 9, 0)), NULLREGION), RECT{});
    const RECT rect{};
    for (const HRGN none :
         {CreateMaskRgn(mask, -1, 1), CreateMaskRgn(mask, 1, -1), CreateMaskRgn(nullptr, 1, 1),
          CreateRectsRgn(&rect, -1), CreateRectsRgn(nullptr, 1)})
        EXPECT_EQ(none, nullptr);
}

TEST_F(Region, IsTheSameInWhateverOrderItsManyRectanglesCome)
{
    std::vector<RECT> runs;
    for (int y = 0; y < 300; ++y)
        for (int x = y % 2; x < 300; x += 2)
            runs.push_back({x, y, x + 1, y + 1});
    const Rgn sorted = FromRects(runs);
    EXPECT_EQ(Show(sorted, 6, 2), (Picture{"W.W.W.", ".W.W.W"}));
    std::reverse(runs.begin(), runs.end());
    EXPECT_TRUE(IsSame(FromRects(runs), sorted));
    std::shuffle(runs.begin(), runs.end(), std::mt19937(7));
    EXPECT_TRUE(IsSame(FromRects(runs), sorted));
}

TEST_F(Region, CombinesByMode)
{
    const Rgn a(CreateRectRgn(0, 0, 3, 2));
    const Rgn b(CreateRectRgn(2, 1, 4, 3));
    const Rgn to(CreateRectRgn(0, 0, 0, 0));
    const auto combined = [&](int mode) {
        EXPECT_NE(CombineRgn(to, a, b, mode), RGN_ERROR);
        return Show(to, 4, 3);
    };
    EXPECT_EQ(combined(RGN_AND), (Picture{"....", "..W.", "...."}));
    EXPECT_EQ(combined(RGN_OR), (Picture{"WWW.", "WWWW", "..WW"}));
    EXPECT_EQ(combined(RGN_XOR), (Picture{"WWW.", "WW.W", "..WW"}));
    EXPECT_EQ(combined(RGN_DIFF), (Picture{"WWW.", "WW..", "...."}));
    EXPECT_EQ(combined(RGN_COPY), (Picture{"WWW.", "WWW.", "...."}));
    EXPECT_EQ(CombineRgn(to, a, nullptr, RGN_COPY), SIMPLEREGION);
    EXPECT_EQ(CombineRgn(to, to, b, RGN_XOR), COMPLEXREGION);
    EXPECT_EQ(CombineRgn(to, to, to, RGN_DIFF), NULLREGION);
    for (const int kind :
         {CombineRgn(to, a, b, 0), CombineRgn(to, a, b, 6), CombineRgn(to, a, nullptr, RGN_OR),
          CombineRgn(to, nullptr, a, RGN_OR), CombineRgn(nullptr, a, b, RGN_OR)})
        EXPECT_EQ(kind, RGN_ERROR);
    EXPECT_EQ(BoxOf(to, NULLREGION), RECT{});
}

TEST_F(Region, MovesWithinTheRangeOfCoordinates)
{
    const Rgn region(CreateRectRgn(0, 0, 2, 2));
    EXPECT_EQ(OffsetRgn(region, 3, -1), SIMPLEREGION);
    EXPECT_EQ(BoxOf(region, SIMPLEREGION), (RECT{3, -1, 5, 1}));
    const Rgn widest(CreateRectRgn(INT_MIN, INT_MIN, INT_MAX, INT_MAX));
    for (const int n : {INT_MAX, INT_MIN, INT_MIN, 5, INT_MAX}) {
        OffsetRgn(widest, n, n);
        RECT box;
        GetRgnBox(widest, &box);
        EXPECT_LE(box.left, box.right);
        Show(widest, 2, 2);
    }
    for (const auto& [x, y, box] : {std::tuple{5, INT_MAX - 1, RECT{4, INT_MAX - 2, 8, INT_MAX}},
                                    {INT_MAX - 1, 5, RECT{INT_MAX - 2, 4, INT_MAX, 8}}}) {
        const Rgn edge(CreateRectRgn(-1, -1, 3, 3));
        OffsetRgn(edge, x, y);
        EXPECT_EQ(BoxOf(edge, SIMPLEREGION), box);
    }
    const Rgn right(CreateRectRgn(INT_MAX - 4, 0, INT_MAX, 4));
    OffsetRgn(right, 2, 0);
    EXPECT_EQ(BoxOf(right, SIMPLEREGION), (RECT{INT_MAX - 2, 0, INT_MAX, 4}));
    RECT box;
    for (const int kind : {OffsetRgn(nullptr, 1, 1), GetRgnBox(nullptr, &box), GetRgnBox(region, nullptr)})
        EXPECT_EQ(kind, RGN_ERROR);
}

TEST_F(Region, RoundsItsCorners)
{
    EXPECT_EQ(Show(Rgn(CreateRoundRectRgn(0, 0, 4, 4, 4, 4)), 4, 4),
              (Picture{".WW.", "WWWW", "WWWW", ".WW."}));
    EXPECT_EQ(Show(Rgn(CreateRoundRectRgn(7, 5, 0, 0, 5, -5)), 7, 5),
              (Picture{".WWWWW.", "WWWWWWW", "WWWWWWW", "WWWWWWW", ".WWWWW."}));
    EXPECT_EQ(Show(Rgn(CreateRoundRectRgn(0, 0, 10, 6, 8, 6)), 10, 6),
              (Picture{"..WWWWWW..", ".WWWWWWWW.", "WWWWWWWWWW", "WWWWWWWWWW", ".WWWWWWWW.", "..WWWWWW.."}));
    EXPECT_TRUE(IsSame(Rgn(CreateRoundRectRgn(1, 1, 9, 9, 0, 5)), Rgn(CreateRectRgn(1, 1, 9, 9))));
    EXPECT_EQ(BoxOf(Rgn(CreateRoundRectRgn(1, 1, 1, 9, 3, 3)), NULLREGION), RECT{});
    const Rgn widest(CreateRoundRectRgn(INT_MIN, INT_MIN, INT_MAX, INT_MAX, INT_MAX, INT_MIN));
    EXPECT_FALSE(PtInRegion(widest, INT_MIN, INT_MIN));
    EXPECT_TRUE(PtInRegion(widest, 0, INT_MIN));
}

TEST_F(Region, IsFilledWithinTheClip)
{
    const Paper paper(5, 4);
    const Rgn clip = FromRects({{0, 0, 2, 4}, {3, 1, 5, 3}});
    SelectClipRgn(paper, clip);
    const Rgn shape = FromRects({{1, 0, 4, 1}, {0, 2, 9, 9}});
    EXPECT_EQ(FillRgn(paper, shape, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))), 1);
    EXPECT_EQ(FillRgn(paper, shape, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))), 1);
    EXPECT_EQ(FillRgn(paper, shape, nullptr), 0);
    EXPECT_EQ(FillRgn(paper, nullptr, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))), 0);
    EXPECT_EQ(FillRgn(nullptr, shape, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))), 0);
    SelectClipRgn(paper, nullptr);
    EXPECT_EQ(paper.Read(), (Picture{".W...", ".....", "WW.WW", "WW..."}));
}
