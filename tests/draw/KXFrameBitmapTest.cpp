#include "KXFrameBitmap.h"
#include "tests/support/CopyList.h"
#include "tests/support/Picture.h"

namespace {

// An image of 20 by 16 with corners 10x4, 5x3, 6x2 and 4x5, in the usual order.
struct Frame : testing::Test
{
    Frame()
    {
        frame.AttachBitmap(CreateCompatibleBitmap(paper, 20, 16));
        frame.SetBitmapOptions(CSize(10, 4), CSize(5, 3), CSize(6, 2), CSize(4, 5));
    }

    test::Paper paper{40, 30, 'W'};
    CDC& dc = *CDC::FromHandle(paper);
    CKXFrameBitmap frame;
    test::CopyList copies;
};

TEST_F(Frame, DrawsEdgesInTilesAndCornersOverThem)
{
    frame.Draw(&dc, CRect(0, 0, 40, 30), 0, 0);
    EXPECT_THAT(copies.Take(),
                testing::ElementsAre(
                    "10,0 5x4 from 10,0", "15,0 5x4 from 10,0", "20,0 5x4 from 10,0", "25,0 5x4 from 10,0",
                    "30,0 5x4 from 10,0",                                                  // top
                    "6,28 10x2 from 6,14", "16,28 10x2 from 6,14", "26,28 10x2 from 6,14", // bottom
                    "0,4 10x10 from 0,4", "0,14 10x10 from 0,4", "0,24 10x4 from 0,4",     // left
                    "35,3 5x8 from 15,3", "35,11 5x8 from 15,3", "35,19 5x6 from 15,3",    // right
                    "0,0 10x4 from 0,0", "35,0 5x3 from 15,0", "0,28 6x2 from 0,14", "36,25 4x5 from 16,11"));
}

// Each inset is that of the larger of its two corners, whichever that is. Without an image only the centre
// is seen.
TEST_F(Frame, FillsTheCentreBetweenTheLargerCornersIfAsked)
{
    const auto centre = [&](CSize topLeft, CSize topRight, CSize bottomLeft, CSize bottomRight) {
        CKXFrameBitmap empty;
        empty.SetBitmapOptions(topLeft, topRight, bottomLeft, bottomRight);
        const test::Paper fresh(40, 30, 'W');
        empty.Draw(CDC::FromHandle(fresh), CRect(0, 0, 40, 30), 1, test::ColorOf('R'));
        CRect rc(40, 30, 0, 0);
        const test::Picture picture = fresh.Read();
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x)
                if (picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == 'R')
                    rc = CRect(std::min(rc.left, x), std::min(rc.top, y), std::max(rc.right, x + 1),
                               std::max(rc.bottom, y + 1));
        return rc;
    };
    EXPECT_EQ(centre(CSize(10, 4), CSize(5, 3), CSize(6, 2), CSize(4, 5)), CRect(10, 4, 35, 25));
    EXPECT_EQ(centre(CSize(6, 3), CSize(4, 7), CSize(9, 8), CSize(5, 6)), CRect(9, 7, 35, 22));
    frame.Draw(&dc, CRect(0, 0, 40, 30), 0, test::ColorOf('B'));
    EXPECT_EQ(test::LetterOf(dc.GetPixel(20, 15)), 'W');
}

TEST_F(Frame, SmallerThanItsCornersDrawsThemAlone)
{
    frame.Draw(&dc, CRect(3, 1, 9, 5), 0, 0);
    EXPECT_THAT(copies.Take(), testing::ElementsAre("3,1 10x4 from 0,0", "4,1 5x3 from 15,0",
                                                    "3,3 6x2 from 0,14", "5,0 4x5 from 16,11"));
}

TEST_F(Frame, EdgesWithoutLengthEnd)
{
    frame.SetBitmapOptions(CSize(10, 8), CSize(10, 8), CSize(10, 8), CSize(10, 8)); // the corners meet
    frame.Draw(&dc, CRect(0, 0, 40, 30), 0, 0);
    EXPECT_EQ(copies.Take().size(), 4u);
    CKXFrameBitmap empty;
    empty.Draw(&dc, CRect(0, 0, 40, 30), 0, 0);
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
        const CSize size(n, n);
        frame.SetBitmapOptions(size, size, size, size);
        frame.Draw(&dc, CRect(0, 0, 40, 30), 1, 0);
    }
    EXPECT_LT(copies.Take().size(), 1000u);
}

} // namespace
