#include "tests/platform/gdi/LoadedImage.h"
#include "tests/platform/gdiplus/Sheet.h"

using namespace test;

namespace {

using GraphicsCalls = DrawingTest;

const Color red(255, 0, 0);

// A brush of one colour everywhere.
LinearGradientBrush Solid(ARGB color)
{
    return {{0, 0}, {1, 0}, Color(color), Color(color)};
}

} // namespace

TEST_F(GraphicsCalls, OutlineCoversTheLinesOnBothSidesAndPaintsEachPixelOnce)
{
    using Seen = test::Picture;
    const Seen thin{"WWWWWWW", "WRRRRWW", "WRWWRWW", "WRRRRWW", "WWWWWWW", "WWWWWWW"}, none(6, "WWWWWWW");
    const std::tuple<Rect, REAL, Seen> cases[] = {
        {{1, 1, 3, 2}, 1.F, thin},
        {{1, 1, 3, 2}, 0.F, thin},
        {{1, 1, 3, 2}, -3.F, thin},
        {{1, 1, 3, 2}, 1.9F, thin},
        {{1, 1, 4, 3}, 2.F, {"RRRRRRW", "RRRRRRW", "RRWWRRW", "RRRRRRW", "RRRRRRW", "WWWWWWW"}},
        {{1, 1, 4, 4}, 3.F, {"RRRRRRR", "RRRRRRR", "RRRRRRR", "RRRWRRR", "RRRRRRR", "RRRRRRR"}},
        {{2, 1, 0, 2}, 1.F, {"WWWWWWW", "WWRWWWW", "WWRWWWW", "WWRWWWW", "WWWWWWW", "WWWWWWW"}},
        {{2, 1, 2, 0}, 1.F, {"WWWWWWW", "WWRRRWW", "WWWWWWW", "WWWWWWW", "WWWWWWW", "WWWWWWW"}},
        {{1, 1, -1, 2}, 3.F, none},
        {{1, 1, 2, INT_MIN}, 9.F, none},
        {{INT_MAX, INT_MAX, INT_MAX, INT_MAX}, 1.F, none},
        {{-1, -1, INT_MAX, INT_MAX}, 1.F, none},
        {{3, 3, 1, 1}, 1e38F, Seen(6, "RRRRRRR")}};
    for (const auto& [at, nPen, seen] : cases) {
        const Paper paper(7, 6, 'W');
        Graphics graphics(static_cast<HDC>(paper));
        const Gdiplus::Pen pen(red, nPen);
        EXPECT_EQ(graphics.DrawRectangle(&pen, at.X, at.Y, at.Width, at.Height), Ok);
        EXPECT_EQ(paper.Read(), seen) << at.Width << " by " << at.Height << ", pen " << nPen;
    }
    Sheet sheet(3, Grays({100, 100, 100, 100, 100, 100, 100, 100, 100}));
    const Gdiplus::Pen pen(Color(127, 200, 200, 200));
    sheet.graphics.DrawRectangle(&pen, 0, 0, 2, 2);
    EXPECT_EQ(Blues(sheet.pixels), (std::vector{150, 150, 150, 150, 100, 150, 150, 150, 150}));
    const Gdiplus::Pen nearly(Color(254, 0, 0, 0));
    sheet.graphics.DrawRectangle(&nearly, 0, 0, 0, 0);
    EXPECT_EQ(sheet.pixels[0], Gray(1)); // 150 / 255 is left of what was
}

TEST_F(GraphicsCalls, FillsRectanglesAndCopiesOfRegionsWithinTheClipAndTheTarget)
{
    const Paper paper(5, 3, 'W');
    const Scoped<HRGN> clip(CreateRectRgn(1, 0, 4, 3));
    SelectClipRgn(paper, clip);
    Graphics graphics(static_cast<HDC>(paper));
    const LinearGradientBrush brush = Solid(0xFFFF0000);
    for (const auto& [nWidth, nHeight] : {std::pair{0, 9}, {9, 0}, {-1, 9}, {INT_MIN, INT_MIN}})
        EXPECT_EQ(graphics.FillRectangle(&brush, 0, 0, nWidth, nHeight), Ok);
    EXPECT_EQ(graphics.FillRectangle(&brush, INT_MIN, INT_MIN, INT_MAX, INT_MAX), Ok);
    EXPECT_EQ(graphics.FillRectangle(&brush, -2, 1, INT_MAX, INT_MAX), Ok);
    SelectClipRgn(paper, nullptr);
    EXPECT_EQ(paper.Read(), (test::Picture{"WWWWW", "WRRRW", "WRRRW"}));
    // GDI's own fills leave the same.
    const LinearGradientBrush glass = Solid(0x7FFF0000);
    graphics.FillRectangle(&glass, 1, 0, 1, 1);
    const Row pixels = LoadedBitmap(paper.Bitmap()).Pixels();
    EXPECT_EQ(pixels[1], 0x00FF8080u);
    EXPECT_EQ(pixels[6], 0x00FF0000u);

    const RECT parts[] = {{1, 1, 4, 2}, {0, 0, 1, 1}};
    HRGN hRgn = CreateRectsRgn(parts, 2);
    const Gdiplus::Region region(hRgn);
    OffsetRgn(hRgn, 9, 9);
    DeleteObject(hRgn);
    const LinearGradientBrush green = Solid(0xFF00FF00);
    EXPECT_EQ(graphics.FillRegion(&green, &region), Ok);
    EXPECT_EQ(paper.Read(), (test::Picture{"G?WWW", "WGGGW", "WRRRW"}));
    const Gdiplus::Region none(hRgn);
    EXPECT_EQ(none.GetLastStatus(), InvalidParameter);
    EXPECT_EQ(graphics.FillRegion(&brush, &none), InvalidParameter);
}

TEST_F(GraphicsCalls, SayByStatusWhatIsMissing)
{
    auto* graphics = reinterpret_cast<GpGraphics*>(8);
    EXPECT_EQ(GdipCreateFromHDC(nullptr, &graphics), InvalidParameter);
    EXPECT_EQ(graphics, nullptr);
    EXPECT_EQ(GdipGetImageGraphicsContext(nullptr, &graphics), InvalidParameter);
    EXPECT_EQ(GdipCreateFromHDC(nullptr, nullptr), InvalidParameter);
    Graphics none(static_cast<HDC>(nullptr));
    EXPECT_EQ(none.GetLastStatus(), InvalidParameter);
    EXPECT_EQ(none.GetLastStatus(), Ok) << "told once";

    Sheet sheet(1, 1);
    const LinearGradientBrush brush = Solid(0xFFFF0000);
    const Gdiplus::Pen pen(red);
    const Gdiplus::Pen noPen(red, NAN);
    EXPECT_EQ(noPen.GetLastStatus(), InvalidParameter);
    GpPen* ownPen = nullptr;
    EXPECT_EQ(GdipCreatePen1(0, 1, UnitDisplay, &ownPen), InvalidParameter);
    EXPECT_EQ(GdipCreatePen1(0, 1, UnitPixel, &ownPen), Ok);
    EXPECT_EQ(GdipDeletePen(ownPen), Ok);
    for (const Status status :
         {none.DrawImage(&sheet.bitmap, 0, 0), none.FillRectangle(&brush, 0, 0, 1, 1),
          none.DrawRectangle(&pen, 0, 0, 1, 1), sheet.graphics.DrawImage(nullptr, 0, 0),
          sheet.graphics.DrawImage(nullptr, 0, 0, 1, 1), sheet.graphics.FillRectangle(nullptr, 0, 0, 1, 1),
          sheet.graphics.FillRegion(&brush, nullptr), sheet.graphics.DrawRectangle(nullptr, 0, 0, 1, 1),
          sheet.graphics.DrawRectangle(&noPen, 0, 0, 1, 1),
          Graphics(static_cast<Image*>(nullptr)).GetLastStatus(), GdipDeleteGraphics(nullptr),
          GdipDeleteBrush(nullptr), GdipDeletePath(nullptr), GdipDeletePen(nullptr),
          GdipDeleteRegion(nullptr), GdipDisposeImageAttributes(nullptr)})
        EXPECT_EQ(status, InvalidParameter);
    EXPECT_EQ(sheet.pixels, Row{0});

    HDC dc = CreateCompatibleDC(nullptr);
    Graphics onDead(dc);
    DeleteDC(dc);
    EXPECT_EQ(onDead.DrawImage(&sheet.bitmap, 0, 0), Win32Error);
    EXPECT_EQ(onDead.FillRectangle(&brush, 0, 0, 1, 1), Win32Error);
    EXPECT_EQ(onDead.GetLastStatus(), Win32Error);
    EXPECT_EQ(Graphics(dc).GetLastStatus(), InvalidParameter);
}
