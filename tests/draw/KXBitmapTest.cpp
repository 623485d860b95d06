#include "KXBitmap.h"
#include "tests/platform/module/Bundles.h"
#include "tests/support/CopyList.h"
#include "tests/support/Picture.h"

using namespace test;
using testing::ElementsAre;

namespace {

struct Bitmap : testing::Test
{
    void Attach(int cx, int cy) { bitmap.AttachBitmap(Paper(cx, cy).Detach()); }
    // The copies of a fill.
    std::vector<std::string> Filled(const CRect& rc, int nState = 0)
    {
        bitmap.DrawFill(&dc, rc, nState);
        return copies.Take();
    }

    const Paper paper{12, 6, 'W'};
    CDC& dc = *CDC::FromHandle(paper);
    CKXBitmap bitmap;
    CopyList copies;
};

TEST_F(Bitmap, StatesDivideTheImageAndLeaveTheRest)
{
    Attach(102, 7);
    EXPECT_EQ(bitmap.GetSrcImageRect(), CRect(0, 0, 102, 7));
    bitmap.SetMultiState(5, 1);
    EXPECT_EQ(bitmap.GetSrcImageRect(), CRect(0, 0, 20, 7));
    bitmap.Draw(&dc, 1, 2, 4);
    EXPECT_EQ(bitmap.GetSrcImageRect(), CRect(80, 0, 100, 7));
    for (const int nCount : {1, 0, -3}) {
        bitmap.SetMultiState(nCount, 1);
        bitmap.Draw(&dc, 0, 0, 9);
    }
    bitmap.SetMultiState(3, 0);
    for (int n = 0; n < 2; ++n)
        bitmap.Draw(&dc, 0, 0, 2);
    EXPECT_THAT(copies.Take(), ElementsAre("1,2 20x7 from 80,0", "0,0 102x7 from 0,0", "0,0 102x7 from 0,0",
                                           "0,0 102x7 from 0,0", "0,0 102x2 from 0,4", "0,0 102x2 from 0,4"));
    EXPECT_EQ(bitmap.GetMultiState(), 3);
    EXPECT_EQ(bitmap.IsHorzMultiState(), 0);
    bitmap.AttachBitmap(nullptr);
    EXPECT_EQ(bitmap.GetSrcImageRect(), CRect(0, 0, 102, 2)); // the first state of the last record
}

TEST_F(Bitmap, DrawsPartsAndKeyedBlocks)
{
    Attach(40, 30);
    bitmap.SetMultiState(2, 1);
    bitmap.TransparentDraw(&dc, 3, 4, 0xFF00FF, 1);
    bitmap.TransparentDraw(&dc, 3, 4, 50, 60, 0xFF00FF, 1);
    bitmap.DrawPart(&dc, CRect(1, 2, 6, 5), CRect(3, 1, 100, 100), 1);
    bitmap.TransparentDrawPart(&dc, CRect(1, 2, 6, 5), CRect(3, 1, 5, 7), 0, 0);
    EXPECT_THAT(copies.Take(), ElementsAre("keyed 3,4 20x30 from 20,0", "keyed 3,4 50x60 from 20,0 20x30",
                                           "1,2 5x3 from 23,1", "keyed 1,2 5x3 from 3,1 2x6"));
}

TEST_F(Bitmap, FillsMiddleFirstLastInThatOrder)
{
    const Paper large(50, 12);
    CDC& largeDc = *CDC::FromHandle(large);
    Attach(30, 10);
    bitmap.SetFillParam(10, 5, 1);
    bitmap.DrawFill(&largeDc, CRect(0, 3, 50, 4), 0);
    EXPECT_THAT(copies.Take(),
                ElementsAre("10,3 15x10 from 10,0", "25,3 15x10 from 10,0", "40,3 5x10 from 10,0",
                            "0,3 10x10 from 0,0", "45,3 5x10 from 25,0"));
    bitmap.DrawFill(&largeDc, CRect(0, 0, 45, 1), 0); // whole tiles: none is cut
    EXPECT_THAT(copies.Take(), ElementsAre("10,0 15x10 from 10,0", "25,0 15x10 from 10,0",
                                           "0,0 10x10 from 0,0", "40,0 5x10 from 25,0"));
    // No room: the ends alone, one over the other.
    bitmap.TransparentDrawFill(&largeDc, CRect(0, 0, 12, 1), 7, 0);
    EXPECT_THAT(copies.Take(), ElementsAre("keyed 0,0 10x10 from 0,0", "keyed 7,0 5x10 from 25,0"));
    bitmap.SetFillParam(3, 2, 0);
    bitmap.DrawFill(&largeDc, CRect(4, 0, 5, 12), 0);
    EXPECT_THAT(copies.Take(), ElementsAre("4,3 30x5 from 0,3", "4,8 30x2 from 0,3", "4,0 30x3 from 0,0",
                                           "4,10 30x2 from 0,8"));
    bitmap.SetFillParam(10, 5, 1);
    EXPECT_THAT(Filled(CRect(0, 3, 50, 4)), // of 12 columns: the tile that lies outside is left out
                ElementsAre("10,3 15x10 from 10,0", "0,3 10x10 from 0,0", "45,3 5x10 from 25,0"));
    // End parts of a length below 0 make that much more room for the middle.
    Attach(4, 3);
    bitmap.SetFillParam(-2, -1, 1);
    EXPECT_THAT(Filled(CRect(0, 0, 10, 3)), ElementsAre("-2,0 7x3 from -2,0", "5,0 6x3 from -2,0",
                                                        "0,0 -2x3 from 0,0", "11,0 -1x3 from 5,0"));
}

TEST_F(Bitmap, PavesInBandsAcross)
{
    Attach(10, 4);
    bitmap.SetFillParam(2, 3, 1);
    bitmap.Pave(&dc, CRect(0, 1, 11, 7), 0);
    EXPECT_THAT(copies.Take(),
                ElementsAre("2,1 5x4 from 2,0", "7,1 1x4 from 2,0", "0,1 2x4 from 0,0", "8,1 3x4 from 7,0",
                            "2,5 5x2 from 2,0", "7,5 1x2 from 2,0", "0,5 2x2 from 0,0", "8,5 3x2 from 7,0"));
    bitmap.Pave(&dc, CRect(0, 7, 11, 7), 0);
    EXPECT_THAT(copies.Take(), testing::IsEmpty());
    bitmap.SetFillParam(1, 1, 0);
    bitmap.Pave(&dc, CRect(0, 0, 12, 3), 0);
    EXPECT_THAT(copies.Take(), ElementsAre("0,1 10x1 from 0,1", "0,0 10x1 from 0,0", "0,2 10x1 from 0,3",
                                           "10,1 2x1 from 0,1", "10,0 2x1 from 0,0", "10,2 2x1 from 0,3"));
}

// The rectangles' meaning is settled by the last of load, SetMultiState, SetFillParam and a change of
// state.
TEST_F(Bitmap, FillPartsFollowTheStateAndOutliveALoad)
{
    bitmap.SetFillParam(1, 1, 1);
    bitmap.SetMultiState(2, 1);
    Attach(20, 3);
    EXPECT_EQ(bitmap.GetSrcImageRect(), CRect(0, 0, 10, 3));
    Filled(CRect(0, 0, 10, 3)); // a load leaves the parts as they were: of no image yet
    EXPECT_THAT(Filled(CRect(0, 0, 10, 3), 1),
                ElementsAre("1,0 8x3 from 11,0", "0,0 1x3 from 10,0", "9,0 1x3 from 19,0"));
    // The parts are those of the image that was there at SetFillParam or SetMultiState, and of its first
    // state.
    Attach(20, 3);
    bitmap.SetFillParam(2, 3, 1);
    bitmap.SetMultiState(2, 1);
    EXPECT_THAT(Filled(CRect(0, 0, 10, 3)),
                ElementsAre("2,0 5x3 from 2,0", "0,0 2x3 from 0,0", "7,0 3x3 from 7,0"));
    bitmap.SetMultiState(1, 1);
    const auto kept = ElementsAre("2,0 15x3 from 2,0", "0,0 2x3 from 0,0", "17,0 3x3 from 17,0");
    Attach(10, 3);
    EXPECT_THAT(Filled(CRect(0, 0, 20, 3)), kept);
    const TempDir dir;
    dir.Write("small.bmp", ToBmp({"RGBRGB"}, 24).File());
    EXPECT_EQ(bitmap.LoadBitmapA(dir.Win("small.bmp")), 1);
    EXPECT_THAT(Filled(CRect(0, 0, 20, 3), 1), kept); // of the only state, whatever is named
    bitmap.SetMultiState(1, 1);
    EXPECT_THAT(Filled(CRect(0, 0, 8, 3)),
                ElementsAre("2,0 1x1 from 2,0", "3,0 1x1 from 2,0", "4,0 1x1 from 2,0", "0,0 2x1 from 0,0",
                            "5,0 3x1 from 3,0"));
}

TEST_F(Bitmap, EmptyObjectsDrawNothing)
{
    unsigned char byte = 0;
    CRgn rgn;
    bitmap.Draw(&dc, 0, 0, 0);
    bitmap.TransparentDraw(&dc, 0, 0, 1, 0);
    bitmap.DrawFill(&dc, CRect(0, 0, 9, 9), 0);
    bitmap.Pave(&dc, CRect(0, 0, 9, 9), 0);
    bitmap.DrawPart(&dc, CRect(0, 0, 9, 9), CRect(0, 0, 9, 9), 0);
    bitmap.CreateBitmapRgn(rgn, 0, 0);
    EXPECT_EQ(bitmap.GetBits(&byte), 0);
    EXPECT_EQ(rgn.GetSafeHandle(), nullptr);
    EXPECT_EQ(bitmap.DetachBitmap(), nullptr);
    EXPECT_THAT(copies.Take(), testing::IsEmpty());
    Attach(4, 4);
    bitmap.Draw(nullptr, 0, 0, 0); // a null device: a copy that paints nothing
    EXPECT_THAT(copies.Take(), ElementsAre("0,0 4x4 from 0,0"));
}

// Tiles that can't be seen aren't drawn, and those that can stand where they would.
TEST_F(Bitmap, OddParametersAndRectanglesOfAnySizeEndSoon)
{
    Attach(7, 3);
    Filled(CRect(0, 0, 100, 3)); // no fill parameters yet
    bitmap.SetFillParam(1, 1, 1);
    // From -2147483647 on in steps of 5.
    EXPECT_THAT(Filled(CRect(INT_MIN, 0, INT_MAX, 3)),
                ElementsAre("-2,0 5x3 from 1,0", "3,0 5x3 from 1,0", "8,0 5x3 from 1,0",
                            "-2147483648,0 1x3 from 0,0", "2147483646,0 1x3 from 6,0"));
    bitmap.DrawFill(nullptr, CRect(0, 0, INT_MAX, 3), 0);
    EXPECT_EQ(copies.Take().size(), 2u);
    // The last tile ends where the surface begins.
    EXPECT_EQ(Filled(CRect(-5 * 4096 - 1, 0, 1, 3)).size(), 2u);
    const CRect rectangles[] = {
        {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, {0, 0, INT_MAX, INT_MAX}, {INT_MIN, INT_MIN, 1, 1},
        {INT_MAX, INT_MAX, INT_MIN, INT_MIN}, {0, 0, 20'000, 12'000},   {0, 0, 12, 6}};
    for (const int nEnd : {1, 8, INT_MAX, INT_MIN, -1})
        for (const int bHorz : {1, 0})
            for (const CRect& rc : rectangles) {
                bitmap.SetFillParam(nEnd, nEnd, bHorz);
                bitmap.DrawFill(&dc, rc, 0);
                bitmap.TransparentDrawFill(&dc, rc, 1, 0);
                bitmap.Pave(&dc, rc, 0);
                bitmap.Pave(nullptr, rc, 0);
            }
    bitmap.SetMultiState(3, 1);
    for (const int nState : {-1, 3, INT_MAX, INT_MIN}) {
        bitmap.Draw(&dc, 0, 0, nState);
        bitmap.TransparentDrawPart(&dc, CRect(0, 0, 12, 6), CRect(-5, -5, INT_MAX, 90), 0, nState);
    }
    bitmap.SetMultiState(INT_MAX, 0);
    bitmap.Draw(&dc, 0, 0, 1);
    EXPECT_LT(copies.Take().size(), 1000u);
}

// A part of a keyed copy that the image lacks is left out alone, though the platform refuses such a copy.
TEST_F(Bitmap, KeyedCopiesLeaveOutWhatIsNotThere)
{
    bitmap.AttachBitmap(Paper({"RMB"}).Detach());
    bitmap.SetFillParam(5, 0, 1); // longer than the image
    bitmap.TransparentDrawFill(&dc, CRect(1, 0, 6, 1), ColorOf('M'), 0);
    bitmap.SetFillParam(-2, 0, 1); // the middle begins in front of it
    bitmap.TransparentDrawFill(&dc, CRect(8, 1, 11, 2), ColorOf('M'), 0);
    EXPECT_THAT(Read(paper, 0, 0, 12, 2), ElementsAre("WRWBWWWWWWWW", "WWWWWWWWRWBW"));
    bitmap.SetMultiState(2, 1);
    copies.Take();
    for (const int nState : {-1, 3})
        bitmap.TransparentDraw(&dc, 0, 3, ColorOf('M'), nState);
    EXPECT_EQ(copies.Take().size(), 2u);
}

// A region on white paper, in red.
Picture Painted(HRGN region, int cx, int cy)
{
    const Paper paper(cx, cy, 'W');
    FillRgn(paper, region, Scoped<HBRUSH>(CreateSolidBrush(ColorOf('R'))));
    return paper.Read();
}

TEST_F(Bitmap, RegionOfAColorOrOfTheRest)
{
    bitmap.AttachBitmap(Paper({"CCRR", "CRCR", "CCCC"}).Detach());
    bitmap.SetMultiState(2, 1); // states don't matter
    CRgn rest, key, all;
    bitmap.CreateBitmapRgn(rest, ColorOf('C'), 0);
    EXPECT_THAT(Painted(rest, 5, 4), ElementsAre("WWRRW", "WRWRW", "WWWWW", "WWWWW"));
    bitmap.CreateBitmapRgn(key, ColorOf('C'), 1);
    EXPECT_THAT(Painted(key, 5, 4), ElementsAre("RRWWW", "RWRWW", "RRRRW", "WWWWW"));
    bitmap.CreateBitmapRgn(all, 0x01000000, 0);   // no pixel is of a colour with a high byte
    bitmap.CreateBitmapRgn(all, ColorOf('C'), 0); // has a region: it stays
    CRect box;
    EXPECT_EQ(all.GetRgnBox(&box), SIMPLEREGION);
    EXPECT_EQ(box, CRect(0, 0, 4, 3));
    // The region of a large picture is put together from its pieces in the right order.
    for (const auto& [nWidth, nHeight] : {std::pair{128, 100}, {129, 100}, {4, 1}}) {
        Picture picture = Plain(nWidth, nHeight, 'W');
        for (std::size_t y = 0; y < picture.size(); ++y)
            picture[y][y * 29 % picture[y].size()] = 'R';
        bitmap.AttachBitmap(Paper(picture).Detach());
        CRgn rgn;
        bitmap.CreateBitmapRgn(rgn, ColorOf('R'), 1);
        EXPECT_EQ(Painted(rgn, nWidth, nHeight), picture);
    }
    EXPECT_EQ(Child("RegionChild", {}).Wait(), 0); // there is none without memory
}

TEST_F(Bitmap, LoadsFilesAndForgetsTheOldOne)
{
    const TempDir dir;
    dir.Write("two.bmp", ToBmp({"GR", "RG"}, 1, false, "RG").File());
    EXPECT_EQ(bitmap.LoadBitmapA(dir.Win("two.bmp")), 1);
    EXPECT_EQ(bitmap.GetBITMAP().bmBitsPixel, 1);
    unsigned char rows[8];
    EXPECT_EQ(bitmap.GetBits(rows), 2);
    EXPECT_EQ(rows[0], 0x80); // top row first, in its own depth
    EXPECT_EQ(rows[4], 0x40);
    bitmap.Draw(&dc, 0, 0, 0);
    EXPECT_THAT(Read(paper, 0, 0, 3, 2), ElementsAre("GRW", "RGW"));
    EXPECT_EQ(bitmap.LoadBitmapA(dir.Win("none.bmp")), 0);
    EXPECT_EQ(bitmap.GetHBITMAP(), nullptr);
    EXPECT_EQ(bitmap.GetBITMAP().bmWidth, 2); // the record stays
    EXPECT_EQ(bitmap.LoadBitmapA(4711u), 0);
}

using BitmapHandles = LeakTest;

// A move is a copy.
TEST_F(BitmapHandles, EachIsReleasedOnce)
{
    CKXBitmap a;
    a.AttachBitmap(Paper(4, 4).Detach());
    {
        CKXBitmap b = std::move(a);
        EXPECT_EQ(b.GetHBITMAP(), a.GetHBITMAP()); // NOLINT(bugprone-use-after-move)
        b.AttachBitmap(Paper(5, 5).Detach());      // parts from the copy, which keeps its own
        EXPECT_NE(b.GetHBITMAP(), a.GetHBITMAP());
        EXPECT_EQ(a.GetBITMAP().bmWidth, 4);
        a = std::move(b);
        EXPECT_EQ(b.GetHBITMAP(), a.GetHBITMAP()); // NOLINT(bugprone-use-after-move)
        const CKXBitmap& same = a;
        a = same;
    }
    EXPECT_EQ(a.GetBITMAP().bmWidth, 5);
    const HBITMAP hBitmap = a.DetachBitmap();
    EXPECT_NE(hBitmap, nullptr);
    EXPECT_EQ(a.GetHBITMAP(), nullptr);
    EXPECT_EQ(a.DetachBitmap(), nullptr);
    a.AttachBitmap(hBitmap);
    a.AttachBitmap(hBitmap); // its own: kept
    EXPECT_EQ(a.GetHBITMAP(), hBitmap);
    a.AttachBitmap(nullptr);
    EXPECT_EQ(a.GetHBITMAP(), nullptr);
    EXPECT_EQ(DeleteObject(hBitmap), 0); // gone already
}

struct Client : CKXBitmap
{
    using CKXBitmap::CreateBitmapDC, CKXBitmap::DeleteBitmap, CKXBitmap::DeleteBitmapDC;
};

// Whatever a copy loads, attaches, empties or is assigned, and when it ends: the others still draw theirs.
TEST_F(BitmapHandles, CopiesLeaveTheSharedBitmapAlone)
{
    const Paper paper(2, 1, 'W');
    Client bitmap;
    bitmap.AttachBitmap(Paper({"RG"}).Detach());
    const std::pair<const char*, std::function<void(Client&)>> acts[] = {
        {"the end of a copy", [](Client&) {}},
        {"an attach", [](Client& copy) { copy.AttachBitmap(Paper({"BB"}).Detach()); }},
        {"a load that fails", [](Client& copy) { copy.LoadBitmapA("C:\\none.bmp"); }},
        {"an end of the copy's bitmap", [](Client& copy) { copy.DeleteBitmap(); }},
        {"an assignment", [](Client& copy) { copy = Client(); }},
    };
    for (const auto& [pszAfter, act] : acts) {
        {
            Client copy = bitmap;
            act(copy);
        }
        CDC::FromHandle(paper)->FillSolidRect(0, 0, 2, 1, ColorOf('W'));
        bitmap.Draw(CDC::FromHandle(paper), 0, 0, 0);
        EXPECT_THAT(paper.Read(), ElementsAre("RG")) << pszAfter;
    }
}

TEST_F(BitmapHandles, StepsAreOpenToDerivedClasses)
{
    Client client;
    const HDC hDC = client.GetHDC();
    client.CreateBitmapDC();
    EXPECT_EQ(client.GetHDC(), hDC); // there already
    client.AttachBitmap(Paper(3, 3).Detach());
    client.DeleteBitmap();
    EXPECT_EQ(client.GetHBITMAP(), nullptr);
    EXPECT_EQ(client.GetHDC(), hDC);
    client.AttachBitmap(Paper(3, 3).Detach());
    const CKXBitmap copy = client;
    client.DeleteBitmapDC();
    EXPECT_EQ(client.GetHDC(), nullptr);
    client.Draw(nullptr, 0, 0, 0);
    client.CreateBitmapDC();
    client.AttachBitmap(Paper(3, 3).Detach());
    EXPECT_NE(client.GetHDC(), nullptr);
}

TEST_F(BitmapHandles, EachLoadEndsTheOneBefore)
{
    const TempDir dir;
    const std::string bmp = ToBmp({"RGB", "WKM"}, 8).File();
    dir.Write("image.bmp", bmp);
    const LinkedIn resources({{"BITMAP/101", bmp}});
    CKXBitmap bitmap;
    bitmap.AttachBitmap(Paper(1, 1).Detach());
    DeleteObject(bitmap.DetachBitmap());
    CRgn rgn; // the first one of it stays
    for (int n = 0; n < 2; ++n) {
        EXPECT_EQ(bitmap.LoadBitmapA(101u), 1);
        EXPECT_EQ(bitmap.DetachBitmap(), nullptr); // what wasn't attached stays
        bitmap.CreateBitmapRgn(rgn, 0, n);
        EXPECT_EQ(bitmap.LoadBitmapA(dir.Win("image.bmp")), 1);
        EXPECT_EQ(bitmap.LoadBitmapA(102u), 0);
        EXPECT_EQ(bitmap.LoadBitmapA(0x10000u + 101), 1); // 16 bits count
    }
}

} // namespace
