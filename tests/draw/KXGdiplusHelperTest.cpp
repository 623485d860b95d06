#include "KXGdiplusHelper.h"
#include "tests/draw/Pictures.h"

using namespace test;
using testing::ElementsAre;

namespace {

// Gradients from black to a red show how far each pixel is on the way.
struct GdiplusHelper : PictureTest
{
    int RedAt(int x, int y) const { return GetRValue(GetPixel(canvas, x, y)); }
    std::vector<int> Reds(int x, int y, int dx, int dy, int nCount) const
    {
        std::vector<int> reds;
        for (int n = 0; n < nCount; ++n)
            reds.push_back(RedAt(x + n * dx, y + n * dy));
        return reds;
    }
    std::vector<int> Row(int y, int from, int to) const { return Reds(from, y, 1, 0, to - from); }
    std::vector<int> Column(int x, int from, int to) const { return Reds(x, from, 0, 1, to - from); }
    static bool IsBlue(COLORREF clr) { return GetBValue(clr) == 255 && GetRValue(clr) == 0; }

    Paper canvas{24, 12, 'B'};
};

// Mirrored, the left half is 5 wide, the right one 6; each goes on from a pixel before it.
TEST_F(GdiplusHelper, AcrossOnceOrMirrored)
{
    const std::tuple<int, unsigned, std::vector<int>> cases[] = {
        {0, 220, {0, 20, 40, 60, 80, 100, 120, 140, 160, 180, 200}},
        {1, 252, {42, 84, 126, 168, 210, 216, 180, 144, 108, 72, 36}}};
    for (const auto& [bMirrored, nRed, reds] : cases) {
        CKXGdiplusHelper::DrawLinearGradientRect(canvas, CRect(10, 2, 21, 5), 0, RGB(nRed, 0, 0), bMirrored);
        for (int y = 2; y < 5; ++y)
            EXPECT_EQ(Row(y, 10, 21), reds);
        for (const CPoint pt : {CPoint(9, 3), CPoint(21, 3), CPoint(12, 1), CPoint(12, 5)})
            EXPECT_TRUE(IsBlue(GetPixel(canvas, pt.x, pt.y))) << pt.x << "," << pt.y;
    }
}

TEST_F(GdiplusHelper, DownWithABorderOfTheFullSize)
{
    CKXGdiplusHelper::DrawGradientRect(canvas, 0, RGB(250, 0, 0), CRect(2, 1, 6, 6), 0, RGB(0, 255, 0));
    for (int x = 2; x < 6; ++x)
        EXPECT_THAT(Column(x, 1, 6), ElementsAre(50, 100, 150, 200, 250));
    EXPECT_TRUE(IsBlue(GetPixel(canvas, 6, 3)));
    CKXGdiplusHelper::DrawGradientRect(canvas, 0, RGB(250, 0, 0), CRect(2, 1, 6, 6), 1, RGB(0, 255, 0));
    EXPECT_THAT(Read(canvas, 1, 0, 8, 8), ElementsAre("BBBBBBB", "BGGGGGB", "BG???GB", "BG???GB", "BG???GB",
                                                      "BG???GB", "BGGGGGB", "BBBBBBB"));
}

TEST_F(GdiplusHelper, RoundCornersLeaveTheSurfacesTools)
{
    const NoLeak noLeak;
    const Scoped<HPEN> pen(CreatePen(PS_SOLID, 3, RGB(1, 2, 3)));
    const Scoped<HBRUSH> brush(CreateSolidBrush(RGB(4, 5, 6)));
    const HGDIOBJ hPen = SelectObject(canvas, static_cast<HPEN>(pen));
    const HGDIOBJ hBrush = SelectObject(canvas, static_cast<HBRUSH>(brush));
    const CRect rc(2, 1, 22, 11);
    const Scoped<HRGN> inside(CreateRoundRectRgn(rc.left, rc.top, rc.right, rc.bottom, 12, 4));
    for (const int bBorder : {0, 1}) {
        CKXGdiplusHelper::DrawGradientRoundRect(canvas, 0, RGB(250, 0, 0), rc, 12, 4, bBorder,
                                                RGB(0, 255, 0));
        for (int y = 0; y < 12; ++y)
            for (int x = 0; x < 24; ++x)
                EXPECT_EQ(IsBlue(GetPixel(canvas, x, y)), !PtInRegion(inside, x, y)) << x << "," << y;
        EXPECT_THAT(Column(12, 2, 10), ElementsAre(50, 75, 100, 125, 150, 175, 200, 225));
        EXPECT_EQ(RedAt(12, 1), bBorder ? 0 : 25);
        EXPECT_EQ(GetGValue(GetPixel(canvas, 12, 1)), bBorder ? 255 : 0);
        EXPECT_EQ(GetGValue(GetPixel(canvas, 21, 6)), bBorder ? 255 : 0);
        EXPECT_EQ(SelectObject(canvas, static_cast<HPEN>(pen)), static_cast<HPEN>(pen));
        EXPECT_EQ(SelectObject(canvas, static_cast<HBRUSH>(brush)), static_cast<HBRUSH>(brush));
    }
    SelectObject(canvas, hPen);
    SelectObject(canvas, hBrush);
}

TEST_F(GdiplusHelper, OutFromTheCentre)
{
    CKXGdiplusHelper::DrawPathGradientRect(canvas, CRect(4, 2, 14, 10), RGB(200, 0, 0), 0);
    // A pixel counts where its middle lies: half a pixel from the edge is a tenth of the way across, an
    // eighth of the way down, and the nearer edge decides.
    EXPECT_THAT(Row(6, 4, 14), ElementsAre(20, 60, 100, 140, 175, 175, 140, 100, 60, 20));
    EXPECT_THAT(Column(9, 2, 10), ElementsAre(25, 75, 125, 175, 175, 125, 75, 25));
    EXPECT_THAT(Row(2, 4, 14), ElementsAre(20, 25, 25, 25, 25, 25, 25, 25, 25, 20));
    EXPECT_TRUE(IsBlue(GetPixel(canvas, 14, 6)));
    EXPECT_TRUE(IsBlue(GetPixel(canvas, 9, 10)));
}

TEST_F(GdiplusHelper, BadSurfacesAndEmptyRectanglesPaintNothing)
{
    const NoLeak noLeak;
    const HDC hGone = CreateCompatibleDC(nullptr);
    DeleteDC(hGone);
    const std::pair<HDC, CRect> cases[] = {
        {nullptr, {0, 0, 5, 5}}, {hGone, {0, 0, 5, 5}},  {canvas, {}},
        {canvas, {3, 3, 3, 9}},  {canvas, {9, 3, 3, 3}}, {canvas, {INT_MIN, 9, INT_MAX, 9}}};
    for (const auto& [hDC, rc] : cases) {
        for (const int bOn : {0, 1})
            CKXGdiplusHelper::DrawLinearGradientRect(hDC, rc, 1, 2, bOn);
        CKXGdiplusHelper::DrawGradientRect(hDC, 1, 2, rc, 0, 3);
        CKXGdiplusHelper::DrawGradientRoundRect(hDC, 1, 2, rc, 4, 4, 0, 3);
        CKXGdiplusHelper::DrawPathGradientRect(hDC, rc, 1, 2);
    }
    EXPECT_EQ(canvas.Read(), Plain(24, 12, 'B'));
}

} // namespace
