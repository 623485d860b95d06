#include "tests/support/Damage.h"
#include "tests/platform/gdiplus/Builders.h"
#include "tests/platform/gdiplus/Images.h"

namespace {

using namespace test;

using DamageTest = DrawingTest;

TEST_F(DamageTest, AJpegNeedsARowOfBlocksAndHasSoManyScans)
{
    std::string file = Jpeg{.blocks = {{10}, {200}, {30}, {90}}}.File();
    EXPECT_EQ(LoadStatus(file.substr(0, file.size() - 2)), Ok);
    EXPECT_EQ(LoadStatus(file.substr(0, file.size() - 4)), GenericError);
    EXPECT_EQ(LoadStatus(file.substr(0, file.size() - 4) + "\xFF\xD9"), GenericError);
    const std::string progressive = Jpeg{.blocks = {{10}, {200}}, .progressive = true}.File();
    EXPECT_EQ(LoadStatus(progressive.substr(0, progressive.size() - 2)), Ok); // no further scan is asked for
    EXPECT_EQ(LoadStatus(progressive.substr(0, progressive.size() - 4)), GenericError);
    // Scans without data cost time all the same: 1,600 of 65,536 pixels are granted to any file, more to a
    // longer.
    file = Jpeg{.blocks = std::vector(1024, std::vector{128}), .progressive = true}.File();
    for (const auto& [nMore, status] : {std::pair{1, Ok}, {1599, Ok}, {1600, GenericError}}) {
        std::string scans = file.substr(0, file.size() - 2);
        for (int n = 0; n < nMore; ++n)
            scans += Jpeg::Segment('\xDA', "\1\1\0\0\0\0"s);
        EXPECT_EQ(LoadStatus(scans + "\xFF\xD9"), status) << nMore;
        const std::string longer = scans.insert(2, Jpeg::Segment('\xFE', std::string(20'000, ' ')));
        EXPECT_EQ(LoadStatus(longer + "\xFF\xD9"), Ok) << nMore;
    }
}

// Rows of a cut file that are as they were, and others that lack, each from one to before another.
void ExpectCut(const Loaded& cut, const Row& whole, std::pair<int, int> there, std::pair<int, int> lacking,
               ARGB lack)
{
    ASSERT_EQ(cut.GetLastStatus(), Ok);
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

TEST_F(DamageTest, WhatIsThereOfACutFileIsShown)
{
    // Pixels that can't be encoded much shorter than they are.
    Row noise(64 * 64);
    std::minstd_rand random(3);
    for (ARGB& pixel : noise)
        pixel = 0xFF000000 | static_cast<ARGB>(random());
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
    Bmp unplaced = ToBmp(pair, 24);
    unplaced.offset = 0;
    EXPECT_EQ(Loaded(unplaced.File().substr(0, rows.size() - 4)).Pixel(0, 0), 0u);
    const std::string bits = ToBmp({"KKKKKKKKW", "KKKKKKKKW"}, 1, true, "KW").File();
    EXPECT_EQ(Loaded(bits.substr(0, bits.size() - 2)).Letters(), (Picture{"KKKKKKKKW", "KKKKKKKKW"}));
    EXPECT_EQ(Loaded(bits.substr(0, bits.size() - 3)).Letters(), (Picture{"KKKKKKKKW", "         "}));
    // A TIFF of two strips, described before them.
    const std::vector<TiffEntry> strips = {{256, 1, 1}, {257, 1, 2}, {258, 1, 8},
                                           {259, 1, 1}, {262, 1, 1}, {273, 2, 122 | 123 << 16},
                                           {277, 1, 1}, {278, 1, 1}, {279, 2, 1 | 1 << 16}};
    const std::string tiff = TiffHead(strips) + "\x40\x50";
    EXPECT_EQ(Loaded(tiff).Pixels(), (Row{0xFF404040, 0xFF505050}));
    const Loaded part(tiff.substr(0, 123));
    EXPECT_EQ(part.Pixels(), (Row{0xFF404040, 0}));
    EXPECT_EQ(GdipImageSelectActiveFrame(part, &FrameDimensionPage, 0), Ok); // stands alone
    EXPECT_EQ(LoadStatus(tiff.substr(0, 122)), GenericError);
    // However long its pixels claim to be.
    for (const auto& [nRows, nClaim] :
         {std::pair{80u, 0xFFu}, {80u, 0x100u}, {20'000u, 0x10000u}, {20'000u, 0x1000000u}}) {
        const std::string black = Png(1, nRows, 8, 0, std::string(2 * nRows, '\0'));
        const std::size_t at = black.find("IDAT") - 4;
        const Loaded claiming(black.substr(0, at + 8 + 7 + 2 * nRows).replace(at, 4, Be(nClaim)));
        EXPECT_EQ(claiming.Pixels(), Row(nRows, 0xFF000000)) << nClaim;
    }
    // Passes that are there are shown in their places.
    const std::string passes = Png(2, 2, 8, 0, "\0\1\0\2\0\3\4"s, "", 1);
    const Loaded cut(passes.substr(0, passes.size() - 12 - 4 - 4)); // before the checksums of the pixels
    EXPECT_EQ(cut.Pixel(0, 0), 0xFF010101);
    EXPECT_THAT(cut.Pixel(1, 1), testing::AnyOf(0u, 0xFF040404));
}

// Whatever came of it: all frames can be selected.
void SelectAll(const std::string& file)
{
    const Loaded loaded(file);
    if (loaded.GetLastStatus() != Ok) return;
    GUID dimension{};
    EXPECT_EQ(loaded.GetFrameDimensionsList(&dimension, 1), Ok);
    const UINT nFrames = loaded.GetFrameCount(&dimension);
    EXPECT_GE(nFrames, 1u);
    for (UINT n = 0; n < nFrames; ++n)
        GdipImageSelectActiveFrame(loaded, &dimension, n);
    EXPECT_EQ(loaded.Pixels().size(), std::size_t{loaded.GetWidth()} * loaded.GetHeight());
}

TEST_F(DamageTest, CutAndLyingFilesAreHarmless)
{
    const std::string samples[] = {
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
    testing::internal::CaptureStderr();
    for (const std::string& file : samples) {
        EXPECT_EQ(LoadStatus(file), Ok);
        ForEachCut(file, SelectAll);
        ForEachLie(file, SelectAll);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(DamageTest, PicturesBeyondTheLimitsAreRefused)
{
    const std::string row(1, '\0');
    const auto jpegOf = [](const char* pszSides) {
        std::string file = Jpeg{.blocks = {{1}}}.File();
        return file.replace(file.find("\xFF\xC0") + 5, 4, pszSides, 4);
    };
    const auto tiffOf = [](std::uint32_t cx, std::uint32_t cy) { return Tiff({GrayTiff(cx, cy, "abc")}); };
    for (const std::string& file :
         {Png(32768, 1, 8, 2, row), Png(8193, 8192, 8, 2, row), Gif(32768, 1, {{{"R"}}}),
          Gif(8193, 8192, {{{"R"}}}), tiffOf(8193, 8192), jpegOf("\x80\0\0\1"), jpegOf("\x20\1\x20\0")})
        EXPECT_EQ(LoadStatus(file), OutOfMemory) << testing::PrintToString(file);
    // Sizes within the limits that so few bytes can't fill.
    for (const std::string& file : {Png(8192, 8192, 8, 2, row), Gif(8192, 8192, {{{"R"}}}),
                                    tiffOf(8192, 8192), jpegOf("\x20\0\x20\0"), tiffOf(0, 1), tiffOf(1, 0)})
        EXPECT_EQ(LoadStatus(file), GenericError) << testing::PrintToString(file);
    // 65,536 pixels are granted to any frame of a GIF.
    std::string gif = Gif(4, 16384, {{{"RRRR"}}});
    const std::size_t nHeightAt = gif.find(",\0\0\0\0\4\0"s) + 7;
    EXPECT_EQ(LoadStatus(gif.replace(nHeightAt, 2, Le(16384, 2))), Ok);
    EXPECT_EQ(LoadStatus(gif.replace(nHeightAt, 2, Le(16385, 2))), GenericError);
    gif[gif.find("\7\6\x80") + 1] = '\xFF'; // a block that goes far beyond the end
    EXPECT_EQ(LoadStatus(gif.substr(0, gif.size() - 3)), GenericError);
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
    // A fax may have eight rows for each byte, here white as the one before.
    TiffPage fax = GrayTiff(32767, 264, std::string(264 / 8, '\xFF'), {{259, 4}});
    fax.bits = 1, fax.photometric = 0;
    EXPECT_EQ(LoadStatus(Tiff({fax})), Ok);
}

// Two mebipixels, or 64 less, need a byte for each 1,024 in a JPEG, 1,032 in a PNG and 4,096 in others.
TEST_F(DamageTest, SoManyPixelsNeedSoManyBytes)
{
    std::string jpeg = Jpeg{.blocks = std::vector(128, std::vector{128})}.File();
    jpeg.replace(jpeg.find("\xFF\xC0") + 5, 2, "\x08\0"s);
    Bmp bmp = ToBmp({std::string(64, 'K')}, 1, false, "KW");
    bmp.height = 32767, bmp.pixels.resize(500);
    for (const auto& [file, nLeast] : {std::pair{jpeg, 2048u},
                                       {Gif(1024, 2048, {{{"R"}}}), 512u},
                                       {Png(1024, 2048, 8, 0, std::string(2000, '\0')), 2032u},
                                       {bmp.File(), 511u}}) {
        std::string some = file;
        some.resize(nLeast - 1);
        EXPECT_EQ(LoadStatus(some), GenericError) << nLeast;
        some.resize(nLeast);
        EXPECT_EQ(LoadStatus(some), Ok) << nLeast;
    }
    EXPECT_EQ(LoadStatus(Png(1, 1, 8, 0, "\0\1"s) + std::string(2 << 20, '\0')), Ok);
}

} // namespace
