#include "tests/platform/gdiplus/GifBuilder.h"
#include "tests/platform/gdiplus/Images.h"
#include "tests/platform/gdiplus/JpegBuilder.h"
#include "tests/platform/gdiplus/TiffBuilder.h"
#include "tests/support/Await.h"
namespace {

using namespace test;

constexpr int kThreads = 4;

// A picture of more colours than a GIF can have.
std::unique_ptr<Loaded> Colorful(int nThread)
{
    auto loaded = std::make_unique<Loaded>(Picture(32, std::string(32, 'K')));
    for (int i = 0; i < 32 * 32; ++i)
        GdipBitmapSetPixel(loaded->Bitmap(), i % 32, i / 32,
                           0xFF000000 | static_cast<ARGB>(i * 523 + nThread * 77777));
    return loaded;
}

TEST(ImageThreads, StartsAreCountedWhicheverThreadsMakeThem)
{
    const NoLeak noLeak;
    RunThreads(kThreads, [](int) {
        for (int nRound = 0; nRound < 50; ++nRound) {
            std::uintptr_t first = 0, second = 0;
            const GdiplusStartupInput input;
            ASSERT_EQ(GdiplusStartup(&first, &input, nullptr), Ok);
            ASSERT_EQ(GdiplusStartup(&second, &input, nullptr), Ok);
            const Loaded red(Picture{"R"});
            GdiplusShutdown(first); // its own other start still holds
            EXPECT_EQ(red.Letters(), (Picture{"R"}));
            GdiplusShutdown(second);
        }
    });
    EXPECT_EQ(Bitmap(1, 1).GetLastStatus(), GdiplusNotInitialized);
}

class ImageThreadsTest : public DrawingTest
{
    NoLeak m_noLeak;
};

// Each has pictures, a surface and files of its own; what the codecs share must not be seen.
TEST_F(ImageThreadsTest, DistinctPicturesAreLoadedDrawnAndSavedAtOnce)
{
    const TempDir dir;
    const std::string files[] = {
        Png(1, 1, 8, 2, "\0\xFF\0\0"s), Jpeg{.blocks = {{254, 0, 0}}, .adobe = 0}.File(),
        Gif(1, 1, {{.picture = {"B"}}, {.picture = {"R"}}}),
        Tiff({{.width = 1, .height = 1, .pixels = "\xFF\0\0"s}}), ToBmp({"R"}, 24).File()};
    std::vector<std::string> alone;
    for (int n = 0; n < kThreads; ++n)
        alone.push_back(Saved(*Colorful(n), u"gif"));

    RunThreads(kThreads, [&](int nThread) {
        const std::string name = "saved" + std::to_string(nThread);
        const CLSID png = EncoderOf(u"png");
        for (int nRound = 0; nRound < 20; ++nRound) {
            for (const std::string& file : files) {
                const Loaded loaded(file);
                GdipImageSelectActiveFrame(loaded, &FrameDimensionTime, 1); // of the GIF
                const Paper paper(3, 2, 'W');
                Graphics graphics(static_cast<HDC>(paper));
                EXPECT_EQ(GdipDrawImageRectI(graphics.Native(), loaded, 1, 0, 1, 2), Ok);
                EXPECT_EQ(GetRValue(GetPixel(paper, 1, 1)) & 0xFE, 0xFE);
                EXPECT_EQ(GetGValue(GetPixel(paper, 1, 1)), 0);
            }
            const auto colorful = Colorful(nThread);
            EXPECT_EQ(Saved(*colorful, u"gif"), alone[static_cast<std::size_t>(nThread)]);
            const std::u16string path = Wide(dir.Win(name.c_str()));
            EXPECT_EQ(GdipSaveImageToFile(*colorful, path.c_str(), &png, nullptr), Ok);
            EXPECT_EQ(Image(path.c_str()).GetWidth(), 32u);
        }
    });
}

} // namespace
