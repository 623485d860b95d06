#include "tests/platform/gdiplus/Sheet.h"

using namespace test;

namespace {

using Gradient = DrawingTest;

// A sheet of one row, or of one column, under a line from a gray to another.
std::vector<int> Line(int nFirst, int nSecond, int nFrom, int nTo, int nCount, bool bDown)
{
    const Point first = bDown ? Point{3, nFirst} : Point{nFirst, 3};
    const Point second = bDown ? Point{3, nSecond} : Point{nSecond, 3};
    const LinearGradientBrush brush(first, second, Color(Gray(nFrom)), Color(Gray(nTo)));
    Sheet sheet(bDown ? 1 : nCount, bDown ? nCount : 1);
    EXPECT_EQ(sheet.graphics.FillRectangle(&brush, 0, 0, nCount, nCount), Ok);
    return Blues(sheet.pixels);
}

// A path of a rectangle, filled out over a transparent sheet.
Row Path(int nWidth, int nHeight, const Rect& rect, ARGB center, ARGB edge, const Point* pCenter = nullptr)
{
    GraphicsPath path;
    EXPECT_EQ(path.AddRectangle(rect.X, rect.Y, rect.Width, rect.Height), Ok);
    PathGradientBrush brush(&path);
    EXPECT_EQ(brush.SetCenterColor(Color(center)), Ok);
    if (pCenter) {
        EXPECT_EQ(brush.SetCenterPoint(*pCenter), Ok);
    }
    const Color color(edge);
    int nCount = 1;
    EXPECT_EQ(brush.SetSurroundColors(&color, &nCount), Ok);
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
        EXPECT_EQ(Line(-4, 0, 0, 100, 3, bDown), (std::vector{100, 25, 50}));
        EXPECT_EQ(Line(4, 0, 0, 100, 3, bDown), (std::vector{100, 75, 50}));
        EXPECT_EQ(Line(8, 4, 0, 100, 14, bDown),
                  (std::vector{0, 75, 50, 25, 100, 75, 50, 25, 0, 75, 50, 25, 0, 75}));
    }
}

TEST_F(Gradient, RoundsToTheNearest)
{
    EXPECT_EQ(Line(0, 3, 10, 20, 4, false), (std::vector{10, 13, 17, 20}));
    EXPECT_EQ(Line(0, 2, 0, 255, 3, false), (std::vector{0, 128, 255}));
    EXPECT_EQ(Line(0, 2, 255, 0, 3, true), (std::vector{255, 128, 0}));
    const LinearGradientBrush brush(Point{0, 0}, Point{2, 0}, Color(0xFFC80A32), Color(0xFF006E96));
    Sheet sheet(3, 1);
    EXPECT_EQ(sheet.graphics.FillRectangle(&brush, 0, 0, 3, 1), Ok);
    EXPECT_EQ(sheet.pixels, (Row{0xFFC80A32, 0xFF643C64, 0xFF006E96})); // each channel its own way
    // 254 parts of red and one of white.
    Sheet white(1, Row{0x00FFFFFF}, PixelFormat32bppRGB);
    const LinearGradientBrush nearly(Point{0, 0}, Point{1, 0}, Color(0xFEFF0000), Color(0xFFFF0000));
    EXPECT_EQ(white.graphics.FillRectangle(&nearly, 0, 0, 1, 1), Ok);
    EXPECT_EQ(white.pixels, Row{0x00FF0101});
    // Against whole numbers, over a length that no fraction of two is.
    const int nLength = 1001;
    std::vector<int> expected;
    for (int x = 0; x <= nLength; ++x)
        expected.push_back((2 * (250 * nLength - 243 * x) + nLength) / (2 * nLength));
    EXPECT_EQ(Line(0, nLength, 250, 7, nLength + 1, false), expected);
}

// Lines as long as there are, and the shortest.
TEST_F(Gradient, GoesAsFarAsCoordinatesDo)
{
    Sheet far(3, 1);
    const LinearGradientBrush longest({INT_MIN, 0}, {INT_MAX, 0}, Color(Gray(0)), Color(Gray(200)));
    EXPECT_EQ(far.graphics.FillRectangle(&longest, INT_MIN, INT_MIN, INT_MAX, INT_MAX), Ok);
    EXPECT_EQ(far.pixels, Row(3));
    EXPECT_EQ(far.graphics.FillRectangle(&longest, -1, -1, INT_MAX, INT_MAX), Ok);
    EXPECT_EQ(far.pixels, Row(3, Gray(100)));
    const LinearGradientBrush end({INT_MAX - 1, INT_MIN}, {INT_MAX, INT_MIN}, Color(Gray(9)), Color(Gray(9)));
    EXPECT_EQ(far.graphics.FillRectangle(&end, 0, 0, 3, 1), Ok);
    EXPECT_EQ(far.pixels, Row(3, Gray(9)));
}

TEST_F(Gradient, GoesFromAPathsCentreWhereverThatIsToItsEdge)
{
    // Each pixel by its centre's share of the way: a quarter, three quarters.
    const ARGB a = Gray(75), b = Gray(25), none = 0;
    EXPECT_EQ(Path(6, 5, {1, 1, 4, 4}, Gray(100), Gray(0)), (Row{none, none, none, none, none, none, //
                                                                 none, b,    b,    b,    b,    none, //
                                                                 none, b,    a,    a,    b,    none, //
                                                                 none, b,    a,    a,    b,    none, //
                                                                 none, b,    b,    b,    b,    none}));
    EXPECT_EQ(Blues(Path(3, 1, {0, 0, 3, 1}, Gray(100), Gray(0))), (std::vector{33, 100, 33}));
    EXPECT_EQ(Blues(Path(6, 1, {0, 0, 6, 2}, Gray(100), Gray(0))), (std::vector{17, 50, 50, 50, 50, 17}));
    EXPECT_EQ(Blues(Path(6, 1, {-2, 0, 8, 1}, Gray(80), Gray(0))), (std::vector{50, 70, 70, 50, 30, 10}));
    EXPECT_EQ(Path(1, 1, {0, 0, 1, 1}, 0x80123456, Gray(0)), Row{0x80123456});
    EXPECT_EQ(Path(2, 2, {0, 0, 2, 2}, 0xFF0000FE, 0x00FF0000), Row(4, 0x80800080 - 1));
    // From a corner, from the middle of a side, and from outside of the path.
    const auto from = [](Point center, int nWidth, int nHeight) {
        return Blues(Path(nWidth, nHeight, {0, 0, nWidth, nHeight}, Gray(80), Gray(0), &center));
    };
    EXPECT_EQ(from({0, 0}, 2, 2), (std::vector{60, 20, 20, 20}));
    EXPECT_EQ(from({2, 0}, 4, 2), (std::vector{20, 60, 60, 20, 20, 20, 20, 20}));
    EXPECT_EQ(from({2, 2}, 4, 2), (std::vector{20, 20, 20, 20, 20, 60, 60, 20}));
    EXPECT_EQ(from({4, 1}, 4, 2), (std::vector{10, 30, 40, 40, 10, 30, 40, 40}));
    EXPECT_EQ(from({0, -2}, 2, 2), (std::vector{30, 20, 10, 10}));
    for (const int n : {INT_MIN, INT_MAX})
        EXPECT_EQ(from({n, n}, 2, 1).size(), 2u);
}

TEST_F(Gradient, RefusesWhatIsNone)
{
    const Point at{2, 2}, other{3, 2}, oblique{3, 3};
    auto* line = reinterpret_cast<GpLineGradient*>(8);
    EXPECT_EQ(GdipCreateLineBrushI(&at, &at, 0, 0, WrapModeTile, &line), OutOfMemory);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(GdipCreateLineBrushI(&at, &oblique, 0, 0, WrapModeTile, &line), NotImplemented);
    EXPECT_EQ(GdipCreateLineBrushI(&at, &other, 0, 0, static_cast<WrapMode>(1), &line), NotImplemented);
    GraphicsPath path;
    path.AddRectangle(0, 0, 0, 5);
    path.AddRectangle(0, 0, 5, 0);
    EXPECT_EQ(PathGradientBrush(&path).GetLastStatus(), OutOfMemory);
    EXPECT_EQ(GraphicsPath(FillModeWinding).GetLastStatus(), Ok);
    path.AddRectangle(INT_MAX - 1, INT_MAX - 1, INT_MAX, INT_MAX);
    EXPECT_EQ(path.AddRectangle(0, 0, 1, 1), NotImplemented);
    PathGradientBrush brush(&path);
    const Color colors[2];
    int nTwo = 2, nOne = 1, nNone = 0, nLess = -1;
    EXPECT_EQ(brush.SetSurroundColors(colors, &nTwo), NotImplemented);
    ARGB color = 0;
    for (const Status status :
         {GdipCreateLineBrushI(&at, nullptr, 0, 0, WrapModeTile, &line),
          GdipCreateLineBrushI(nullptr, &at, 0, 0, WrapModeTile, &line),
          GdipCreateLineBrushI(&at, &other, 0, 0, WrapModeTile, nullptr),
          PathGradientBrush(nullptr).GetLastStatus(), GdipSetPathGradientCenterPointI(nullptr, &at),
          GdipSetPathGradientCenterPointI(nullptr, nullptr), brush.SetSurroundColors(colors, &nNone),
          brush.SetSurroundColors(colors, &nLess), brush.SetSurroundColors(colors, nullptr),
          brush.SetSurroundColors(nullptr, &nOne),
          GdipSetPathGradientSurroundColorsWithCount(nullptr, &color, &nOne)})
        EXPECT_EQ(status, InvalidParameter);
    Sheet sheet(1, 1);
    EXPECT_EQ(sheet.graphics.FillRectangle(&brush, 0, 0, INT_MAX, INT_MAX), Ok);
    EXPECT_EQ(sheet.pixels, Row{0});
}
