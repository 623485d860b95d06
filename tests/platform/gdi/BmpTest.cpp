#include "tests/platform/gdi/LoadedImage.h"
#include "tests/support/Damage.h"
#include "tests/support/Test.h"

#include <tuple>

namespace {

using namespace test;

const Picture kPicture = {"KBGCRMYWR", "WYMRCGBKG", "RRRRRBBBB"};
const Picture kNull = {"null"};
const Picture kTwoColors = {"KWKWWKWWWKW", "WWWWKKKKWKK"};

TEST(Bmp, EveryDepthDirectionAndRowPadding)
{
    for (const DWORD depth : {1u, 4u, 8u, 16u, 24u, 32u})
        for (const bool topDown : {false, true})
            for (std::size_t width = 1; width <= 9; ++width) {
                Picture picture = depth == 1 ? kTwoColors : kPicture;
                for (std::string& row : picture)
                    row.resize(width);
                const std::string_view letters = depth == 1 ? "KW" : kLetters;
                const Bmp bmp = ToBmp(picture, depth, topDown, letters);
                SCOPED_TRACE(testing::Message() << depth << " bits, " << width << " wide, " << topDown);
                const LoadedBitmap bitmap(bmp.File());
                ASSERT_EQ(bitmap.Letters(), picture);
                const BITMAP record = bitmap.Record();
                EXPECT_EQ(record.bmBitsPixel, depth);
                EXPECT_EQ(record.bmWidthBytes, static_cast<LONG>(bmp.pixels.size() / picture.size()));
                EXPECT_EQ(bitmap.Dib(static_cast<WORD>(depth)), ToBmp(picture, depth, true, letters).pixels);
            }
}

TEST(Bmp, EveryHeaderIsReadAtTheDepthsThatItKnows)
{
    for (const DWORD size : {12u, 40u, 52u, 56u, 64u, 108u, 124u})
        for (const DWORD depth : {8u, 16u, 24u, 32u}) {
            Bmp bmp = ToBmp(kPicture, depth);
            bmp.headerSize = size;
            if (size == 12 && depth == 8) bmp.palette.resize(1024); // has no count
            const bool bSound = size != 64 || depth != 16; // it has no masks, and no depth that needs any
            EXPECT_EQ(LoadedBitmap(bmp.File()).Letters(), bSound ? kPicture : kNull)
                << size << " bytes, " << depth << " bits";
        }
}

// The second kind of header may end behind the depth; what it lacks counts as 0.
TEST(Bmp, AHeaderMayBeShort)
{
    Bmp bmp = ToBmp(kPicture, 8);
    bmp.palette.resize(1024), bmp.colorsUsed = 0;
    bmp.palette[3] = 1; // of no use, and no compression
    for (const std::size_t size : {16u, 24u, 36u}) {
        const std::string dib = Le(size, 4) + bmp.Header().substr(4, size - 4) + bmp.palette + bmp.pixels;
        EXPECT_EQ(LoadedBitmap("BM" + std::string(12, '\0') + dib).Letters(), kPicture) << size;
    }
}

TEST(Bmp, TwoBitsAreShownAsFour)
{
    const Picture picture = {"RGWKR", "KWGRG"};
    Bmp two = ToBmp(picture, 2, false, "KRGW"), four = ToBmp(picture, 4, true, "KRGW");
    two.palette[3] = four.palette[3] = '\x12'; // the fourth byte of a colour stays
    const LoadedBitmap bitmap(two.File());
    EXPECT_EQ(bitmap.Record().bmBitsPixel, 4);
    EXPECT_EQ(bitmap.Dib(4, 4), four.palette + four.pixels);
}

TEST(Bmp, ChannelsAreBroughtToEightBits)
{
    const std::tuple<DWORD, std::array<DWORD, 4>, DWORD, DWORD> cases[] = {
        {16, {0xF800, 0x07E0, 0x001F, 0}, 0xFFFF, 0x00FFFFFF},
        {16, {0xF800, 0x07E0, 0x001F, 0}, 0x8410, 0x00848284}, // 10000, 100000
        {16, {0x7C00, 0x03E0, 0x001F, 0x8000}, 0x8C41, 0xFF181008},
        {16, {0x0F00, 0x00F0, 0x000F, 0xF000}, 0x1A5F, 0x11AA55FF},
        {16, {0xE000, 0x1C00, 0x0300, 0}, 0x4AFF, 0x004949AA}, // 010, 010, 10
        {16, {0x8000, 0, 0x4000, 0}, 0xC000, 0x00FF00FF},      // one bit, none, one bit
        {16, {0x7F00, 0, 0x007F, 0}, 0x407F, 0x008100FF},      // 1000000, none, 1111111
        {32, {0x000000FF, 0x0000FF00, 0x00FF0000, 0xFF000000}, 0x80112233, 0x80332211},
        {32, {0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000}, 0x80112233, 0x80112233},
        {32, {0x3FF00000, 0x000FFC00, 0x000003FF, 0xC0000000}, 0x9ABCDEF1, 0xAA6ACDBC},
        {32, {0xFFFF0000, 0x0000FFFF, 0, 0}, 0x12FF34FF, 0x00123400},
        {32, {0xFFFFFFFF, 0, 0, 0}, 0x7F000000, 0x007F0000},
    };
    for (const auto& [depth, masks, value, pixel] : cases) {
        Bmp bmp;
        bmp.width = bmp.height = 1;
        bmp.depth = depth;
        for (const DWORD mask : masks)
            bmp.masks += Le(mask, 4);
        bmp.headerSize = 56;
        bmp.pixels = Le(value, 4);
        SCOPED_TRACE(testing::Message() << std::hex << masks[0] << " of " << value);
        const std::vector<DWORD> expected{depth == 32 ? pixel : pixel & 0xFFFFFF};
        const auto expect = [&](DWORD compression) {
            bmp.compression = compression;
            EXPECT_EQ(LoadedBitmap(bmp.File()).Pixels(), expected);
        };
        expect(BI_BITFIELDS);
        bmp.headerSize = 40; // the same masks behind an older header; the fourth has a number of its own
        expect(6);
        bmp.masks.resize(12), bmp.offset = 0; // the pixels follow the masks
        if (masks[3] == 0) expect(BI_BITFIELDS);
    }
    Bmp plain = ToBmp({"R"}, 32);
    plain.pixels[3] = '\x12'; // is kept
    EXPECT_EQ(LoadedBitmap(plain.File()).Pixels(), std::vector<DWORD>{0x12FF0000});
}

TEST(Bmp, APaletteHasAsManyColoursAsAreThere)
{
    Bmp few = ToBmp(kPicture, 8);
    few.palette.resize(4 * 5), few.colorsUsed = 5; // as declared; the rest is black
    const Picture cut = {"KBGCRKKKR", "KKKRCGBKG", "RRRRRBBBB"};
    EXPECT_EQ(LoadedBitmap(few.File()).Letters(), cut);
    few.colorsUsed = 200; // more than there are before the pixels
    EXPECT_EQ(LoadedBitmap(few.File()).Letters(), cut);

    Bmp many = ToBmp(kPicture, 4);
    many.colorsUsed = 40; // more than the depth can name, and all are there
    many.palette.resize(4 * 40);
    EXPECT_EQ(LoadedBitmap(many.File()).Dib(4), ToBmp(kPicture, 4, true).pixels);
    many.offset = 0; // counts as none, so that the pixels follow the palette
    EXPECT_EQ(LoadedBitmap(many.File()).Letters(), kPicture);

    Bmp gap = ToBmp(kPicture, 24);
    gap.palette = std::string(100, 'x'); // of no use at this depth
    EXPECT_EQ(LoadedBitmap(gap.File()).Letters(), kPicture);
}

// Bytes written as hexadecimal digits.
std::string Hex(const std::string& digits)
{
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += digits[at] == ' ' ? 1u : 2u)
        if (digits[at] != ' ') bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    return bytes;
}

Bmp Compressed(DWORD compression, const std::string& data, std::string_view palette = kLetters)
{
    Bmp bmp = ToBmp({"KKKKK", "KKKKK", "KKKKK"}, compression == BI_RLE8 ? 8 : 4, false, palette);
    bmp.compression = compression;
    bmp.pixels = Hex(data);
    return bmp;
}

TEST(Bmp, RunLengthsOfIndicesAreUnpacked)
{
    // Indices are places in kLetters.
    const std::tuple<DWORD, const char*, Picture> cases[] = {
        {BI_RLE8, "0504 0000 0202 0301 0000 0507 0001", {"WWWWW", "GGBBB", "RRRRR"}},
        {BI_RLE4, "0547 0000 0411 0001", {"KKKKK", "BBBBK", "RWRWR"}},
        // Pixels one by one, padded to 16 bits.
        {BI_RLE8, "0005 0102 0304 0509 0000 0004 0707 0606 0001", {"KKKKK", "WWYYK", "BGCRM"}},
        {BI_RLE4, "0005 1234 5000 0000 0003 7670 0111 0001", {"KKKKK", "WYWBK", "BGCRM"}},
        // An early end, and more behind it.
        {BI_RLE8, "0504 0001 0507", {"KKKKK", "KKKKK", "RRRRR"}},
        {BI_RLE4, "0001", {"KKKKK", "KKKKK", "KKKKK"}},
        // A move.
        {BI_RLE8, "0101 0002 0201 0202 0001", {"KKKKK", "KKKGG", "BKKKK"}},
        // Past the row's end, and past the top.
        {BI_RLE8, "FF01 0302 0000 0009 0101 0104 0404 0404 0000 0000 0301 0001", {"BBBKK", "BBBRR", "BBBBB"}},
        {BI_RLE4, "0912 0000 0009 1212 1212 1000 0001", {"KKKKK", "BGBGB", "BGBGB"}},
        {BI_RLE8, "0504 0002 09C8 0901 0000 0901 0001", {"KKKKK", "KKKKK", "RRRRR"}},
        // An index beyond the palette.
        {BI_RLE8, "0504 0000 0563 0001", {"KKKKK", "KKKKK", "RRRRR"}},
        // No end mark, a move or pixels cut, nothing at all.
        {BI_RLE8, "0504 0000 0504 0000 0504 0000", kNull},
        {BI_RLE4, "0547 0000", kNull},
        {BI_RLE8, "0002 01", kNull},
        {BI_RLE8, "00C8 0001", kNull},
        {BI_RLE8, "", kNull},
    };
    for (const auto& [compression, data, expected] : cases)
        EXPECT_EQ(LoadedBitmap(Compressed(compression, data).File()).Letters(), expected) << data;
    Bmp skipping = Compressed(BI_RLE8, "0002 0100 0101 0001", "KG");
    skipping.palette[0] = 1; // which no letter stands for
    EXPECT_EQ(LoadedBitmap(skipping.File()).Letters(), (Picture{"?????", "?????", "?G???"}))
        << "what is skipped has the first colour";
}

TEST(Bmp, RunLengthsOfWholeColoursAreUnpacked)
{
    Bmp bmp = ToBmp({"KKKKK", "KKKKK", "KKKKK"}, 24);
    bmp.headerSize = 64;
    bmp.compression = 4;
    const auto letters = [&](const std::string& data) {
        bmp.pixels = Hex(data);
        return LoadedBitmap(bmp.File()).Letters();
    };
    EXPECT_EQ(letters("05 0000FF 0000 0003 FF0000 00FF00 0000FF 00 02 FFFFFF 0001"),
              (Picture{"KKKKK", "BGRWW", "RRRRR"}));
    EXPECT_EQ(letters("0002 0101 02 00FF00 0001"), (Picture{"KKKKK", "KGGKK", "KKKKK"}));
    EXPECT_EQ(letters("05 0000FF 0000"), kNull);
    EXPECT_EQ(letters("05 0000"), kNull);
    bmp.headerSize = 40; // where the number means something else
    EXPECT_EQ(letters("05 0000FF 0001"), kNull);
    bmp.headerSize = 64;
    bmp.height = -3;
    EXPECT_EQ(letters("05 0000FF 0001"), kNull);
    bmp.height = 3;
    bmp.depth = 32;
    EXPECT_EQ(letters("05 0000FF 0001"), kNull);
}

TEST(Bmp, FewRunLengthsAreBelievedOfAMebipixelOr256OfEachByte)
{
    for (const auto& [width, height, bytes, believed] : {std::tuple{1024, 1024, 2u, true},
                                                         {1024, 1025, 2u, false},
                                                         {8192, 256, 8192u, true},
                                                         {8192, 256, 8191u, false},
                                                         {8192, 8192, 1u << 18, true}}) { // the largest
        Bmp bmp = Compressed(BI_RLE8, "0001");
        bmp.width = width, bmp.height = height;
        bmp.pixels.resize(bytes);
        EXPECT_EQ(LoadedBitmap(bmp.File()).Record().bmHeight, believed ? height : 0) << bytes;
    }
}

TEST(Bmp, LiesAndCutsGiveNullAndOtherDamageDoesNoHarm)
{
    const std::string sound = ToBmp(kPicture, 8).File();
    ASSERT_EQ(LoadedBitmap(sound).Letters(), kPicture);
    // A field's name, its place and width, and what isn't to be believed of it.
    const std::tuple<const char*, std::size_t, std::size_t, std::vector<DWORD>> lies[] = {
        {"signature", 0, 2, {0, 0x4E42}},
        {"pixel offset", 10, 4, {53, 14 + 40 + 32 + 4, 0xFFFFFFFF}},
        {"header size", 14, 4, {0, 8, 66, 0xFFFFFFFF}},
        {"width", 18, 4, {0, 0xFFFFFFF7, 0x7FFFFFFF}},
        {"height", 22, 4, {0, 4, 0xFFFFFFFC, 0x7FFFFFFF, 0x80000000}},
        {"planes", 26, 2, {0, 2}},
        {"depth", 28, 2, {0, 3, 64}},
        {"compression", 30, 4, {BI_RLE4, BI_BITFIELDS, 4, 0xFFFFFFFF}},
    };
    for (const auto& [field, at, width, values] : lies)
        for (const DWORD value : values) {
            const std::string file = std::string(sound).replace(at, width, Le(value, width));
            EXPECT_EQ(LoadedBitmap(file).Letters(), kNull) << field << " " << value;
        }

    Bmp wide = ToBmp({"RG"}, 24), palette = ToBmp(kPicture, 8), masks = ToBmp({"R"}, 32),
        hole = ToBmp({"RG"}, 16), upside = Compressed(BI_RLE8, "0001");
    wide.width = wide.height = INT32_MAX;
    palette.offset = 0, palette.colorsUsed = 0xFFFFFFFF;
    masks.compression = BI_BITFIELDS, masks.pixels.clear();
    hole.compression = BI_BITFIELDS, hole.masks = Le(0xF700, 4) + Le(0xE0, 4) + Le(0x1F, 4);
    upside.height = -3;
    for (const Bmp& bmp : {wide, palette, masks, hole, upside})
        EXPECT_EQ(LoadedBitmap(bmp.File()).Letters(), kNull);

    Bmp fields = ToBmp(kPicture, 16);
    fields.compression = BI_BITFIELDS, fields.headerSize = 108;
    fields.masks = Le(0xF800, 4) + Le(0x07E0, 4) + Le(0x001F, 4) + Le(0, 4);
    for (const Bmp& bmp : {ToBmp(kTwoColors, 1, false, "KW"), ToBmp(kPicture, 4), ToBmp(kPicture, 24, true),
                           fields, Compressed(BI_RLE8, "0504 0000 0005 0102 0304 0500 0002 0100 0903 0001"),
                           Compressed(BI_RLE4, "0547 0000 0005 1234 5000 0002 0100 0936 0001")}) {
        ASSERT_NE(LoadedBitmap(bmp.File()).Letters(), kNull);
        const Picture whole = LoadedBitmap(bmp.File()).Letters();
        const bool bPacked = bmp.compression == BI_RLE8 || bmp.compression == BI_RLE4;
        const auto nBits = static_cast<std::size_t>(bmp.width) * bmp.depth;
        const std::size_t nPadding = bPacked ? 0 : (32 - nBits % 32) % 32 / 8;
        ForEachCut(bmp.File(), [&](const std::string& file) {
            const bool bPaddingAlone = file.size() + nPadding >= bmp.File().size(); // of the last row
            EXPECT_EQ(LoadedBitmap(file).Letters(), bPaddingAlone ? whole : kNull) << file.size();
        });
        ForEachLie(bmp.File(),
                   [](const std::string& file) { EXPECT_LE(LoadedBitmap(file).Letters().size(), 1u << 20); });
    }
}

} // namespace
