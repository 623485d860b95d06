#include "tests/platform/gdi/LoadedImage.h"
#include "tests/platform/gdiplus/Builders.h"
#include "tests/platform/gdiplus/Images.h"

#include <numeric>

namespace {

using namespace test;
using namespace std::string_view_literals;

using CodecTest = DrawingTest;

TEST_F(CodecTest, PngOfAllKinds)
{
    const std::string palette = PngChunk("PLTE", "\xFF\0\0\0\0\xFF\0\xFF\0"s);
    const std::string faded = palette + PngChunk("tRNS", "\x80"s), key = PngChunk("tRNS", "\0\1\0\2\0\3"s);
    const std::string gamma = PngChunk("gAMA", Be(100000));
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
        {"passes", Png(2, 2, 8, 0, "\0\1\0\2\0\3\4"s, "", 1), Grays({1, 2, 3, 4}), PixelFormat8bppIndexed},
    };
    for (const auto& [what, file, pixels, format] : cases) {
        const Loaded loaded(file);
        EXPECT_EQ(loaded.Pixels(), pixels) << what;
        EXPECT_EQ(loaded.Format(), format) << what;
    }
    std::string damaged = Png(1, 1, 8, 2, "\0\1\2\3"s);
    damaged[damaged.find("\1\2\3") + 2] = 4;
    EXPECT_NE(LoadStatus(damaged), Ok);
}

TEST_F(CodecTest, JpegOfAllColors)
{
    const auto pixel = [](const Jpeg& jpeg) {
        const Loaded loaded(jpeg.File());
        EXPECT_EQ(loaded.Height(), 8u);
        EXPECT_EQ(loaded.Width(), 8 * jpeg.blocks.size());
        return loaded.Pixel(loaded.Width() - 1, 7);
    };
    EXPECT_EQ(pixel({.blocks = {{10}, {200}}}), 0xFFC8C8C8);
    EXPECT_EQ(pixel({.blocks = {{200}}, .progressive = true}), 0xFFC8C8C8);
    EXPECT_EQ(pixel({.blocks = {{50, 128, 128}, {76, 85, 255}}}), 0xFFFE0000);
    EXPECT_EQ(pixel({.blocks = {{254, 1, 2}}, .adobe = 0}), 0xFFFE0102);
    // Ink: what Adobe's mark turns round, and what it doesn't.
    EXPECT_EQ(pixel({.blocks = {{255, 100, 0, 128}}, .adobe = 0}), 0xFF803200);
    EXPECT_EQ(pixel({.blocks = {{0, 155, 255, 127}}}), 0xFF803200);
    EXPECT_EQ(pixel({.blocks = {{76, 85, 255, 128}}, .adobe = 2}) & 0xFFFEFEFE, 0xFF008080 & 0xFFFEFEFE);

    EXPECT_EQ(Loaded(Jpeg{.blocks = {{1}}}.File()).Format(), PixelFormat8bppIndexed);
    EXPECT_EQ(Loaded(Jpeg{.blocks = {{1, 2, 3}}}.File()).Format(), PixelFormat24bppRGB);
    // Turned by its orientation it would be upright.
    const std::string exif =
        Jpeg::Segment('\xE1', "Exif\0\0MM\0*\0\0\0\x08\0\1\1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0"s);
    EXPECT_EQ(Loaded(Jpeg{.blocks = {{1}, {2}}, .extra = exif}.File()).Width(), 16u);
}

TEST_F(CodecTest, AJpegNeedsARowOfBlocks)
{
    const std::string file = Jpeg{.blocks = {{10}, {200}, {30}, {90}}}.File();
    EXPECT_EQ(LoadStatus(file.substr(0, file.size() - 2)), Ok);
    EXPECT_EQ(LoadStatus(file.substr(0, file.size() - 4)), GenericError);
    EXPECT_EQ(LoadStatus(file.substr(0, file.size() - 4) + "\xFF\xD9"), GenericError);
    const std::string progressive = Jpeg{.blocks = {{10}, {200}}, .progressive = true}.File();
    EXPECT_EQ(LoadStatus(progressive.substr(0, progressive.size() - 2)), Ok); // no further scan is asked for
    EXPECT_EQ(LoadStatus(progressive.substr(0, progressive.size() - 4)), GenericError);
}

// A picture of 64 rows that can't be encoded much shorter than it is.
Row Noise()
{
    std::minstd_rand random(3);
    Row pixels(64 * 64);
    for (ARGB& pixel : pixels)
        pixel = 0xFF000000 | static_cast<ARGB>(random());
    return pixels;
}

// Rows of a cut file that are as they were, and others that lack, each from one to before another.
void ExpectCut(const Loaded& cut, const Row& whole, std::pair<int, int> there, std::pair<int, int> lacking,
               ARGB lack)
{
    ASSERT_EQ(cut.status, Ok);
    const Row pixels = cut.Pixels();
    ASSERT_EQ(pixels.size(), whole.size());
    const auto rows = [](const Row& of, std::pair<int, int> at) {
        return Row(of.begin() + at.first * 64, of.begin() + at.second * 64);
    };
    EXPECT_EQ(rows(pixels, there), rows(whole, there));
    EXPECT_EQ(rows(pixels, lacking), rows(Row(64 * 64, lack), lacking));
}

// A TIFF's head and its one page's description: for each entry the tag, how many values, and one or where.
using TiffEntry = std::array<std::uint32_t, 3>;
std::string TiffHead(const std::vector<TiffEntry>& entries)
{
    std::string head = "II*\0\x08\0\0\0"s + Le(entries.size(), 2);
    for (const auto& [tag, nCount, value] : entries)
        head += Le(tag, 2) + Le(3, 2) + Le(nCount, 4) + Le(value, 4);
    return head + Le(0, 4);
}

TEST_F(CodecTest, WhatIsThereOfACutFileIsShown)
{
    Row noise = Noise();
    const Sheet sheet(64, noise, PixelFormat32bppRGB);
    const auto whole = [&](std::u16string_view type) { return Saved(sheet.bitmap.Native(), type); };
    const auto half = [&](std::u16string_view type) { return whole(type).substr(0, whole(type).size() / 2); };
    ExpectCut(Loaded(half(u"bmp")), noise, {33, 64}, {0, 33}, 0);
    ExpectCut(Loaded(half(u"png")), noise, {0, 31}, {33, 64}, 0);
    const std::string unended = whole(u"png").substr(0, whole(u"png").size() - 12); // all pixels are there
    EXPECT_TRUE(Saved(Loaded(unended), u"png") == whole(u"png"));
    EXPECT_THAT(whole(u"png"), testing::EndsWith("IEND\xAE\x42\x60\x82"));
    ExpectCut(Loaded(half(u"gif")), Loaded(whole(u"gif")).Pixels(), {0, 26}, {34, 64}, 0);
    ExpectCut(Loaded(half(u"jpeg")), Loaded(whole(u"jpeg")).Pixels(), {0, 8}, {48, 64}, 0xFF808080);
    // A cut in the middle of the first row leaves a header.
    for (const auto& [type, nHeader] :
         {std::pair{u"bmp", 54u}, {u"png", 41u}, {u"gif", 791u}, {u"jpeg", 623u}})
        EXPECT_EQ(LoadStatus(whole(type).substr(0, nHeader + 30)), GenericError) << nHeader;
    // A row may lack its padding, but no pixel's byte.
    const Picture pair = {"RGB", "RGB"};
    const std::string rows = ToBmp(pair, 24).File();
    EXPECT_EQ(Loaded(rows.substr(0, rows.size() - 3)).Letters(), pair);
    EXPECT_EQ(Loaded(rows.substr(0, rows.size() - 4)).Pixel(0, 0), 0u);
    // A TIFF of two strips, described before them.
    const std::vector<TiffEntry> strips = {{256, 1, 1}, {257, 1, 2}, {258, 1, 8},
                                           {259, 1, 1}, {262, 1, 1}, {273, 2, 122 | 123 << 16},
                                           {277, 1, 1}, {278, 1, 1}, {279, 2, 1 | 1 << 16}};
    const std::string tiff = TiffHead(strips) + "\x40\x50";
    EXPECT_EQ(Loaded(tiff).Pixels(), (Row{0xFF404040, 0xFF505050}));
    EXPECT_EQ(Loaded(tiff.substr(0, 123)).Pixels(), (Row{0xFF404040, 0}));
    EXPECT_EQ(LoadStatus(tiff.substr(0, 122)), GenericError);
    // Passes that are there are shown in their places.
    const std::string passes = Png(2, 2, 8, 0, "\0\1\0\2\0\3\4"s, "", 1);
    const Loaded cut(passes.substr(0, passes.size() - 12 - 4 - 4)); // before the checksums of the pixels
    EXPECT_EQ(cut.Pixel(0, 0), 0xFF010101);
    EXPECT_THAT(cut.Pixel(1, 1), testing::AnyOf(0u, 0xFF040404));
}

TEST_F(CodecTest, BmpAndIco)
{
    const Picture picture = {"RGB", "WKY"};
    for (const auto& [depth, format] : {std::pair{4u, PixelFormat4bppIndexed},
                                        {8u, PixelFormat8bppIndexed},
                                        {16u, PixelFormat16bppRGB555},
                                        {24u, PixelFormat24bppRGB},
                                        {32u, PixelFormat32bppRGB}}) {
        const Loaded loaded(ToBmp(picture, depth).File());
        EXPECT_EQ(loaded.Letters(), picture) << depth; // high bytes of 0 are no alpha
        EXPECT_EQ(loaded.Format(), format);
    }
    const Loaded icon(Ico({IconBmp({"R"}, 4), IconBmp({"G.", ".B"}, 8), IconBmp({"W"}, 24)}));
    EXPECT_EQ(icon.Letters(), (Picture{"G ", " B"})); // the largest
    EXPECT_EQ(icon.Format(), PixelFormat32bppARGB);
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
    const TiffPage deep{.width = 1, .height = 1, .bits = 16, .pixels = "\x10\x10\x20\x20\x30\x30"};
    const std::tuple<const char*, TiffPage, Row, PixelFormat> cases[] = {
        {"white is 0", whiteIsZero, {0xFFFFFFFF, 0xFF000000}, PixelFormat1bppIndexed},
        {"grey", GrayTiff(2, 1, "\x12\x34"), {0xFF121212, 0xFF343434}, PixelFormat8bppIndexed},
        {"RGB", rgb, {0xFF010203, 0xFF040506}, PixelFormat24bppRGB},
        {"alpha", alpha("\xC8\0\0\x80"s, 2), {0x80C70000}, PixelFormat32bppARGB},
        {"multiplied", alpha("\x41\x61\x11\x80", 1), {0x8081C122}, PixelFormat32bppARGB},
        {"16 bits", deep, {0xFF102030}, PixelFormat24bppRGB},
        {"from the bottom", GrayTiff(1, 2, "\1\2", {{274, 4}}), Grays({2, 1}), PixelFormat8bppIndexed},
        {"packed", GrayTiff(3, 1, "\xFE\7", {{259, 32773}}), Grays({7, 7, 7}), PixelFormat8bppIndexed},
    };
    for (const auto& [what, page, pixels, format] : cases)
        for (const auto& [bBigEndian, bBigTiff] :
             {std::pair{false, false}, {true, false}, {false, true}, {true, true}}) {
            const Loaded loaded(Tiff({page}, bBigEndian, bBigTiff));
            EXPECT_EQ(loaded.Pixels(), pixels) << what;
            EXPECT_EQ(loaded.Format(), format) << what;
        }
    // Rows of a length at which they are padded once read.
    std::string pixels(37 * 3, '\0');
    std::iota(pixels.begin(), pixels.end(), '\0');
    EXPECT_EQ(Loaded(Tiff({GrayTiff(37, 3, pixels)})).Pixels(), Grays({pixels.begin(), pixels.end()}));
}

std::vector<std::string> Samples()
{
    return {
        Png(3, 2, 8, 3, "\0\0\1\0\0\1\0\1"s, PngChunk("PLTE", "\xFF\0\0\0\0\xFF"s) + PngChunk("tRNS", "\0"s)),
        Png(2, 2, 8, 0, "\0\1\0\2\0\3\4"s, "", 1),
        Jpeg{.blocks = {{10, 128, 128}, {200, 1, 2}}}.File(),
        Jpeg{.blocks = {{10}, {200}, {7}}, .progressive = true}.File(),
        Jpeg{.blocks = {{10, 20, 30, 40}}, .adobe = 2}.File(),
        Gif(4, 4, {{{"RG.B", "WWWW"}, 0, 1, 2, 5}, {{"RG", "BY"}, 3, 3, 3, 1, true, "WRGBYC"}}),
        Tiff({{.width = 2, .height = 2, .pixels = "abcdefghijkl"},
              {.width = 9, .height = 1, .bits = 1, .samples = 1, .photometric = 0, .pixels = "\x12\x80"}}),
        Tiff({GrayTiff(3, 1, "\xFE\7", {{259, 32773}})}, true),
        Tiff({GrayTiff(2, 1, "ab"), {.width = 1, .height = 1, .samples = 4, .pixels = "abcd"}}, false, true),
        ToBmp({"RGB", "CMY"}, 8).File(),
        Ico({IconBmp({"G.", ".B"}, 8)})};
}

// Whatever came of it: all frames can be selected.
void SelectAll(const std::string& file)
{
    const Loaded loaded(file);
    if (loaded.status != Ok) return;
    GUID dimension{};
    UINT nFrames = 0;
    EXPECT_EQ(GdipImageGetFrameDimensionsList(loaded, &dimension, 1), Ok);
    EXPECT_EQ(GdipImageGetFrameCount(loaded, &dimension, &nFrames), Ok);
    EXPECT_GE(nFrames, 1u);
    for (UINT n = 0; n < nFrames; ++n)
        GdipImageSelectActiveFrame(loaded, &dimension, n);
    EXPECT_EQ(loaded.Pixels().size(), std::size_t{loaded.Width()} * loaded.Height());
}

TEST_F(CodecTest, CutAndLyingFilesAreHarmless)
{
    for (const std::string& file : Samples()) {
        EXPECT_EQ(LoadStatus(file), Ok);
        ForEachCut(file, SelectAll);
        ForEachLie(file, SelectAll);
    }
}

TEST_F(CodecTest, PicturesBeyondTheLimitsAreRefused)
{
    const std::string row(1, '\0');
    EXPECT_EQ(LoadStatus(Png(32768, 1, 8, 2, row)), OutOfMemory);
    EXPECT_EQ(LoadStatus(Png(8193, 8192, 8, 2, row)), OutOfMemory);
    EXPECT_EQ(LoadStatus(Gif(32768, 1, {{{"R"}}})), OutOfMemory);
    EXPECT_EQ(LoadStatus(Gif(8193, 8192, {{{"R"}}})), OutOfMemory);
    EXPECT_EQ(LoadStatus(Tiff({{.width = 8193, .height = 8192, .pixels = "abc"}})), OutOfMemory);
    const auto jpegOf = [](const char* pszSides) {
        std::string file = Jpeg{.blocks = {{1}}}.File();
        return file.replace(file.find("\xFF\xC0") + 5, 4, pszSides, 4);
    };
    EXPECT_EQ(LoadStatus(jpegOf("\x80\0\0\1")), OutOfMemory);
    EXPECT_EQ(LoadStatus(jpegOf("\x20\1\x20\0")), OutOfMemory);
    // Sizes within the limits that so few bytes can't fill.
    EXPECT_EQ(LoadStatus(Png(8192, 8192, 8, 2, row)), GenericError);
    EXPECT_EQ(LoadStatus(Gif(8192, 8192, {{{"R"}}})), GenericError);
    EXPECT_EQ(LoadStatus(Tiff({{.width = 8192, .height = 8192, .pixels = "abc"}})), GenericError);
    EXPECT_EQ(LoadStatus(jpegOf("\x20\0\x20\0")), GenericError);
    // 65,536 pixels are granted to any frame of a GIF.
    std::string gif = Gif(4, 16384, {{{"RRRR"}}});
    const std::size_t nHeightAt = gif.find(",\0\0\0\0\4\0"s) + 7;
    EXPECT_EQ(LoadStatus(gif.replace(nHeightAt, 2, Le(16384, 2))), Ok);
    EXPECT_EQ(LoadStatus(gif.replace(nHeightAt, 2, Le(16385, 2))), GenericError);
    // The most that a TIFF of its length may claim, 4096 bytes for each: 128 strips that lie in one place.
    const std::vector<TiffEntry> strips = {{256, 1, 1024},  {257, 1, 1024}, {258, 3, 122},
                                           {259, 1, 32773}, {262, 1, 2},    {273, 128, 128},
                                           {277, 1, 3},     {278, 1, 8},    {279, 128, 384}};
    std::string tiff = TiffHead(strips);
    for (const auto& [nTimes, piece] :
         {std::pair{3, Le(16, 2)}, {128, Le(640, 2)}, {128, Le(768, 2)}, {384, "\x81\x40"s}})
        for (int n = 0; n < nTimes; ++n)
            tiff += piece;
    tiff.resize(1535);
    EXPECT_EQ(LoadStatus(tiff), GenericError);
    EXPECT_EQ(LoadStatus(tiff + '\0'), Ok);
}

} // namespace
