#include "tests/platform/gdiplus/Sheet.h"

using namespace test;
using namespace Gdiplus::DllExports;

namespace {

class Gradient : public DrawingTest
{
};

// A sheet of one row, or of one column, under a line from a gray to another.
std::vector<int> Line(int nFirst, int nSecond, int nFrom, int nTo, int nCount, bool bDown,
                      WrapMode mode = WrapModeTile)
{
    const Point first = bDown ? Point{3, nFirst} : Point{nFirst, 3};
    const Point second = bDown ? Point{3, nSecond} : Point{nSecond, 3};
    GpLineGradient* brush = nullptr;
    EXPECT_EQ(GdipCreateLineBrushI(&first, &second, Gray(nFrom), Gray(nTo), mode, &brush), Ok);
    Sheet sheet(bDown ? 1 : nCount, bDown ? nCount : 1);
    auto* const any = reinterpret_cast<GpBrush*>(brush);
    EXPECT_EQ(GdipFillRectangleI(sheet.graphics.Native(), any, 0, 0, nCount, nCount), Ok);
    GdipDeleteBrush(any);
    return Blues(sheet.pixels);
}

// A path of these rectangles, filled out over a transparent sheet.
struct Figure
{
    int x, y, width, height;
};
Row Path(int nWidth, int nHeight, const std::vector<Figure>& rects, ARGB center,
         const std::vector<ARGB>& surround, FillMode mode = FillModeAlternate, const Point* pCenter = nullptr)
{
    GraphicsPath path(mode);
    for (const Figure& rect : rects)
        EXPECT_EQ(path.AddRectangle(rect.x, rect.y, rect.width, rect.height), Ok);
    PathGradientBrush brush(&path);
    EXPECT_EQ(brush.SetCenterColor(Color(center)), Ok);
    if (pCenter) {
        EXPECT_EQ(brush.SetCenterPoint(*pCenter), Ok);
    }
    std::vector<Color> colors(surround.begin(), surround.end());
    int nCount = static_cast<int>(colors.size());
    EXPECT_EQ(brush.SetSurroundColors(colors.data(), &nCount), Ok);
    Sheet sheet(nWidth, nHeight);
    EXPECT_EQ(sheet.graphics.FillRectangle(&brush, 0, 0, nWidth, nHeight), Ok);
    return sheet.pixels;
}

} // namespace

TEST_F(Gradient, GoesAlongItsLineAndOverAgain)
{
    for (const bool bDown : {false, true}) {
        // Both ends of the line have their own colours, and nothing of a seam is in it.
        EXPECT_EQ(Line(0, 4, 0, 100, 5, bDown), (std::vector{0, 25, 50, 75, 100}));
        EXPECT_EQ(Line(4, 8, 0, 100, 14, bDown),
                  (std::vector{0, 25, 50, 75, 0, 25, 50, 75, 100, 25, 50, 75, 0, 25}));
        EXPECT_EQ(Line(8, 4, 0, 100, 14, bDown),
                  (std::vector{0, 75, 50, 25, 100, 75, 50, 25, 0, 75, 50, 25, 0, 75}));
        EXPECT_EQ(Line(0, 4, 0, 100, 10, bDown, WrapModeTileFlipX),
                  (std::vector{0, 25, 50, 75, 100, 75, 50, 25, 0, 25}));
        EXPECT_EQ(Line(6, 2, 0, 100, 10, bDown, WrapModeTileFlipXY),
                  (std::vector{50, 75, 100, 75, 50, 25, 0, 25, 50, 75}));
        EXPECT_EQ(Line(0, 2, 0, 100, 6, bDown, WrapModeTileFlipY), (std::vector{0, 50, 100, 50, 0, 50}));
    }
}

TEST_F(Gradient, RoundsToTheNearest)
{
    EXPECT_EQ(Line(0, 3, 10, 20, 4, false), (std::vector{10, 13, 17, 20}));
    EXPECT_EQ(Line(0, 2, 0, 255, 3, false), (std::vector{0, 128, 255}));
    EXPECT_EQ(Line(0, 2, 255, 0, 3, true), (std::vector{255, 128, 0}));
    // Against whole numbers, over a length that no fraction of two is.
    const int nLength = 1001;
    std::vector<int> expected;
    for (int x = 0; x <= nLength; ++x)
        expected.push_back((2 * (250 * nLength - 243 * x) + nLength) / (2 * nLength));
    EXPECT_EQ(Line(0, nLength, 250, 7, nLength + 1, false), expected);
}

// As a panel is painted: from the pixel before it to its last one.
TEST_F(Gradient, HasNoSeamInAPanel)
{
    EXPECT_EQ(Line(-1, 9, 0, 200, 10, true), (std::vector{20, 40, 60, 80, 100, 120, 140, 160, 180, 200}));
    // Mirrored about its middle, in two halves.
    const LinearGradientBrush left({-1, 0}, {5, 0}, Color(Gray(0)), Color(Gray(120)));
    const LinearGradientBrush right({4, 0}, {11, 0}, Color(Gray(120)), Color(Gray(15)));
    Sheet sheet(11, 1);
    sheet.graphics.FillRectangle(&left, 0, 0, 5, 1);
    sheet.graphics.FillRectangle(&right, 5, 0, 6, 1);
    EXPECT_EQ(Blues(sheet.pixels), (std::vector{20, 40, 60, 80, 100, 105, 90, 75, 60, 45, 30}));
}

TEST_F(Gradient, GoesStraightAcrossAnObliqueLine)
{
    const LinearGradientBrush brush({1, 0}, {3, 2}, Color(0x00, 0, 80, 255), Color(0xC8, 200, 0, 255));
    Sheet sheet(5, 3);
    sheet.graphics.FillRectangle(&brush, 0, 0, 5, 3);
    // A quarter of the way for each step right or down, from 1, 0; 3, 2 and 5, 0 lie one whole way off.
    const std::vector<ARGB> quarters{0x000050FF, 0x32323CFF, 0x646428FF, 0x969614FF, 0xC8C800FF};
    const std::vector<int> steps{3, 0, 1, 2, 3, 0, 1, 2, 3, 4, 1, 2, 3, 4, 1};
    Row expected;
    for (const int n : steps)
        expected.push_back(n == 0 ? 0 : quarters[static_cast<std::size_t>(n)]);
    EXPECT_EQ(sheet.pixels, expected);

    // Periods of less than a pixel's step, and lines as long as there are.
    Sheet far(3, 1);
    const LinearGradientBrush longest({INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}, Color(Gray(0)),
                                      Color(Gray(200)));
    EXPECT_EQ(far.graphics.FillRectangle(&longest, INT_MIN, INT_MIN, INT_MAX, INT_MAX), Ok);
    EXPECT_EQ(far.pixels, Row(3));
    EXPECT_EQ(far.graphics.FillRectangle(&longest, -1, -1, INT_MAX, INT_MAX), Ok);
    EXPECT_EQ(far.pixels, Row(3, Gray(100)));
    const LinearGradientBrush beyond({INT_MAX - 1, INT_MIN}, {INT_MAX, INT_MIN}, Color(Gray(9)),
                                     Color(Gray(9)));
    EXPECT_EQ(far.graphics.FillRectangle(&beyond, 0, 0, 3, 1), Ok);
    EXPECT_EQ(far.pixels, Row(3, Gray(9)));
}

TEST_F(Gradient, GoesFromAPathsCentreToItsEdge)
{
    // Each pixel by its centre's share of the way: a quarter, three quarters.
    const ARGB a = Gray(75), b = Gray(25), none = 0;
    EXPECT_EQ(Path(6, 5, {{1, 1, 4, 4}}, Gray(100), {Gray(0)}), (Row{none, none, none, none, none, none, //
                                                                     none, b,    b,    b,    b,    none, //
                                                                     none, b,    a,    a,    b,    none, //
                                                                     none, b,    a,    a,    b,    none, //
                                                                     none, b,    b,    b,    b,    none}));
    EXPECT_EQ(Blues(Path(3, 1, {{0, 0, 3, 1}}, Gray(100), {Gray(0)})), (std::vector{33, 100, 33}));
    EXPECT_EQ(Blues(Path(6, 1, {{0, 0, 6, 2}}, Gray(100), {Gray(0)})), (std::vector{17, 50, 50, 50, 50, 17}));
    EXPECT_EQ(Path(1, 1, {{0, 0, 1, 1}}, 0x80123456, {Gray(0)}), Row{0x80123456});
    EXPECT_EQ(Path(2, 2, {{-2, -3, 0, 5}, {0, 0, 2, -1}, {0, 0, 2, 2}}, 0xFF0000FE, {0x00FF0000}),
              Row(4, 0x80800080 - 1));
}

// From a corner, from the middle of a side, and from outside of the path.
TEST_F(Gradient, GoesFromWhereverItsCentreIsMoved)
{
    const auto from = [](Point center, int nWidth, int nHeight) {
        return Blues(Path(nWidth, nHeight, {{0, 0, nWidth, nHeight}}, Gray(80), {Gray(0)}, FillModeAlternate,
                          &center));
    };
    EXPECT_EQ(from({0, 0}, 2, 2), (std::vector{60, 20, 20, 20}));
    EXPECT_EQ(from({2, 0}, 4, 2), (std::vector{20, 60, 60, 20, 20, 20, 20, 20}));
    EXPECT_EQ(from({2, 2}, 4, 2), (std::vector{20, 20, 20, 20, 20, 60, 60, 20}));
    EXPECT_EQ(from({4, 1}, 4, 2), (std::vector{10, 30, 40, 40, 10, 30, 40, 40}));
    EXPECT_EQ(from({0, -2}, 2, 2), (std::vector{30, 20, 10, 10}));
    for (const int n : {INT_MIN, INT_MAX})
        EXPECT_EQ(from({n, n}, 2, 1).size(), 2u);
    EXPECT_EQ(GdipSetPathGradientCenterPointI(nullptr, nullptr), InvalidParameter);
}

TEST_F(Gradient, GoesAlongTheEdgeBetweenItsPointsColours)
{
    EXPECT_EQ(Blues(Path(2, 2, {{0, 0, 2, 2}}, Gray(100), {Gray(0), Gray(200), Gray(100), Gray(50)})),
              (std::vector{50, 150, 75, 100}));
    EXPECT_EQ(Blues(Path(2, 2, {{0, 0, 2, 2}}, Gray(100), {Gray(0), Gray(200)})),
              (std::vector{50, 150, 150, 150}));
    // At 0.5, -1.5 of a square of 4: three quarters out, to two thirds of the upper side.
    EXPECT_EQ(Blues(Path(4, 1, {{0, 0, 4, 4}}, Gray(100), {Gray(0), Gray(200), Gray(100), Gray(50)})),
              (std::vector{25, 75, 125, 175}));
    EXPECT_EQ(Blues(Path(1, 4, {{0, 0, 4, 4}}, Gray(100), {Gray(0), Gray(200), Gray(0), Gray(120)})),
              (std::vector{25, 55, 85, 115}));
}

TEST_F(Gradient, FillsAPathOfSeveralFiguresByItsMode)
{
    const std::vector<Figure> ring{{0, 0, 5, 5}, {1, 1, 3, 3}};
    const Row around = Path(5, 2, ring, Gray(100), {Gray(0)});
    EXPECT_EQ(around, (Row{Gray(20), Gray(20), Gray(20), Gray(20), Gray(20), //
                           Gray(20), 0, 0, 0, Gray(20)}));
    EXPECT_EQ(Blues(Path(5, 3, ring, Gray(100), {Gray(0)}, FillModeWinding)),
              (std::vector{20, 20, 20, 20, 20, 20, 33, 33, 33, 20, 20, 33, 100, 33, 20}));
    // Figures to either side of the centre, each lit from there.
    EXPECT_EQ(Blues(Path(6, 1, {{0, 0, 2, 1}, {4, 0, 2, 1}}, Gray(90), {Gray(0)})),
              (std::vector{15, 45, 0, 0, 45, 15}));
}

TEST_F(Gradient, RefusesWhatIsNone)
{
    const Point at{2, 2};
    const Point other{3, 2};
    auto* line = reinterpret_cast<GpLineGradient*>(8);
    EXPECT_EQ(GdipCreateLineBrushI(&at, &at, 0, 0, WrapModeTile, &line), OutOfMemory);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(GdipCreateLineBrushI(&at, &other, 0, 0, WrapModeClamp, &line), InvalidParameter);
    EXPECT_EQ(GdipCreateLineBrushI(&at, nullptr, 0, 0, WrapModeTile, &line), InvalidParameter);
    EXPECT_EQ(GdipCreateLineBrushI(&at, &other, 0, 0, WrapModeTile, nullptr), InvalidParameter);

    GraphicsPath path;
    path.AddRectangle(0, 0, 0, 5);
    EXPECT_EQ(PathGradientBrush(&path).GetLastStatus(), OutOfMemory);
    EXPECT_EQ(PathGradientBrush(nullptr).GetLastStatus(), InvalidParameter);
    path.AddRectangle(INT_MAX - 1, INT_MAX - 1, INT_MAX, INT_MAX);
    PathGradientBrush brush(&path);
    const Color colors[5];
    for (int nCount : {0, -1, 5, INT_MAX})
        EXPECT_EQ(brush.SetSurroundColors(colors, &nCount), InvalidParameter);
    EXPECT_EQ(brush.SetSurroundColors(colors, nullptr), InvalidParameter);
    Sheet sheet(1, 1);
    EXPECT_EQ(sheet.graphics.FillRectangle(&brush, 0, 0, INT_MAX, INT_MAX), Ok);
    EXPECT_EQ(sheet.pixels, Row{0});
}
