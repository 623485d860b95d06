#include "KXFrameBitmap.h"
#include "tests/support/CopyList.h"
#include "tests/support/Picture.h"

using namespace test;
using testing::ElementsAre;

namespace {

// An image of 20 by 16 with corners 10x4, 5x3, 6x2 and 4x5, in the usual order.
struct Frame : testing::Test
{
    Frame()
    {
        frame.AttachBitmap(CreateCompatibleBitmap(paper, 20, 16));
        frame.SetBitmapOptions(CSize(10, 4), CSize(5, 3), CSize(6, 2), CSize(4, 5));
    }
    void SetCorners(CSize size) { frame.SetBitmapOptions(size, size, size, size); }

    const Paper paper{40, 30, 'W'};
    CDC& dc = *CDC::FromHandle(paper);
    CKXFrameBitmap frame;
    CopyList copies;
};

TEST_F(Frame, DrawsEdgesInTilesAndCornersOverThem)
{
    frame.Draw(&dc, CRect(0, 0, 40, 30), 0, ColorOf('B'));
    EXPECT_THAT(copies.Take(),
                ElementsAre("10,0 5x4 from 10,0", "15,0 5x4 from 10,0", "20,0 5x4 from 10,0",
                            "25,0 5x4 from 10,0", "30,0 5x4 from 10,0",                            // top
                            "6,28 10x2 from 6,14", "16,28 10x2 from 6,14", "26,28 10x2 from 6,14", // bottom
                            "0,4 10x10 from 0,4", "0,14 10x10 from 0,4", "0,24 10x4 from 0,4",     // left
                            "35,3 5x8 from 15,3", "35,11 5x8 from 15,3", "35,19 5x6 from 15,3",    // right
                            "0,0 10x4 from 0,0", "35,0 5x3 from 15,0", "0,28 6x2 from 0,14",
                            "36,25 4x5 from 16,11"));
    EXPECT_EQ(LetterOf(dc.GetPixel(20, 15)), 'W'); // no centre is asked for
}

// Each inset is that of the larger of its two corners, whichever that is. Of an image of one white pixel only
// the centre is seen.
TEST_F(Frame, FillsTheCentreBetweenTheLargerCornersIfAsked)
{
    const std::pair<std::array<CSize, 4>, CRect> cases[] = {
        {{CSize(10, 4), CSize(5, 3), CSize(6, 2), CSize(4, 5)}, {10, 4, 35, 25}},
        {{CSize(6, 3), CSize(4, 7), CSize(9, 8), CSize(5, 6)}, {9, 7, 35, 22}},
    };
    for (const auto& [corners, centre] : cases) {
        frame.AttachBitmap(Paper(1, 1, 'W').Detach());
        frame.SetBitmapOptions(corners[0], corners[1], corners[2], corners[3]);
        const Paper drawn(40, 30, 'W'), expected(40, 30, 'W');
        frame.Draw(CDC::FromHandle(drawn), CRect(0, 0, 40, 30), 1, ColorOf('R'));
        CDC::FromHandle(expected)->FillSolidRect(&centre, ColorOf('R'));
        EXPECT_EQ(drawn.Read(), expected.Read());
    }
}

TEST_F(Frame, SmallerThanItsCornersDrawsThemAlone)
{
    frame.Draw(&dc, CRect(3, 1, 9, 5), 0, 0);
    EXPECT_THAT(copies.Take(), ElementsAre("3,1 10x4 from 0,0", "4,1 5x3 from 15,0", "3,3 6x2 from 0,14",
                                           "5,0 4x5 from 16,11"));
    SetCorners(CSize(10, 8)); // they meet: edges without length
    frame.Draw(&dc, CRect(0, 0, 40, 30), 0, 0);
    EXPECT_EQ(copies.Take().size(), 4u);
}

// Tiles that can't be seen aren't drawn, and those that can stand where they would.
TEST_F(Frame, OfAnySizeEndsSoon)
{
    frame.Draw(&dc, CRect(INT_MIN, 0, INT_MAX, 30), 1, 0);
    EXPECT_THAT(copies.Take(), testing::SizeIs(testing::AllOf(testing::Ge(16u), testing::Le(40u))));
    for (const CRect& rc :
         {CRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX), CRect(INT_MAX, INT_MAX, INT_MIN, INT_MIN),
          CRect(0, 0, INT_MAX, INT_MAX), CRect(INT_MIN, INT_MIN, 0, 0)})
        frame.Draw(&dc, rc, 1, 0);
    for (const int n : {INT_MIN, -1, INT_MAX}) {
        SetCorners(CSize(n, n));
        frame.Draw(&dc, CRect(0, 0, 40, 30), 1, 0);
    }
    EXPECT_LT(copies.Take().size(), 1000u);
}

} // namespace
