#include "KXGdiplusBitmap.h"
#include "platform/MessageBox.h"
#include "tests/draw/Pictures.h"

using namespace test;
using testing::ElementsAre;

namespace {

TEST(GdiplusEncoder, IsUnknownBeforeTheStart)
{
    GUID clsid{};
    EXPECT_EQ(
        CKXGdiplusBitmap::GetEncoderClsid(reinterpret_cast<const unsigned short*>(u"image/gif"), &clsid), -1);
}

struct GdiplusBitmap : PictureTest
{
    // Raw pixels.
    static void LoadRaw(CKXGdiplusBitmap& loaded, const Picture& picture, DWORD dwAlpha = 0)
    {
        std::vector<DWORD> pixels;
        for (const std::string& row : picture)
            for (const char letter : row)
                pixels.push_back(PixelOf(letter) | dwAlpha);
        loaded.Load(picture[0].size(), picture.size(), pixels.data());
    }

    CKXGdiplusBitmap bitmap;
};

TEST_F(GdiplusBitmap, FitsIntoTheMiddleOfARectangleAtMostAtItsSize)
{
    const std::tuple<CSize, CRect, CRect> cases[] = {
        {{50, 30}, {10, 10, 110, 110}, {35, 45, 85, 75}}, // fits: natural size
        {{3, 4}, {0, 0, 10, 5}, {3, 0, 6, 4}},            // halves are rounded down
        {{400, 200}, {0, 0, 100, 100}, {0, 25, 100, 75}},
        {{200, 400}, {0, 0, 100, 100}, {25, 0, 75, 100}},
        {{200, 200}, {0, 0, 100, 100}, {0, 0, 100, 100}},
        {{4, 4}, {0, 0, 3, 3}, {0, 0, 2, 3}}, // 4 / 1.3333334 is just below 3
        {{12, 8}, {20, 30, 29, 36}, {20, 30, 28, 36}},
        {{60, 1}, {0, 0, 30, 9}, {0, 4, 30, 4}},   // no whole pixel is left
        {{10, 10}, {5, 5, 5, 25}, {5, 15, 5, 15}}, // no width, no height
        {{10, 10}, {5, 5, 25, 5}, {15, 5, 15, 5}},
        {{20, 20}, {10, 10, 0, 0}, {10, 10, 0, 0}}, // turned around
        {{20, 5}, {9, 0, 0, 20}, {-35, 0, 45, 20}},
        {{2, 2}, {INT_MIN, INT_MIN, -1, -1}, {-1073741826, -1073741826, -1073741824, -1073741824}},
    };
    for (const auto& [size, rc, fit] : cases) {
        LoadRaw(bitmap, Plain(size.cx, size.cy));
        EXPECT_EQ(bitmap.GetFitRenderRect(rc), fit) << size.cx << "x" << size.cy << " in " << rc.left;
    }
    for (const int nSide : {INT_MIN, INT_MAX, -1, 0})
        bitmap.GetFitRenderRect(CRect(nSide, 0, 0, nSide)); // ends
    bitmap.Load("C:\\none.png");                            // 0 by 0
    EXPECT_EQ(bitmap.GetFitRenderRect(CRect(0, 10, 100, 60)), CRect(50, 35, 50, 35));
    EXPECT_EQ(bitmap.GetFitRenderRect(CRect(10, 10, 0, 60)), CRect(5, 10, 5, 60));
}

TEST_F(GdiplusBitmap, BlocksIncludeOrExcludeTheirLastPixels)
{
    LoadRaw(bitmap, Plain(2, 2));
    Gdiplus::Graphics graphics(paper);
    EXPECT_EQ(Drawn([&] { EXPECT_EQ(bitmap.Render(&dc, 1, 2, 4, 3), 1); }), Block(1, 2, 5, 4));
    EXPECT_EQ(Drawn([&] { EXPECT_EQ(bitmap.Render(&graphics, 1, 2, 4, 3), 1); }), Block(1, 2, 5, 4));
    EXPECT_EQ(Drawn([&] { EXPECT_EQ(bitmap.Render(&dc, CRect(1, 2, 4, 4)), 1); }), Block(1, 2, 4, 4));
    EXPECT_EQ(Drawn([&] { EXPECT_EQ(bitmap.Render(&dc, 1, 2), 1); }), Block(1, 2, 3, 4));
    EXPECT_EQ(Drawn([&] { bitmap.Render(&dc, 1, 1, 0, 0); }), Block(0, 0, 0, 0));
    EXPECT_EQ(bitmap.Render(static_cast<CDC*>(nullptr), 0, 0), 0);
    EXPECT_EQ(bitmap.Render(static_cast<Gdiplus::Graphics*>(nullptr), 0, 0, 1, 1), 0);
}

TEST_F(GdiplusBitmap, FitRenderOutlines)
{
    LoadRaw(bitmap, Plain(4, 3));
    const HGDIOBJ hBrush = SelectObject(paper, GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(Drawn([&] { EXPECT_EQ(bitmap.FitRender(&dc, CRect(0, 0, 8, 5)), 1); }),
              (Picture{"WWWWWWWW", "WW....WW", "WW.RR.WW", "WW....WW", "WWWWWWWW", "WWWWWWWW"}));
    EXPECT_EQ(SelectObject(paper, hBrush), GetStockObject(NULL_BRUSH));
    bitmap.Free();
    EXPECT_EQ(bitmap.FitRender(&dc, CRect(0, 0, 8, 5)), 0);
    EXPECT_EQ(SelectObject(paper, hBrush), hBrush); // left alone
}

TEST_F(GdiplusBitmap, PavesPastTheEdgesWhatCanBeSeen)
{
    LoadRaw(bitmap, {"RGB", "CMY"});
    EXPECT_EQ(Drawn([&] { bitmap.PaveRender(&dc, CRect(1, 1, 5, 4)); }),
              (Picture{"WWWWWWWW", "WRGBRGBW", "WCMYCMYW", "WRGBRGBW", "WCMYCMYW", "WWWWWWWW"}));
    EXPECT_EQ(Drawn([&] { bitmap.PaveRender(&dc, CRect(7, 5, 7, 9)); }), Block(0, 0, 0, 0));
    // INT_MIN is even, and 1 past a multiple of 3.
    EXPECT_EQ(Drawn([&] { bitmap.PaveRender(&dc, CRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX)); }),
              (Picture{"BRGBRGBR", "YCMYCMYC", "BRGBRGBR", "YCMYCMYC", "BRGBRGBR", "YCMYCMYC"}));
    CRgn clip;
    clip.CreateRectRgn(2, 2, 4, 3);
    dc.SelectClipRgn(&clip);
    bitmap.Load("C:\\none.png"); // gives no step
    bitmap.PaveRender(&dc, CRect(0, 0, 9, 9));
    LoadRaw(bitmap, {"M"});
    bitmap.PaveRender(&dc, CRect(0, 0, 9, 9));
    bitmap.PaveRender(nullptr, CRect(0, 0, 9, 9));
    dc.SelectClipRgn(nullptr);
    EXPECT_THAT(Read(paper, 1, 1, 5, 4), ElementsAre("CMYC", "RMMR", "CMYC"));
}

TEST_F(GdiplusBitmap, RawPixelsAreCopied)
{
    std::vector<DWORD> pixels{0xFF0000, 0x00FF00, 0x0000FF}; // the high bytes count for nothing
    bitmap.Load(3, 1, pixels.data());
    std::fill(pixels.begin(), pixels.end(), 0u);
    EXPECT_THAT(Shown(bitmap), ElementsAre("RGB"));
    constexpr unsigned long nMax = Gdiplus::MAX_IMAGE_SIDE;
    for (const auto& [nWidth, nHeight] : {std::pair{nMax + 1, 1ul}, {ULONG_MAX, ULONG_MAX}, {nMax, nMax}}) {
        bitmap.Load(3, 1, pixels.data());
        bitmap.Load(nWidth, nHeight, pixels.data()); // refused before a pixel is read
        EXPECT_EQ(bitmap.IsValid(), 0);
    }
    pixels.resize(nMax);
    for (const auto& [nWidth, nHeight] : {std::pair{nMax, 1ul}, {1ul, nMax}}) {
        bitmap.Load(nWidth, nHeight, pixels.data());
        EXPECT_EQ(bitmap.IsValid(), 1);
    }
    bitmap.Load(3, 1, pixels.data());
    bitmap.Load(0, 0, nullptr);
    EXPECT_EQ(bitmap.IsValid(), 0);
    unsigned long nWidth = 0, nHeight = 0;
    bitmap.GetImageSize(nWidth, nHeight); // stays
    EXPECT_EQ(nWidth, 3u);
    EXPECT_EQ(nHeight, 1u);
}

TEST_F(GdiplusBitmap, LoadsFilesAndForgetsTheOldOne)
{
    dir.Write("\xE4\xB8\xAD.bmp", File({"RG", "BM"}));
    for (const char* pszBad : {"C:\\none.png", "", static_cast<const char*>(nullptr)}) {
        bitmap.Load(dir.Win("\xD6\xD0.bmp")); // a GBK name
        EXPECT_THAT(Shown(bitmap), ElementsAre("RG", "BM"));
        bitmap.Load(pszBad);
        EXPECT_EQ(bitmap.IsValid(), 1); // an object without a picture
        EXPECT_EQ(bitmap.GetImageSize(), CSize(0, 0));
        EXPECT_EQ(bitmap.Render(&dc, 0, 0), 1);
        EXPECT_EQ(bitmap.SaveToFile(dir.Win("saved.png"), "image/png"), 0);
    }
}

TEST_F(GdiplusBitmap, LoadsMemoryAndBitmapHandles)
{
    BYTE byte = 0;
    EXPECT_EQ(LoadBytes(bitmap, File({"RGB"})), 1);
    EXPECT_EQ(bitmap.Load(&byte, ULONG_MAX), 0);
    EXPECT_EQ(bitmap.Load(nullptr, 0), 0);
    EXPECT_THAT(Shown(bitmap), ElementsAre("RGB")); // kept
    EXPECT_EQ(LoadBytes(bitmap, "no picture"), 1);
    EXPECT_EQ(bitmap.GetImageSize(), CSize(0, 0));
    const Paper source({"RGB", "CMY"});
    EXPECT_THAT(Shown(CKXGdiplusBitmap(source.Bitmap())), ElementsAre("RGB", "CMY"));
    EXPECT_EQ(CKXGdiplusBitmap(static_cast<HBITMAP>(nullptr)).IsValid(), 1);
}

TEST_F(GdiplusBitmap, CopiesHavePixelsOfTheirOwnOrShareThePicture)
{
    const NoLeak noLeak;
    CKXGdiplusBitmap source;
    LoadRaw(source, {"RG"}, 0xFF000000);
    CKXGdiplusBitmap copy(source);
    source.Free();
    EXPECT_THAT(Shown(copy), ElementsAre("RG"));
    LoadRaw(source, {"RGB"}); // the high bytes are opacity in a copy
    copy = source;
    EXPECT_THAT(Shown(copy), ElementsAre("WWW"));
    copy = *&copy;
    LoadBytes(source, File({"RGBM"}));
    EXPECT_EQ(CKXGdiplusBitmap(source).IsValid(), 0); // neither has pixels of its own
    copy = source;
    LoadRaw(source, {"Y"});
    EXPECT_EQ(CKXGdiplusBitmap(copy).IsValid(), 0); // nor has it any left
    EXPECT_THAT(Shown(copy), ElementsAre("RGBM"));  // still reads its block
    source = CKXGdiplusBitmap();
    EXPECT_EQ(source.IsValid(), 0);
}

TEST_F(GdiplusBitmap, SavesUnderAMimeType)
{
    LoadRaw(bitmap, {"RGB", "CMY"});
    CKXGdiplusBitmap saved;
    for (const char* pszMime : {"image/png", "image/bmp", "image/tiff", "image/gif"}) {
        EXPECT_EQ(bitmap.SaveToFile(dir.Win("saved"), pszMime), 1) << pszMime;
        saved.Load(dir.Win("saved"));
        EXPECT_THAT(Shown(saved), ElementsAre("RGB", "CMY")) << pszMime;
    }
    for (const char* pszMime : {"", "image/pn", "IMAGE/PNG", "image/png "})
        EXPECT_EQ(bitmap.SaveToFile(dir.Win("not.png"), pszMime), 0);
    EXPECT_EQ(bitmap.SaveToFile(dir.Win("none\\a.png"), "image/png"), 0);
    EXPECT_FALSE(dir.Exists("not.png"));
    GUID clsid{};
    const auto* pszGif = reinterpret_cast<const unsigned short*>(u"image/gif");
    EXPECT_GE(CKXGdiplusBitmap::GetEncoderClsid(pszGif, &clsid), 0);
    for (const auto* pszNone : {static_cast<decltype(pszGif)>(nullptr), pszGif + 1})
        EXPECT_EQ(CKXGdiplusBitmap::GetEncoderClsid(pszNone, &clsid), -1);
    EXPECT_EQ(CKXGdiplusBitmap::GetEncoderClsid(pszGif, nullptr), -1);
}

TEST_F(GdiplusBitmap, SavesThumbnailsToFilesAndBuffers)
{
    LoadRaw(bitmap, Plain(20, 10));
    EXPECT_EQ(bitmap.ThumbnailImage(dir.Win("a.png"), 5, 6), 1);
    EXPECT_THAT(dir.Read("a.png"), testing::StartsWith("\xFF\xD8")); // always a JPEG
    EXPECT_EQ(bitmap.ThumbnailImage(dir.Win("none\\a.jpg"), 5, 6), 0);
    CKXGdiplusBitmap small;
    small.Load(dir.Win("a.png"));
    EXPECT_EQ(small.GetImageSize(), CSize(5, 6));
    BYTE* pData = nullptr;
    int nSize = -1;
    EXPECT_EQ(bitmap.ThumbnailImage(nullptr, nSize, 3, 2), 0);
    EXPECT_EQ(bitmap.ThumbnailImage(&pData, nSize, 3, 2), 1);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(pData), 2), "BM");
    EXPECT_EQ(small.Load(pData, static_cast<unsigned long>(nSize)), 1);
    delete[] pData;
    EXPECT_THAT(Shown(small), ElementsAre("RRR", "RRR"));
    EXPECT_EQ(bitmap.ThumbnailImage(&pData, nSize, -3, 2), 1); // the saving's status is not looked at
    EXPECT_EQ(nSize, 0);
    delete[] pData;
}

TEST_F(GdiplusBitmap, EmptyObjectsDrawNothingAndSayThatTheyHaveNoImageToSave)
{
    BYTE* pData = nullptr;
    int nSize = 7;
    EXPECT_EQ(bitmap.Render(&dc, CRect(0, 0, 3, 3)), 0);
    bitmap.PaveRender(&dc, CRect(0, 0, 9, 9));
    EXPECT_EQ(paper.Read(), Block(0, 0, 0, 0));
    EXPECT_TRUE(KXHost::TakeMessageBoxes().empty());
    EXPECT_EQ(bitmap.SaveToFile(dir.Win("a.png"), "no/type"), 0);
    EXPECT_EQ(bitmap.ThumbnailImage(dir.Win("a.jpg"), 5, 5), 0);
    EXPECT_EQ(bitmap.ThumbnailImage(&pData, nSize, 5, 5), 0);
    EXPECT_EQ(nSize, 7);
    const auto noImage = testing::FieldsAre(szNoImage, MB_OK, 0u);
    EXPECT_THAT(KXHost::TakeMessageBoxes(), ElementsAre(noImage, noImage, noImage));
}

} // namespace
