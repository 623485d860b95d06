#include "tests/platform/gdiplus/Builders.h"
#include "tests/platform/gdiplus/Images.h"

#include <numeric>

namespace {

using namespace test;

using CodecTest = DrawingTest;

TEST_F(CodecTest, PngOfAllKinds)
{
    const std::string palette = PngChunk("PLTE", "\xFF\0\0\0\0\xFF\0\xFF\0"s);
    const std::string faded = palette + PngChunk("tRNS", "\x80"s), key = PngChunk("tRNS", "\0\1\0\2\0\3"s);
    const std::string gamma = PngChunk("gAMA", Be(100000)), colors = "\0\1\1\1\0\2\2\2\0\3\3\3\4\4\4"s;
    const std::tuple<const char*, std::string, Row, PixelFormat> cases[] = {
        {"1 bit", Png(2, 1, 1, 0, "\0\x40"s), {0xFF000000, 0xFFFFFFFF}, PixelFormat1bppIndexed},
        {"2 bits", Png(2, 1, 2, 0, "\0\x60"s), {0xFF555555, 0xFFAAAAAA}, PixelFormat4bppIndexed},
        {"grey", Png(2, 1, 8, 0, "\0\x12\x34"s), {0xFF121212, 0xFF343434}, PixelFormat8bppIndexed},
        {"16 bits of grey", Png(1, 1, 16, 0, "\0\x80\x80"s), {0xFF808080}, PixelFormat8bppIndexed},
        {"grey, alpha", Png(1, 1, 8, 4, "\0\x12\x34"s), {0x34121212}, PixelFormat32bppARGB},
        {"palette", Png(2, 1, 4, 3, "\0\x12"s, palette), {0xFF0000FF, 0xFF00FF00}, PixelFormat4bppIndexed},
        {"alpha in it", Png(2, 1, 8, 3, "\0\0\1"s, faded), {0x80FF0000, 0xFF0000FF}, PixelFormat32bppARGB},
        {"RGB", Png(1, 1, 8, 2, "\0\1\2\3"s), {0xFF010203}, PixelFormat24bppRGB},
        {"key", Png(2, 1, 8, 2, "\0\1\2\3\4\5\6"s, key), {0x00010203, 0xFF040506}, PixelFormat32bppARGB},
        {"16 bits", Png(1, 1, 16, 2, "\0\x10\x10\x20\x20\x30\x30"s), {0xFF102030}, PixelFormat24bppRGB},
        {"RGB, alpha", Png(1, 1, 8, 6, "\0\1\2\3\4"s), {0x04010203}, PixelFormat32bppARGB},
        {"all 16 bits", Png(1, 1, 16, 6, "\0\1\1\2\2\3\3\4\4"s), {0x04010203}, PixelFormat32bppARGB},
        {"no gamma", Png(1, 1, 8, 0, "\0\x40"s, gamma), {0xFF404040}, PixelFormat8bppIndexed},
        {"coloured passes", Png(2, 2, 8, 2, colors, "", 1), Grays({1, 2, 3, 4}), PixelFormat24bppRGB},
        {"passes", Png(2, 2, 8, 0, "\0\1\0\2\0\3\4"s, "", 1), Grays({1, 2, 3, 4}), PixelFormat8bppIndexed},
    };
    for (const auto& [what, file, pixels, format] : cases) {
        const Loaded loaded(file);
        EXPECT_EQ(loaded.Pixels(), pixels) << what;
        EXPECT_EQ(loaded.GetPixelFormat(), format) << what;
    }
    std::string damaged = Png(1, 1, 8, 2, "\0\1\2\3"s);
    damaged[damaged.find("\1\2\3") + 2] = 4;
    EXPECT_NE(LoadStatus(damaged), Ok);
}

TEST_F(CodecTest, JpegOfAllColors)
{
    const auto pixel = [](const Jpeg& jpeg) {
        const Loaded loaded(jpeg.File());
        EXPECT_EQ(loaded.GetHeight(), 8u);
        EXPECT_EQ(loaded.GetWidth(), 8 * jpeg.blocks.size());
        EXPECT_EQ(loaded.Pixel(loaded.GetWidth() - 8, 0), loaded.Pixel(loaded.GetWidth() - 1, 7));
        return loaded.Pixel(loaded.GetWidth() - 1, 7);
    };
    EXPECT_EQ(pixel({.blocks = {{10}, {200}}}), 0xFFC8C8C8);
    EXPECT_EQ(pixel({.blocks = {{200}}, .progressive = true}), 0xFFC8C8C8);
    EXPECT_EQ(pixel({.blocks = {{50, 128, 128}, {76, 85, 255}}}), 0xFFFE0000);
    EXPECT_EQ(pixel({.blocks = {{254, 1, 2}}, .adobe = 0}), 0xFFFE0102);
    // Ink: what Adobe's mark turns round, and what it doesn't.
    EXPECT_EQ(pixel({.blocks = {{255, 100, 0, 128}}, .adobe = 0}), 0xFF803200);
    EXPECT_EQ(pixel({.blocks = {{255, 255, 255, 255}}, .adobe = 0}), 0xFFFFFFFF);
    EXPECT_EQ(pixel({.blocks = {{254, 254, 1, 128}}, .adobe = 0}), 0xFF7F7F01); // 127.498, 0.502
    EXPECT_EQ(pixel({.blocks = {{0, 155, 255, 127}}}), 0xFF803200);
    EXPECT_EQ(pixel({.blocks = {{76, 85, 255, 128}}, .adobe = 2}) & 0xFFFEFEFE, 0xFF008080 & 0xFFFEFEFE);

    EXPECT_EQ(Loaded(Jpeg{.blocks = {{1}}}.File()).GetPixelFormat(), PixelFormat8bppIndexed);
    EXPECT_EQ(Loaded(Jpeg{.blocks = {{1, 2, 3}}}.File()).GetPixelFormat(), PixelFormat24bppRGB);
    // Turned by its orientation it would be upright.
    const std::string exif =
        Jpeg::Segment('\xE1', "Exif\0\0MM\0*\0\0\0\x08\0\1\1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0"s);
    EXPECT_EQ(Loaded(Jpeg{.blocks = {{1}, {2}}, .extra = exif}.File()).GetWidth(), 16u);
}

TEST_F(CodecTest, BmpKeepsItsFormatAndIcoShowsItsLargestImage)
{
    const Picture picture = {"RGB", "WKY"};
    for (const auto& [depth, format] : {std::pair{4u, PixelFormat4bppIndexed},
                                        {8u, PixelFormat8bppIndexed},
                                        {16u, PixelFormat16bppRGB555},
                                        {24u, PixelFormat24bppRGB},
                                        {32u, PixelFormat32bppRGB}}) {
        const Loaded loaded(ToBmp(picture, depth).File());
        EXPECT_EQ(loaded.Letters(), picture) << depth; // high bytes of 0 are no alpha
        EXPECT_EQ(loaded.GetPixelFormat(), format);
    }
    Bmp green = ToBmp({"R"}, 16);
    green.compression = 3, green.masks = Le(0xF800, 4) + Le(0x7E0, 4) + Le(0x1F, 4);
    EXPECT_EQ(Loaded(green.File()).GetPixelFormat(), PixelFormat16bppRGB565);
    Bmp core = ToBmp(picture, 24);
    core.headerSize = 12;
    EXPECT_EQ(Loaded(core.File()).Letters(), picture);
    core.width = 32768, core.height = 1;
    EXPECT_EQ(LoadStatus(core.File()), OutOfMemory);
    std::swap(core.width, core.height);
    EXPECT_EQ(LoadStatus(core.File()), OutOfMemory);
    const Loaded icon(Ico({IconBmp({"R"}, 4), IconBmp({"G.", ".B"}, 8), IconBmp({"W"}, 24)}));
    EXPECT_EQ(icon.Letters(), (Picture{"G ", " B"})); // the largest
    EXPECT_EQ(icon.GetPixelFormat(), PixelFormat32bppARGB);
    Bmp lying = ToBmp(picture, 24);
    lying.width = 8193, lying.height = -8193;
    EXPECT_EQ(LoadStatus(lying.File()), OutOfMemory);
    lying.width = 800, lying.height = 600;
    EXPECT_EQ(LoadStatus(lying.File()), GenericError);
}

TEST_F(CodecTest, TiffOfManyKinds)
{
    const auto alpha = [](const std::string& pixel, std::uint32_t kind) {
        return TiffPage{.width = 1, .height = 1, .samples = 4, .pixels = pixel, .tags = {{338, kind}}};
    };
    TiffPage whiteIsZero = GrayTiff(2, 1, "\x40");
    whiteIsZero.bits = 1;
    whiteIsZero.photometric = 0;
    const TiffPage rgb{.width = 1, .height = 2, .pixels = "\1\2\3\4\5\6"};
    TiffPage deepGray = GrayTiff(1, 1, "\x12\x12");
    deepGray.bits = 16;
    const TiffPage deep{.width = 1, .height = 1, .bits = 16, .pixels = "\x10\x10\x20\x20\x30\x30"};
    const std::tuple<const char*, TiffPage, Row, PixelFormat> cases[] = {
        {"white is 0", whiteIsZero, {0xFFFFFFFF, 0xFF000000}, PixelFormat1bppIndexed},
        {"grey", GrayTiff(2, 1, "\x12\x34"), {0xFF121212, 0xFF343434}, PixelFormat8bppIndexed},
        {"RGB", rgb, {0xFF010203, 0xFF040506}, PixelFormat24bppRGB},
        {"alpha", alpha("\xC8\0\0\x80"s, 2), {0x80C70000}, PixelFormat32bppARGB},
        {"multiplied", alpha("\x41\x61\x11\x80", 1), {0x8081C122}, PixelFormat32bppARGB},
        {"by nearly 1", alpha("\x7F\1\xFE\xFE", 1), {0xFE8001FF}, PixelFormat32bppARGB},
        {"by nearly 0", alpha("\2\1\0\1"s, 1), {0x01FFFF00}, PixelFormat32bppARGB},
        {"16 bits of grey", deepGray, {0xFF121212}, PixelFormat8bppIndexed},
        {"16 bits", deep, {0xFF102030}, PixelFormat24bppRGB},
        {"from the bottom", GrayTiff(1, 2, "\1\2", {{274, 4}}), Grays({2, 1}), PixelFormat8bppIndexed},
        {"packed", GrayTiff(3, 1, "\xFE\7", {{259, 32773}}), Grays({7, 7, 7}), PixelFormat8bppIndexed},
    };
    for (const auto& [what, page, pixels, format] : cases)
        for (const auto& [bBigEndian, bBigTiff] :
             {std::pair{false, false}, {true, false}, {false, true}, {true, true}}) {
            const Loaded loaded(Tiff({page}, bBigEndian, bBigTiff));
            EXPECT_EQ(loaded.Pixels(), pixels) << what;
            EXPECT_EQ(loaded.GetPixelFormat(), format) << what;
        }
    // Rows of a length at which they are padded once read.
    std::string pixels(37 * 3, '\0');
    std::iota(pixels.begin(), pixels.end(), '\0');
    EXPECT_EQ(Loaded(Tiff({GrayTiff(37, 3, pixels)})).Pixels(), Grays({pixels.begin(), pixels.end()}));
}

const TiffPage red{.width = 1, .height = 1, .pixels = "\xFF\0\0"s};

TEST_F(CodecTest, PagesOfATiff)
{
    const TiffPage alpha{
        .width = 1, .height = 2, .samples = 4, .pixels = "\0\xFF\0\xFF\0\0\0\0"s, .tags = {{338, 1}}};
    TiffPage broken = red;
    broken.tags[259] = 999; // no such compression
    const std::string file = Tiff({red, alpha, broken});
    const Loaded pages(file);
    EXPECT_EQ(CountOf(pages, FrameDimensionPage), 3u);
    EXPECT_EQ(Shown(pages, 1, FrameDimensionPage), (Picture{"G", " "}));
    EXPECT_EQ(GdipImageSelectActiveFrame(pages, &FrameDimensionPage, 2), GenericError);
    EXPECT_EQ(pages.Letters(), (Picture{"G", " "})); // stays
    EXPECT_EQ(Shown(pages, 0, FrameDimensionPage), (Picture{"R"}));
    EXPECT_EQ(CountOf(Loaded(file.substr(0, file.size() - 5)), FrameDimensionPage), 2u);

    std::string loop = Tiff({red, red}); // the second page's successor is the first
    loop.replace(loop.size() - 4, 4, loop.substr(4, 4));
    EXPECT_LE(CountOf(Loaded(loop), FrameDimensionPage), 3u);

    // Pixels that lie nowhere, in the head, up to one byte beyond the end, and up to the end.
    const auto nSize = static_cast<std::uint32_t>(Tiff({red, red}).size());
    for (const auto& [nPixelsAt, nCount] : {std::pair{0u, 1u}, {1u, 2u}, {nSize - 2, 1u}, {nSize - 3, 2u}}) {
        TiffPage second = red;
        second.tags[273] = nPixelsAt;
        EXPECT_EQ(CountOf(Loaded(Tiff({red, second})), FrameDimensionPage), nCount) << nPixelsAt;
    }
}

// The last nine entries of 257 are a page too. It counts if all of them and they again are as long as the
// file, which the first page's pixels make so long or two bytes shorter.
TEST_F(CodecTest, PagesOfATiffAreNoLongerThanTheFile)
{
    TiffPage many = red;
    for (std::uint32_t nTag = 1; nTag <= 248; ++nTag)
        many.tags[nTag] = 0;
    for (const auto& [bBigEndian, bBigTiff] :
         {std::pair{false, false}, {true, false}, {false, true}, {true, true}})
        for (const UINT nCount : {1u, 2u}) {
            const std::size_t nNumber = bBigTiff ? 8 : 2, nLink = bBigTiff ? 8 : 4;
            const std::size_t nWithin = nNumber + 9 * (bBigTiff ? 20 : 12), nAround = bBigTiff ? 30 : 18;
            many.pixels.resize(nWithin - nAround - (nCount == 1 ? 2 : 0));
            std::string within = Tiff({many}, bBigEndian, bBigTiff);
            const std::size_t nLinkAt = within.size() - nLink, nPage = nLinkAt - nWithin;
            const auto put = [&](std::size_t at, std::size_t value, std::size_t nWidth) {
                const std::string bytes = Le(value, nWidth);
                within.replace(at, nWidth, bBigEndian ? std::string(bytes.rbegin(), bytes.rend()) : bytes);
            };
            put(nPage, 9, nNumber);
            put(nLinkAt, nPage, nLink);
            EXPECT_EQ(CountOf(Loaded(within), FrameDimensionPage), nCount) << bBigEndian << bBigTiff;
        }
}

} // namespace
