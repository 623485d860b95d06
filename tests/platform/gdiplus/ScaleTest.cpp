#include "tests/platform/gdiplus/Sheet.h"

using namespace test;

namespace {

using Scale = DrawingTest;

// A picture drawn over the whole of a transparent sheet.
Row Stretched(int nFromWidth, const Row& from, int nWidth, int nHeight,
              PixelFormat format = PixelFormat32bppARGB)
{
    Sheet source(nFromWidth, from, format);
    Sheet sheet(nWidth, nHeight);
    EXPECT_EQ(sheet.graphics.DrawImage(&source.bitmap, 0, 0, nWidth, nHeight), Ok);
    return sheet.pixels;
}

std::vector<int> StretchedGrays(const std::vector<int>& from, int nWidth)
{
    return Blues(Stretched(static_cast<int>(from.size()), Grays(from), nWidth, 1));
}

} // namespace

TEST_F(Scale, ReducesToTheMeanOfWhatAPixelCovers)
{
    EXPECT_EQ(StretchedGrays({0, 10, 20, 31}, 2), (std::vector{5, 26}));
    EXPECT_EQ(StretchedGrays({0, 90, 30}, 2), (std::vector{30, 50}));
    EXPECT_EQ(StretchedGrays({1, 2, 1, 2, 1, 2}, 1), std::vector{2});
    EXPECT_EQ(StretchedGrays({0, 50, 100, 150, 200}, 2), (std::vector{40, 160}));
    EXPECT_EQ(Stretched(2, {0xFF000000, 0xFF102030, 0xFF204060, 0xFFFFFFFF}, 1, 1), Row{0xFF4C5864});
    EXPECT_EQ(StretchedGrays(std::vector(1000, 7), 7), std::vector(7, 7));
}

TEST_F(Scale, EnlargesLinearlyFromCentreToCentre)
{
    EXPECT_EQ(StretchedGrays({0, 100}, 4), (std::vector{0, 25, 75, 100}));
    EXPECT_EQ(StretchedGrays({30, 60, 90}, 5), (std::vector{30, 42, 60, 78, 90}));
    EXPECT_EQ(StretchedGrays({9}, 3), (std::vector{9, 9, 9}));
    // Each direction by itself: linear across, the mean down.
    EXPECT_EQ(Blues(Stretched(2, Grays({0, 100, 20, 120, 40, 140, 60, 160}), 4, 2)),
              (std::vector{10, 35, 85, 110, 50, 75, 125, 150}));
}

TEST_F(Scale, TakesNoColourFromTransparentPixels)
{
    const Row reducing{0xFFFF0000, 0x0000FF00, 0x40000080, 0xC0008000};
    EXPECT_EQ(Stretched(4, reducing, 2, 1), (Row{0x80FF0000, 0x80006020}));
    EXPECT_EQ(Stretched(2, {0xFFFFFFFF, 0x00000000}, 4, 1), (Row{0xFFFFFFFF, 0xBFFFFFFF, 0x40FFFFFF, 0}));
    EXPECT_EQ(Stretched(2, {0x00FF00FF, 0x00FFFFFF}, 1, 1), Row{0});
    EXPECT_EQ(Stretched(2, {0x01FF0000, 0x00FFFFFF}, 1, 1), Row{0x01FF0000}); // half of 1
    // The high byte of an opaque picture is nothing.
    EXPECT_EQ(Stretched(2, {0x00102030, 0x80304050}, 1, 1, PixelFormat32bppRGB), Row{0xFF203040});
}

TEST_F(Scale, MirrorsForNegativeSizes)
{
    Sheet source(2, Grays({1, 2, 3, 4}));
    Sheet sheet(4, 2);
    sheet.graphics.DrawImage(&source.bitmap, 2, 0, -2, 2);
    sheet.graphics.DrawImage(&source.bitmap, 2, 2, 2, -2);
    EXPECT_EQ(sheet.pixels, Grays({2, 1, 3, 4, 4, 3, 1, 2}));
    Sheet wide(4, 1);
    wide.graphics.DrawImage(&source.bitmap, 4.F, 1.F, -4.F, -1.F, 0.F, 1.F, 2.F, 1.F, UnitPixel);
    EXPECT_EQ(wide.pixels, Grays({4, 4, 3, 3}));
}

TEST_F(Scale, DrawsABlockOfThePictureOnly)
{
    Sheet source(3, Grays({10, 20, 30, 40, 50, 60}));
    const std::tuple<float, float, float, float, std::vector<int>> cases[] = {
        // One for one, also where the block reaches out of the picture.
        {1, 2, 1, 2, {0, 20, 30, 0, 0, 0}},
        {0, 6, -1, 6, {0, 10, 20, 30, 0, 0}},
        // Enlarged, with nothing from beside the block.
        {0, 4, 1, 1, {20, 20, 20, 20, 0, 0}},
        {0, 6, 2, 3, {30, 30, 0, 0, 0, 0}},
        {2, 4, -1, 2, {0, 0, 0, 0, 10, 10}},
        {0, 2, 0.75F, 0.5F, {14, 16, 0, 0, 0, 0}}, // 13.75 and 16.25
        // Reduced.
        {0, 1, 1, 2, {25, 0, 0, 0, 0, 0}},
        {0, 2, 0.5F, 2.5F, {16, 28, 0, 0, 0, 0}},
        {0.25F, 0.9375F, 0, 3, {18, 0, 0, 0, 0, 0}}, // to less than a pixel, of which 0.8 are seen
        // Blocks between pixels cover those whose centres they do.
        {0.6F, 2, 1, 2, {0, 24, 30, 0, 0, 0}},
        {0.5F, 1, 2, 1, {30, 0, 0, 0, 0, 0}},
        {1, 0, 0, 3, {0, 0, 0, 0, 0, 0}},
        {1, 3, 0, 0, {0, 0, 0, 0, 0, 0}}};
    for (const auto& [to, length, from, fromLength, row] : cases) {
        Sheet sheet(6, 1);
        sheet.graphics.DrawImage(&source.bitmap, to, 0.F, length, 1.F, from, 0.F, fromLength, 1.F, UnitPixel);
        Row expected;
        for (const int shade : row)
            expected.push_back(shade ? Gray(shade) : 0);
        EXPECT_EQ(sheet.pixels, expected) << to << ' ' << length << ' ' << from;
    }
}

TEST_F(Scale, CostsWhatIsVisible)
{
    const auto begin = std::chrono::steady_clock::now();
    Sheet source(2, Grays({0, 100}));
    Sheet sheet(3, 3);
    for (const int nFar : {INT_MIN, INT_MAX})
        for (const int nSize : {-1, 1, INT_MAX}) {
            sheet.graphics.DrawImage(&source.bitmap, nFar, nFar);
            sheet.graphics.DrawImage(&source.bitmap, nFar, 0, nSize, 3);
            sheet.graphics.DrawImage(&source.bitmap, 0, nFar, 3, nSize);
        }
    EXPECT_EQ(sheet.pixels, Row(9));
    sheet.graphics.DrawImage(&source.bitmap, INT_MAX, 0, INT_MIN, 3);
    EXPECT_EQ(sheet.pixels, Row(9, Gray(100)));
    sheet.graphics.DrawImage(&source.bitmap, -1'000'000'000, -1'000'000'000, 2'000'000'000, 2'000'000'000);
    EXPECT_EQ(sheet.pixels, Row(9, Gray(50)));
    const float huge = std::numeric_limits<float>::max();
    sheet.graphics.DrawImage(&source.bitmap, -huge, -huge, huge, huge, 0.F, 0.F, 2.F, 1.F, UnitPixel);
    sheet.graphics.DrawImage(&source.bitmap, 0.F, 0.F, 3.F, 3.F, -huge, -huge, huge, huge, UnitPixel);
    sheet.graphics.DrawImage(&source.bitmap, 0.F, 0.F, 1e-30F, 3.F, 0.F, 0.F, huge, huge, UnitPixel);
    EXPECT_EQ(sheet.pixels, Row(9, Gray(50)));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}
