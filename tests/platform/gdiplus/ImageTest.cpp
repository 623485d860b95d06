#include "tests/platform/gdiplus/Images.h"

#include <numeric>

namespace {

using namespace test;

using ImageTest = DrawingTest;

TEST(ImageStart, NothingWorksBeforeTheStartOrAfterTheLastShutdown)
{
    const NoLeak noLeak;
    std::uintptr_t first = 0, second = 0;
    GdiplusStartupInput input;
    EXPECT_EQ(GdiplusStartup(nullptr, &input, nullptr), InvalidParameter);
    EXPECT_EQ(GdiplusStartup(&first, nullptr, nullptr), InvalidParameter);
    input.GdiplusVersion = 2;
    EXPECT_EQ(GdiplusStartup(&first, &input, nullptr), UnsupportedGdiplusVersion);
    input.GdiplusVersion = 1;
    EXPECT_EQ(LoadStatus(kRed), GdiplusNotInitialized);
    EXPECT_EQ(GdiplusStartup(&first, &input, nullptr), Ok);
    EXPECT_EQ(GdiplusStartup(&second, &input, nullptr), Ok);
    EXPECT_NE(first, second);
    GdiplusShutdown(first);
    GdiplusShutdown(first);
    EXPECT_EQ(LoadStatus(kRed), Ok);
    const int nBefore = KXHost::LiveHandles();
    const auto bitmap = std::make_unique<Bitmap>(1, 1);
    const Paper paper(1, 1, 'W');
    const HDC dc = paper;
    Graphics graphics(dc);
    const LinearGradientBrush brush({0, 0}, {1, 0}, Color(Gray(0)), Color(Gray(0)));
    GraphicsPath path;
    path.AddRectangle(0, 0, 1, 1);
    const PathGradientBrush pathBrush(&path);
    const Gdiplus::Pen pen(Color(Gray(0)));
    const ImageAttributes attributes;
    const Scoped<HRGN> rgn(CreateRectRgn(0, 0, 1, 1));
    const Gdiplus::Region region(rgn);
    EXPECT_EQ(KXHost::LiveHandles(), nBefore + 11); // of GDI's the surface with its bitmap and the region
    GdiplusShutdown(second);

    GpImage* const image = bitmap->Native();
    const CLSID clsid{};
    GUID guid{};
    UINT n = 77;
    ARGB color = 77;
    PropertyItem item{};
    GpImage* none = image;
    for (const Status status :
         {LoadStatus(kRed), GdipGetImageWidth(image, &n), GdipGetImageHeight(image, &n),
          GdipBitmapGetPixel(reinterpret_cast<GpBitmap*>(image), 0, 0, &color),
          GdipBitmapSetPixel(reinterpret_cast<GpBitmap*>(image), 0, 0, color),
          GdipImageRotateFlip(image, Rotate90FlipNone), GdipImageGetFrameDimensionsCount(image, &n),
          GdipGetImageThumbnail(image, 1, 1, &none, nullptr, nullptr), GdipGetImageEncodersSize(&n, &n),
          GdipImageGetFrameDimensionsList(image, &guid, 1), GdipGetPropertyItem(image, 0, n, &item),
          GdipImageGetFrameCount(image, &guid, &n), GdipImageSelectActiveFrame(image, &guid, 0),
          GdipGetPropertyItemSize(image, 0, &n), GdipSaveImageToFile(image, u"C:\\x", &clsid, nullptr),
          bitmap->Save(u"C:\\x", &clsid)})
        EXPECT_EQ(status, GdiplusNotInitialized);
    for (const Status status :
         {graphics.FillRectangle(&brush, 0, 0, 1, 1), graphics.FillRegion(&brush, &region),
          graphics.DrawRectangle(&pen, 0, 0, 1, 1), path.AddRectangle(0, 0, 1, 1),
          Graphics(dc).GetLastStatus(), GraphicsPath().GetLastStatus(),
          LinearGradientBrush({0, 0}, {1, 0}, Color(0), Color(0)).GetLastStatus(),
          PathGradientBrush(&path).GetLastStatus(), Gdiplus::Pen(Color(0)).GetLastStatus(),
          ImageAttributes().GetLastStatus(), Gdiplus::Region(rgn).GetLastStatus()})
        EXPECT_EQ(status, GdiplusNotInitialized);
    EXPECT_EQ(paper.Read(), Picture{"W"});
    EXPECT_EQ(n, 77u);
    EXPECT_EQ(color, 77u);
    EXPECT_EQ(none, nullptr);
} // the bitmap ends all the same

TEST_F(ImageTest, NullsAreRefused)
{
    const Loaded red(kRed);
    GpImage* made = red;
    GpBitmap* bitmap = nullptr;
    UINT n = 0;
    ARGB color = 0;
    GUID guid{};
    PropertyItem item{};
    const CLSID png = EncoderOf(u"png");
    std::array<ImageCodecInfo, 5> codecs;
    for (const Status status :
         {GdipLoadImageFromFile(nullptr, &made), GdipLoadImageFromFile(u"x", nullptr),
          GdipLoadImageFromStream(nullptr, &made), GdipLoadImageFromStreamICM(nullptr, &made),
          GdipCreateBitmapFromFile(nullptr, &bitmap), GdipCreateBitmapFromStream(nullptr, &bitmap),
          GdipCreateBitmapFromHBITMAP(nullptr, nullptr, &bitmap), GdipDisposeImage(nullptr),
          GdipGetImageWidth(nullptr, &n), GdipGetImageWidth(red, nullptr),
          GdipBitmapGetPixel(nullptr, 0, 0, &color), GdipBitmapGetPixel(red.Bitmap(), 0, 0, nullptr),
          GdipBitmapGetPixel(red.Bitmap(), 1, 0, &color), GdipBitmapSetPixel(red.Bitmap(), 0, -1, 0),
          GdipImageRotateFlip(nullptr, Rotate90FlipNone), GdipSaveImageToStream(red, nullptr, &png, nullptr),
          GdipSaveImageToFile(red, u"x", nullptr, nullptr), GdipSaveImageToFile(nullptr, u"x", &png, nullptr),
          GdipImageGetFrameDimensionsCount(red, nullptr)})
        EXPECT_EQ(status, InvalidParameter);
    for (const Status status :
         {GdipImageGetFrameDimensionsCount(nullptr, &n), GdipBitmapGetPixel(red.Bitmap(), 0, 1, &color),
          GdipBitmapSetPixel(red.Bitmap(), -1, 0, 0), GdipImageGetFrameDimensionsList(nullptr, &guid, 1),
          GdipImageGetFrameDimensionsList(red, nullptr, 1), GdipImageGetFrameCount(red, nullptr, &n),
          GdipImageGetFrameCount(nullptr, &FrameDimensionPage, &n), GdipGetPropertyItemSize(nullptr, 0, &n),
          GdipImageGetFrameCount(red, &FrameDimensionPage, nullptr), GdipGetPropertyItemSize(red, 0, nullptr),
          GdipGetPropertyItem(nullptr, 0, 0, &item), GdipGetPropertyItem(red, 0, 0, nullptr),
          GdipGetImageThumbnail(nullptr, 1, 1, &made, nullptr, nullptr),
          GdipGetImageEncodersSize(nullptr, &n), GdipGetImageEncodersSize(&n, nullptr),
          GdipGetImageEncoders(5, sizeof codecs, nullptr),
          GdipGetImageEncoders(6, sizeof codecs, codecs.data())})
        EXPECT_EQ(status, InvalidParameter);
    EXPECT_EQ(made, nullptr);
}

TEST_F(ImageTest, AnObjectWithoutAPictureSaysSo)
{
    const Stream stream = MakeStream("no picture");
    Bitmap bitmap(stream.get());
    EXPECT_EQ(bitmap.GetLastStatus(), UnknownImageFormat);
    EXPECT_EQ(bitmap.GetLastStatus(), Ok);
    EXPECT_EQ(bitmap.Native(), nullptr);
    EXPECT_EQ(bitmap.GetWidth(), 0u);
    EXPECT_EQ(bitmap.GetLastStatus(), InvalidParameter);
    EXPECT_EQ(bitmap.RotateFlip(Rotate90FlipNone), InvalidParameter);
    const std::unique_ptr<Image> thumbnail(bitmap.GetThumbnailImage(4, 4));
    EXPECT_EQ(thumbnail->GetLastStatus(), InvalidParameter);
    for (const UINT n : {bitmap.GetHeight(), bitmap.GetFrameDimensionsCount(), bitmap.GetPropertyItemSize(1),
                         bitmap.GetFrameCount(&FrameDimensionPage)})
        EXPECT_EQ(n, 0u);
    Color color(1, 2, 3);
    EXPECT_EQ(bitmap.GetPixel(0, 0, &color), InvalidParameter);
    EXPECT_EQ(color.GetValue(), 0xFF010203);
}

TEST_F(ImageTest, TheCallersPixelsAreReadAndDrawnOnAsTheyAre)
{
    for (const auto& [format, seen] :
         {std::pair{PixelFormat32bppRGB, 0xFF302010}, {PixelFormat32bppARGB, 0x40302010}}) {
        Row memory{1, 2, 0x40302010, 4}; // rows of one pixel, with another behind each
        Bitmap bitmap(1, 2, 8, format, reinterpret_cast<BYTE*>(memory.data()));
        ASSERT_EQ(bitmap.GetLastStatus(), Ok);
        Color color;
        bitmap.GetPixel(0, 1, &color);
        EXPECT_EQ(color.GetValue(), seen);
        bitmap.SetPixel(0, 1, Color(0x80FF0000));
        EXPECT_EQ(memory, (Row{1, 2, 0x80FF0000, 4}));
    }
}

TEST_F(ImageTest, SizesAndStridesThatCantBeAreRefused)
{
    alignas(4) BYTE memory[64] = {};
    for (const auto& [cx, cy] : {std::pair{0, 1}, {1, 0}, {-1, -1}})
        EXPECT_EQ(Bitmap(cx, cy).GetLastStatus(), InvalidParameter) << cx;
    for (const auto& [cx, cy] : {std::pair{32768, 1}, {1, 32768}, {8193, 8192}})
        EXPECT_EQ(Bitmap(cx, cy).GetLastStatus(), OutOfMemory) << cx;
    for (const auto& [cx, cy] : {std::pair{32767, 1}, {1, 32767}, {8192, 8192}})
        EXPECT_EQ(Bitmap(cx, cy, 4 * cx, PixelFormat32bppRGB, memory).GetLastStatus(), Ok) << cx;
    EXPECT_EQ(Bitmap(2, 2, PixelFormat8bppIndexed).GetLastStatus(), NotImplemented);
    EXPECT_EQ(Bitmap(2, 2, 8, PixelFormat24bppRGB, memory).GetLastStatus(), NotImplemented);
    for (const int nStride : {4, 10, -8, INT32_MIN})
        EXPECT_EQ(Bitmap(2, 2, nStride, PixelFormat32bppRGB, memory).GetLastStatus(), InvalidParameter);
    EXPECT_EQ(Bitmap(2, 2, 8, PixelFormat32bppRGB, memory + 1).GetLastStatus(), InvalidParameter);
    EXPECT_EQ(Loaded(Picture{"  "}).Pixels(), (Row{0, 0}));
    EXPECT_EQ(Loaded(Picture{"  "}, PixelFormat32bppRGB).Pixels(), (Row{0xFF000000, 0xFF000000}));
}

TEST_F(ImageTest, ABitmapHandleIsCopiedOpaque)
{
    const Paper paper(Picture{"RG", "BW"});
    const Bitmap bitmap(paper.Bitmap(), nullptr);
    SetPixel(paper, 0, 0, 0);
    for (const auto& [at, expected] : {std::pair{0, 0xFFFF0000}, {1, 0xFFFFFFFF}}) {
        Color color;
        EXPECT_EQ(bitmap.GetPixel(at, at, &color), Ok);
        EXPECT_EQ(color.GetValue(), expected);
    }
    EXPECT_EQ(bitmap.GetPixelFormat(), PixelFormat32bppRGB);
    EXPECT_EQ(Bitmap(static_cast<HBITMAP>(GetStockObject(NULL_BRUSH)), nullptr).GetLastStatus(),
              InvalidParameter);
}

TEST_F(ImageTest, TurnsAndMirrors)
{
    const std::pair<RotateFlipType, Picture> cases[] = {
        {RotateNoneFlipNone, {"RGB", "CMY"}}, {Rotate90FlipNone, {"CR", "MG", "YB"}},
        {Rotate180FlipNone, {"YMC", "BGR"}},  {Rotate270FlipNone, {"BY", "GM", "RC"}},
        {RotateNoneFlipX, {"BGR", "YMC"}},    {Rotate90FlipX, {"RC", "GM", "BY"}},
        {Rotate180FlipX, {"CMY", "RGB"}},     {Rotate270FlipX, {"YB", "MG", "CR"}},
    };
    for (const auto& [type, turned] : cases) {
        const Loaded loaded(Picture{"RGB", "CMY"});
        EXPECT_EQ(GdipImageRotateFlip(loaded, type), Ok);
        EXPECT_EQ(loaded.Letters(), turned) << type;
    }
    // Larger than the blocks that it goes by, over the caller's pixels, which stay.
    Sheet sheet(37, 21);
    std::iota(sheet.pixels.begin(), sheet.pixels.end(), 0u);
    Bitmap& bitmap = sheet.bitmap;
    EXPECT_EQ(bitmap.RotateFlip(Rotate90FlipNone), Ok);
    EXPECT_EQ(sheet.pixels[1], 1u);
    EXPECT_EQ(bitmap.GetWidth(), 21u);
    for (int y = 0; y < 37; ++y)
        for (int x = 0; x < 21; ++x) {
            Color color;
            bitmap.GetPixel(x, y, &color);
            ASSERT_EQ(color.GetValue(), static_cast<ARGB>((20 - x) * 37 + y));
        }
}

TEST_F(ImageTest, AThumbnailHasExactlyTheSizeAsked)
{
    const Loaded loaded(Picture{"RRBB", "RRBB", "RRBB", "RRBB"});
    const auto thumbnail = [&](UINT cx, UINT cy) {
        GpImage* made = nullptr;
        const Status status = GdipGetImageThumbnail(loaded, cx, cy, &made, nullptr, nullptr);
        return std::make_unique<Loaded>(made, status);
    };
    EXPECT_EQ(thumbnail(2, 1)->Letters(), (Picture{"RB"}));
    EXPECT_EQ(thumbnail(1, 1)->Pixels(), Row{0xFF800080}); // the mean
    EXPECT_EQ(thumbnail(1, 1)->GetPixelFormat(), PixelFormat32bppARGB);
    EXPECT_EQ(thumbnail(0, 0)->GetWidth(), 120u);
    EXPECT_EQ(thumbnail(0, 0)->GetHeight(), 120u);
    EXPECT_EQ(thumbnail(7, 300)->GetHeight(), 300u);
    EXPECT_EQ(thumbnail(0, 9)->GetLastStatus(), InvalidParameter);
    EXPECT_EQ(thumbnail(9, 0)->GetLastStatus(), InvalidParameter);
    EXPECT_EQ(thumbnail(32768, 1)->GetLastStatus(), OutOfMemory);
    EXPECT_EQ(thumbnail(32767, 32767)->GetLastStatus(), OutOfMemory);
}

} // namespace
