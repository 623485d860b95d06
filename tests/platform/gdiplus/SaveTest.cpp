#include "tests/platform/gdiplus/Builders.h"
#include "tests/platform/gdiplus/Images.h"

namespace {

using namespace test;

using SaveTest = DrawingTest;

TEST_F(SaveTest, TheEncodersStandInTheirOrder)
{
    const std::vector<ImageCodecInfo> encoders = Encoders();
    using Told = std::tuple<std::u16string_view, std::uint32_t, std::uint32_t>;
    std::vector<Told> told;
    for (const ImageCodecInfo& encoder : encoders)
        told.emplace_back(encoder.MimeType, encoder.Clsid.Data1, encoder.FormatID.Data1);
    EXPECT_THAT(told, testing::ElementsAre(Told(u"image/bmp", 0x557CF400, 0xB96B3CAB),
                                           Told(u"image/jpeg", 0x557CF401, 0xB96B3CAE),
                                           Told(u"image/gif", 0x557CF402, 0xB96B3CB0),
                                           Told(u"image/tiff", 0x557CF405, 0xB96B3CB1),
                                           Told(u"image/png", 0x557CF406, 0xB96B3CAF)));
    GUID jpeg{};
    CLSIDFromString(u"{557CF401-1A04-11D3-9A73-0000F81EF32E}", &jpeg);
    EXPECT_EQ(std::memcmp(&jpeg, &encoders[1].Clsid, sizeof jpeg), 0);
    CLSIDFromString(u"{B96B3CAE-0728-11D3-9D7B-0000F81EF32E}", &jpeg);
    EXPECT_EQ(std::memcmp(&jpeg, &encoders[1].FormatID, sizeof jpeg), 0);
    const CLSID none{};
    const Stream stream = MakeStream();
    EXPECT_EQ(GdipSaveImageToStream(Loaded(Picture{"R"}), stream.get(), &none, nullptr), UnknownImageFormat);
    EXPECT_EQ(Content(stream.get()), "");
}

TEST_F(SaveTest, WhatIsSavedLoadsAsItWas)
{
    const Picture picture = {"RGBCM", "YWKRG", "BCMYW"};
    for (const auto* const type : {u"bmp", u"gif", u"tiff", u"png"})
        for (const PixelFormat format : {PixelFormat32bppRGB, PixelFormat32bppARGB})
            EXPECT_EQ(Loaded(Saved(Loaded(picture, format), type)).Letters(), picture);
    for (const auto* const type : {u"gif", u"tiff", u"png"})
        EXPECT_EQ(Loaded(Saved(Loaded(Picture{"R B", " G "}), type)).Letters(), (Picture{"R B", " G "}));
    const std::string bmp = Saved(Loaded(picture), u"bmp"), header = bmp.substr(0, 54);
    const std::string size = Le(5, 4) + Le(3, 4) + Le(1, 2) + Le(24, 2), dots = Le(3780, 4) + Le(3780, 4);
    EXPECT_EQ(header, "BM" + Le(102, 4) + Le(0, 4) + Le(54, 4) + Le(40, 4) + size + Le(0, 4) + Le(48, 4) +
                          dots + Le(0, 8));
    EXPECT_EQ(bmp[54 + 3 * 5], '\0'); // the padding of a row
    EXPECT_EQ(Loaded(bmp).GetPixelFormat(), PixelFormat24bppRGB);
    EXPECT_EQ(Loaded(Saved(Loaded(picture), u"png")).GetPixelFormat(), PixelFormat32bppARGB);
    EXPECT_EQ(Loaded(Saved(Loaded(picture, PixelFormat32bppRGB), u"png")).GetPixelFormat(),
              PixelFormat24bppRGB);
    const Loaded gray(Saved(Loaded(Picture(16, std::string(16, 'W'))), u"jpeg"));
    EXPECT_EQ(gray.Pixel(7, 7), 0xFFFFFFFF);
    EXPECT_EQ(gray.GetPixelFormat(), PixelFormat8bppIndexed); // one channel
    // Grey is what all of its own pixels are, exactly.
    ARGB pixels[] = {0x808080, 0xFF0000, 0x808080, 0xFF0000, 0xFF0000};
    for (const auto& [pixel, format] : {std::pair{0x808080u, PixelFormat8bppIndexed},
                                        {0x808081u, PixelFormat24bppRGB},
                                        {0x818080u, PixelFormat24bppRGB}}) {
        pixels[2] = pixel;
        Bitmap column(1, 2, 8, PixelFormat32bppRGB, reinterpret_cast<BYTE*>(pixels));
        EXPECT_EQ(Loaded(Saved(column.Native(), u"jpeg")).GetPixelFormat(), format) << pixel;
    }
}

TEST_F(SaveTest, OpacityIsKeptOrLaidOverBlack)
{
    Sheet half(8, Row(64, 0x80FF0000));
    const auto saved = [&](std::u16string_view type) {
        return Loaded(Saved(half.bitmap.Native(), type)).Pixel(3, 3);
    };
    EXPECT_EQ(saved(u"png"), 0x80FF0000);
    EXPECT_EQ(saved(u"tiff"), 0x80FF0000);
    EXPECT_EQ(saved(u"bmp"), 0xFF800000);
    EXPECT_EQ(saved(u"gif"), 0xFF800000);
    EXPECT_EQ(saved(u"jpeg") & 0xFFFEFEFE, 0xFF800000);
    Sheet pair(2, {0x10FF0000, 0xFFFF0000});
    EXPECT_EQ(Loaded(Saved(pair.bitmap.Native(), u"bmp")).Pixels(), (Row{0xFF100000, 0xFFFF0000}));
    half.pixels[27] = 0x7FFF0000;
    EXPECT_EQ(saved(u"gif"), 0u);
    EXPECT_LT(Saved(Sheet(64, 64).bitmap.Native(), u"tiff").size(), 600u); // few strips
}

// By how much a channel differs most between a picture and what is loaded of it once it was saved.
int Farthest(Sheet& sheet, std::u16string_view type)
{
    int nFarthest = 0;
    const Row first = sheet.pixels, second = Loaded(Saved(sheet.bitmap.Native(), type)).Pixels();
    EXPECT_EQ(first.size(), second.size());
    for (std::size_t i = 0; i < first.size() && i < second.size(); ++i)
        for (const int nShift : {0, 8, 16})
            nFarthest = std::max(nFarthest, std::abs(static_cast<int>(first[i] >> nShift & 255) -
                                                     static_cast<int>(second[i] >> nShift & 255)));
    return nFarthest;
}

TEST_F(SaveTest, GifColorsAreExactUpTo256AndNearBeyond)
{
    Sheet colors(16, 17, PixelFormat32bppRGB);
    for (ARGB n = 0; n < 256; ++n)
        colors.pixels[n] = n * 0x01039B;
    EXPECT_EQ(Farthest(colors, u"gif"), 0);
    Sheet holed(16, 16);
    for (ARGB n = 1; n < 256; ++n)
        holed.pixels[n] = 0xFF000000 | n * 0x01039B;
    EXPECT_EQ(Farthest(holed, u"gif"), 0);
    colors.pixels[256] = 0x123456;          // one too many
    EXPECT_LE(Farthest(colors, u"gif"), 9); // between two of them
    // The two that share one are those nearest to each other, though most pixels have them.
    Sheet rare(71, 5, PixelFormat32bppRGB);
    for (ARGB n = 0; n < 71 * 5; ++n)
        rare.pixels[n] = n < 255 ? 36 * (n % 7 << 16 | n / 7 % 7 << 8 | n / 49) : 0xFAFAFA + n % 2 * 4;
    EXPECT_EQ(Farthest(rare, u"gif"), 2);

    // Each of the 256 places for colours is taken, one by two of them.
    Sheet ramps(257, 1, PixelFormat32bppRGB);
    for (ARGB n = 0; n < 255; ++n)
        ramps.pixels[n] = 5 * (n % 51 + 1) * std::array{0x10000u, 0x100u, 1u, 0x10100u, 0x10001u}[n / 51];
    ramps.pixels[256] = 1;
    EXPECT_EQ(Farthest(ramps, u"gif"), 1);

    Sheet few(20, 20); // 25 places for 400 colours
    for (ARGB n = 0; n < 400; ++n)
        few.pixels[n] = 0xFF000000 | n % 20 | n / 20 << 8;
    EXPECT_EQ(Farthest(few, u"gif"), 2);
    Sheet smooth(64, 64);
    for (ARGB n = 0; n < 64 * 64; ++n)
        smooth.pixels[n] = 0xFF000080 | n % 64 << 18 | n / 64 << 10;
    EXPECT_LE(Farthest(smooth, u"gif"), 8); // 16 by 16 blocks at best
    EXPECT_LE(Farthest(smooth, u"jpeg"), 24);
    smooth.pixels[5 * 64 + 5] = 0;
    const Loaded hole(Saved(smooth.bitmap.Native(), u"gif"));
    EXPECT_EQ(hole.Pixel(5, 5), 0u);
    EXPECT_EQ(hole.Pixel(6, 5) >> 24, 255u);
}

TEST_F(SaveTest, AGifHasRoomForItsColorsAndNoMoreThanThePowerOfTwo)
{
    for (const auto& [letters, nBits] :
         {std::pair{"R", 1}, {"RG", 1}, {"RGB", 2}, {"RGBC", 2}, {"RGBCM", 3}}) {
        const std::string file = Saved(Loaded(Picture{letters}), u"gif");
        EXPECT_THAT(file, testing::StartsWith("GIF89a"));
        EXPECT_EQ((file[10] & 7) + 1, nBits) << letters;
    }
    // Neither waits nor asks, and the last index is the transparent one.
    EXPECT_THAT(Saved(Loaded(Picture{"R "}), u"gif"), testing::HasSubstr("!\xF9\4\1\0\0\xFF\0"s));
}

TEST_F(SaveTest, AFileIsReplacedWholeOrStaysAsItWas)
{
    const TempDir dir;
    const CLSID png = EncoderOf(u"png"), bmp = EncoderOf(u"bmp");
    const Loaded red(Picture{"R"}), large(Picture(200, std::string(200, 'G')));
    const auto save = [&](GpImage* image, const char* name, const CLSID& encoder) {
        return GdipSaveImageToFile(image, Wide(dir.Win(name)).c_str(), &encoder, nullptr);
    };
    const auto letters = [&](const char* name) { return Loaded(dir.Read(name)).Letters(); };
    EXPECT_EQ(save(red, "a.png", png), Ok);
    EXPECT_EQ(letters("a.png"), (Picture{"R"}));
    const mode_t mask = umask(022);
    umask(mask);
    EXPECT_EQ(mode_t(std::filesystem::status(dir.Path("a.png")).permissions()), 0666 & ~mask);

    Image same(Wide(dir.Win("a.png")).c_str());
    EXPECT_EQ(save(same.Native(), "a.png", bmp), Ok); // over itself
    EXPECT_EQ(dir.Read("a.png").substr(0, 2), "BM");

    {
        const FileLimit full(4096);
        EXPECT_EQ(save(large, "a.png", bmp), GenericError);
    }
    EXPECT_EQ(letters("a.png"), (Picture{"R"}));
    dir.MakeDir("directory");
    for (const char* name : {"directory", "directory\\", "none\\"})
        EXPECT_EQ(save(red, name, png), AccessDenied) << name;
    EXPECT_EQ(save(red, "none\\a.png", png), FileNotFound);
    EXPECT_EQ(GdipSaveImageToFile(red, u"", &png, nullptr), FileNotFound);
    EXPECT_EQ(GdipSaveImageToFile(red, u"C:\\proc\\a.png", &png, nullptr), FileNotFound);
    const std::filesystem::directory_iterator entries(dir.Path());
    EXPECT_EQ(std::distance(entries, {}), 2) << "something was left behind";
}

constexpr int kThreads = 4;

// A picture of more colours than a GIF can have.
std::unique_ptr<Sheet> Colorful(int nThread)
{
    auto sheet = std::make_unique<Sheet>(32, 32);
    for (std::size_t n = 0; n < sheet->pixels.size(); ++n)
        sheet->pixels[n] = 0xFF000000 | static_cast<ARGB>(n * 523 + static_cast<unsigned>(nThread) * 77777);
    return sheet;
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

// Each has pictures, a surface and files of its own; what the codecs share must not be seen.
TEST_F(SaveTest, DistinctPicturesAreLoadedDrawnAndSavedAtOnce)
{
    const TempDir dir;
    const std::string files[] = {
        Png(1, 1, 8, 2, "\0\xFF\0\0"s), Jpeg{.blocks = {{254, 0, 0}}, .adobe = 0}.File(),
        Gif(1, 1, {{.picture = {"B"}}, {.picture = {"R"}}}),
        Tiff({{.width = 1, .height = 1, .pixels = "\xFF\0\0"s}}), ToBmp({"R"}, 24).File()};
    std::vector<std::string> alone;
    for (int n = 0; n < kThreads; ++n)
        alone.push_back(Saved(Colorful(n)->bitmap.Native(), u"gif"));

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
            EXPECT_EQ(Saved(colorful->bitmap.Native(), u"gif"), alone[static_cast<std::size_t>(nThread)]);
            const std::u16string path = Wide(dir.Win(name.c_str()));
            EXPECT_EQ(GdipSaveImageToFile(colorful->bitmap.Native(), path.c_str(), &png, nullptr), Ok);
            EXPECT_EQ(Image(path.c_str()).GetWidth(), 32u);
        }
    });
}

} // namespace
