#include "KXGdiplusImage.h"
#include "platform/Module.h"
#include "tests/draw/Pictures.h"
#include "tests/platform/module/Bundles.h"

using namespace test;
using testing::ElementsAre;

namespace {

struct GdiplusImage : PictureTest
{
    void Load(const Picture& picture) { EXPECT_EQ(LoadBytes(image, File(picture)), 1); }

    CKXGdiplusImage image;
    Gdiplus::Graphics graphics{paper};
};

TEST_F(GdiplusImage, LoadsResourcesAndStreams)
{
    const NoLeak noLeak;
    const std::string file = File({"RG", "BM"});
    const HMODULE hModule = LoadLibraryA(
        KXHost::FromSystemPath(CompileBundle(dir, {{"IMAGE/7", file}, {"IMAGE/8", "no picture"}})));
    AfxSetResourceHandle(hModule);
    EXPECT_EQ(image.Load(0x10007u), 1); // 16 bits count
    EXPECT_EQ(image.Load(9u), 0);       // none: the old one stays
    EXPECT_THAT(Shown(image), ElementsAre("RG", "BM"));
    EXPECT_EQ(image.Load(8u), 0); // no picture: the old one is gone
    EXPECT_EQ(image.IsValid(), 1);
    EXPECT_EQ(image.GetImageSize(), CSize(0, 0));
    AfxSetResourceHandle(nullptr);
    FreeLibrary(hModule);

    IStream* pStream = nullptr;
    CreateStreamOnHGlobal(nullptr, 1, &pStream);
    pStream->Write(file.data(), static_cast<ULONG>(file.size()), nullptr);
    EXPECT_EQ(image.Load(pStream), 1);
    const int nHandles = KXHost::LiveHandles();
    image.Free();
    EXPECT_EQ(image.Load(pStream), 1);
    EXPECT_EQ(KXHost::LiveHandles(), nHandles); // the load before had ended the old one's block
    EXPECT_GT(pStream->AddRef(), 2u);           // the picture holds it
    EXPECT_THAT(Shown(image), ElementsAre("RG", "BM"));
    image.Free();
    pStream->Release();
    EXPECT_EQ(pStream->Release(), 0u);
}

TEST_F(GdiplusImage, FailedLoadsKeepOrDropTheOldOne)
{
    BYTE byte = 0;
    dir.Write("a.bmp", File({"RGB"}));
    EXPECT_EQ(image.Load(dir.Win("a.bmp")), 1);
    dir.Write("a.bmp", "no picture");
    dir.Write("large.bmp", File({"RGB"}));
    std::filesystem::resize_file(dir.Path("large.bmp"), Gdiplus::MAX_IMAGE_BYTES + 1);
    {
        const DebugText text(true);
        EXPECT_EQ(image.Load(dir.Win("none.png")), 0);
        EXPECT_EQ(image.Load(dir.Win("large.bmp")), 0);
        EXPECT_EQ(text.Text(), "picture: " + std::string(dir.Win("none.png")) +
                                   " can't be opened; there is no new picture\npicture: " +
                                   std::string(dir.Win("large.bmp")) +
                                   " is refused: it is too large; there is no new picture\n");
    }
    EXPECT_EQ(image.Load(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(image.Load(dir.Win()), 0); // a directory
    EXPECT_EQ(image.Load(&byte, ULONG_MAX), 0);
    EXPECT_EQ(image.Load(nullptr, 0), 0);
    EXPECT_EQ(image.Load(1234u), 0);
    EXPECT_THAT(Shown(image), ElementsAre("RGB"));
    EXPECT_EQ(image.Load(dir.Win("a.bmp")), 1);
    EXPECT_EQ(image.GetImage()->GetLastStatus(), Gdiplus::UnknownImageFormat);
    EXPECT_EQ(image.GetImageSize(), CSize(0, 0));
    dir.Write("a.bmp", "GIF89a"); // nothing but a picture's first bytes
    EXPECT_EQ(image.Load(dir.Win("a.bmp")), 1);
    Load({"RGB"});
    EXPECT_EQ(image.Load(static_cast<IStream*>(nullptr)), 0);
    EXPECT_EQ(image.GetImageSize(), CSize(0, 0));
    EXPECT_EQ(image, 1);
    image.Free();
    EXPECT_EQ(image, 0);
}

TEST_F(GdiplusImage, RendersAtAPlaceOrIntoARectangle)
{
    Load({"RR", "RR"});
    EXPECT_EQ(Drawn([&] { image.Render(&dc, CRect()); }), Block(0, 0, 2, 2)); // all 0: natural
    EXPECT_EQ(Drawn([&] { image.Render(graphics, CRect()); }), Block(0, 0, 2, 2));
    EXPECT_EQ(Drawn([&] { image.Render(graphics, CPoint(-1, 2)); }), Block(0, 2, 1, 4));
    EXPECT_EQ(Drawn([&] { image.Render(&dc, CRect(2, 1, 6, 4)); }), Block(2, 1, 6, 4));
    EXPECT_EQ(Drawn([&] { image.Render(&dc, CRect(0, 0, 0, 5)); }), Block(0, 0, 0, 0));
    image.Render(static_cast<CDC*>(nullptr), CRect());
    Load(Plain(8, 4));
    EXPECT_EQ(Drawn([&] { image.FixRender(&dc, CRect(2, 0, 6, 4)); }), Block(2, 1, 6, 3));
    EXPECT_EQ(Drawn([&] { image.FixRender(graphics, CRect(2, 0, 6, 4)); }), Block(2, 1, 6, 3));
    EXPECT_EQ(Drawn([&] { image.FixRender(&dc, CRect()); }), Block(0, 0, 8, 4)); // no room at all: natural
    CRect rc(0, 0, 11, 7);
    image.GetFixRenderRect(rc);
    EXPECT_EQ(rc, CRect(1, 1, 9, 5));
    EXPECT_EQ(Drawn([&] { image.PaveRender(&dc, CRect(1, 2, 4, 4)); }), Block(1, 2, 8, 6));
    EXPECT_EQ(Drawn([&] { image.PaveRender(graphics, CRect(1, 2, 4, 4)); }), Block(1, 2, 8, 6));
}

TEST_F(GdiplusImage, RotationIsSharedAndReplacingIsNot)
{
    const NoLeak noLeak;
    Load({"RGB", "CMY"});
    {
        CKXGdiplusImage copy = image;
        copy.Rotate(Gdiplus::Rotate90FlipNone);
        EXPECT_THAT(Shown(image), ElementsAre("CR", "MG", "YB"));
        EXPECT_EQ(copy.ToThumbnailImage(1, 9), 1);
        EXPECT_EQ(copy.GetImageSize(), CSize(1, 1));
        copy = image;
        copy = *&copy;
        image.Free();
        EXPECT_THAT(Shown(copy), ElementsAre("CR", "MG", "YB")); // its block lives
        image = copy;
        LoadBytes(copy, "no picture");
    }
    EXPECT_THAT(Shown(image), ElementsAre("CR", "MG", "YB"));
    image.Free();
}

TEST_F(GdiplusImage, GivesItselfAsJpegAndInGrey)
{
    const std::pair<char, int> cases[] = {{'R', 77}, {'G', 150}, {'B', 28}}; // 255 times 0.3, 0.59, 0.11
    BYTE* pData = nullptr;
    int nSize = -1;
    for (const auto& [letter, nGrey] : cases) {
        Load(Plain(8, 4, letter));
        EXPECT_EQ(image.SaveGrayPic(dir.Win("grey.png")), 1);
        EXPECT_THAT(dir.Read("grey.png"), testing::StartsWith("\xFF\xD8")); // whatever the name says
        image.Load(dir.Win("grey.png"));
        ASSERT_EQ(image.GetImageData(&pData, nSize), 1);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(pData), 2), "\xFF\xD8");
        EXPECT_EQ(image.Load(pData, static_cast<unsigned long>(nSize)), 1);
        delete[] pData;
        EXPECT_EQ(image.GetImageSize(), CSize(8, 4));
        Drawn([&] { image.Render(&dc, CRect()); });
        for (const COLORREF clr : {dc.GetPixel(0, 0), dc.GetPixel(7, 3)})
            for (const int nChannel : {GetRValue(clr), GetGValue(clr), GetBValue(clr)})
                EXPECT_NEAR(nChannel, nGrey, 2) << letter;
    }
    EXPECT_EQ(image.GetImageData(nullptr, nSize), 0);
    EXPECT_EQ(image.SaveGrayPic(dir.Win("none\\grey.jpg")), 0);
    LoadBytes(image, "no picture");
    EXPECT_EQ(image.SaveGrayPic(dir.Win("b.jpg")), 0);
    EXPECT_FALSE(dir.Exists("b.jpg"));
    EXPECT_EQ(image.GetImageData(&pData, nSize), 1); // the encoding's status is not looked at
    EXPECT_EQ(nSize, 0);
    delete[] pData;
}

TEST_F(GdiplusImage, ShrinksToFitAndSavesThumbnails)
{
    const std::tuple<CSize, CSize, int, CSize> cases[] = {
        {{400, 200}, {100, 100}, 1, {100, 50}},
        {{200, 400}, {100, 100}, 1, {50, 100}},
        {{100, 80}, {100, 100}, 1, {100, 80}},
        {{4, 4}, {3, 3}, 1, {2, 3}},
        {{300, 1}, {100, 100}, 0, {300, 1}}, // no whole pixel is left
        {{9, 9}, {0, 0}, 0, {9, 9}},
        {{9, 9}, {-5, -5}, 0, {9, 9}},
    };
    for (const auto& [size, max, nResult, now] : cases) {
        Load(Plain(size.cx, size.cy));
        EXPECT_EQ(image.ToThumbnailImage(max.cx, max.cy), nResult) << size.cx << " to " << max.cx;
        EXPECT_EQ(image.GetImageSize(), now);
    }
    KXHost::TakeMessageBoxes();
    Load(Plain(20, 10));
    EXPECT_EQ(image.SaveThumbnailImage(dir.Win("a"), 3, 2, "image/png"), 1);
    EXPECT_EQ(image.SaveThumbnailImage(dir.Win("b"), 3, 4, "image/no"), 0);
    EXPECT_EQ(image.SaveThumbnailImage(dir.Win("b"), -3, 4, "image/png"), 0);
    EXPECT_FALSE(dir.Exists("b"));
    image.Load(dir.Win("a"));
    EXPECT_THAT(Shown(image), ElementsAre("RRR", "RRR"));
    EXPECT_TRUE(KXHost::TakeMessageBoxes().empty());
}

TEST_F(GdiplusImage, EmptyObjectsDoNothingAndSayThatTheyHaveNoImageToSave)
{
    CRect rc(1, 2, 30, 40);
    BYTE* pData = nullptr;
    int nSize = 7;
    image.Rotate(Gdiplus::Rotate90FlipNone);
    image.Render(graphics, CPoint(0, 0));
    image.FixRender(&dc, CRect());
    image.PaveRender(&dc, rc);
    image.GetFixRenderRect(rc);
    EXPECT_EQ(rc, CRect(1, 2, 30, 40));
    EXPECT_EQ(image.GetImageSize(), CSize(0, 0));
    EXPECT_EQ(image.GetImageData(&pData, nSize), 0);
    EXPECT_EQ(image.SaveGrayPic(dir.Win("a")), 0);
    EXPECT_EQ(image.ToThumbnailImage(1, 1), 0);
    EXPECT_EQ(image.SaveThumbnailImage(dir.Win("b"), 3, 4, "image/png"), 0);
    EXPECT_THAT(KXHost::TakeMessageBoxes(),
                ElementsAre(testing::Field(&KXHost::MessageBoxRecord::strText, szNoImage)));
}

} // namespace
