#include "tests/platform/gdi/LoadedImage.h"
#include "tests/support/Damage.h"
#include "tests/support/Test.h"

namespace {

using namespace test;
using namespace std::string_literals;

class LoadedIcon
{
public:
    explicit LoadedIcon(std::string_view file, int cx = 0, int cy = 0)
        : m_icon(static_cast<HICON>(LoadFile(file, IMAGE_ICON, cx, cy)), DestroyIcon)
    {
    }
    operator HICON() const { return m_icon.get(); }

    std::pair<int, int> Size() const
    {
        SIZE size{};
        return GetIconSize(*this, &size) ? std::pair<int, int>(size.cx, size.cy) : std::pair(0, 0);
    }
    // The icon drawn on green, drawn from `x`, `y` on; black is a dot.
    Picture OnGreen(int x = 0, int y = 0) const
    {
        const Paper paper(Size().first, Size().second, 'G');
        EXPECT_EQ(DrawIcon(paper, x, y, *this), 1);
        return paper.Read();
    }

private:
    std::unique_ptr<std::remove_pointer_t<HICON>, decltype(&DestroyIcon)> m_icon;
};

// An image of one colour.
std::string Square(int side, DWORD depth, char letter = 'R')
{
    const auto n = static_cast<std::size_t>(side);
    return IconBmp(Picture(n, std::string(n, letter)), depth);
}

TEST(Icon, EveryDepthShowsItsColorsThroughItsMask)
{
    const Picture picture = {"R..MB", "WYMC.", ".KKK."}, seen = {"RGGMB", "WYMCG", "G...G"};
    for (const DWORD depth : {4u, 8u, 16u, 24u, 32u})
        EXPECT_EQ(LoadedIcon(Ico({IconBmp(picture, depth)})).OnGreen(), seen) << depth;
    EXPECT_EQ(LoadedIcon(Ico({IconBmp({"KW..K", "W.W.W"}, 1, "KW")})).OnGreen(), (Picture{".WGG.", "WGWGW"}));
}

TEST(Icon, AnAlphaChannelCountsInPlaceOfTheMask)
{
    Bmp bmp = ToBmp({"RR"}, 32);
    bmp.height = 2;
    bmp.pixels[3] = '\x80', bmp.pixels[7] = '\x01';
    for (const std::string& mask : {std::string(4, '\0'), std::string(4, '\xFF'), ""s}) { // it may be missing
        const LoadedIcon icon(Ico({bmp.Dib() + mask}));
        const Paper paper(2, 1, 'G');
        DrawIcon(paper, 0, 0, icon);
        EXPECT_EQ(GetPixel(paper, 0, 0), 0x007F80u);
        EXPECT_EQ(GetPixel(paper, 1, 0), 0x00FE01u);
    }
}

TEST(Icon, PngEntriesAreShownWholeOrRefused)
{
    const std::pair<std::string, Picture> cases[] = {
        {Png(2, 1, 8, 6, "\0\xFF\0\0\xFF\0\0\xFF\0"s), {"RG"}},            // with alpha
        {Png(2, 1, 8, 6, "\0\xFF\0\0\xFF\0\0\0\xFF\xFF"s, "", 1), {"RB"}}, // in two passes
        {Png(1, 2, 8, 2, "\0\xFF\0\0\0\0\xFF\xFF"s), {"R", "C"}},          // opaque
        {Png(2, 1, 4, 0, "\0\x0F"s, PngChunk("tEXt", "Comment\0words"s)), {".W"}},
    };
    for (const auto& [image, seen] : cases) {
        EXPECT_EQ(LoadedIcon(Ico({image})).OnGreen(), seen) << seen[0];
        ForEachCut(image, [&](const std::string& cut) { EXPECT_FALSE(LoadedIcon(Ico({cut}))) << seen[0]; });
    }
    EXPECT_EQ(LoadedIcon(Ico({Png(1024, 1, 1, 0, std::string(129, '\0'))})).Size(), std::pair(1024, 1));
    for (const std::string& image :
         {Png(1025, 1, 1, 0, std::string(130, '\0')), Png(1, 1025, 1, 0, std::string(2050, '\0')),
          Png(0, 1, 1, 0, "\0"s), Png(0xFFFFFFFF, 0xFFFFFFFF, 8, 6, "\0"s)})
        EXPECT_FALSE(LoadedIcon(Ico({image})));
}

TEST(Icon, IsOfTheSizeAskedForFromTheSmallestEntryThatIsAsLarge)
{
    const std::string eight = Square(8, 24, 'G'), sixteen = Square(16, 8, 'R'), best16 = Square(16, 32, 'B'),
                      large = Square(24, 4, 'W'), wide = IconBmp(Picture(8, std::string(32, 'Y')), 4),
                      png = Png(64, 64, 1, 0, std::string(64 * 9, '\0')); // black
    // Images, the size that is asked for, the colour of that which is taken, and the icon's size.
    const std::tuple<std::vector<std::string>, int, int, char, std::size_t, std::size_t> cases[] = {
        {{large, eight, sixteen}, 16, 16, 'R', 16, 16},
        {{eight, large, sixteen}, 0, 0, 'G', 8, 8},
        {{large, eight, sixteen}, 13, 13, 'R', 13, 13},
        {{eight, sixteen, png}, 17, 17, '.', 17, 17},
        {{eight, sixteen}, 100, 90, 'R', 100, 90}, // none is as large
        {{sixteen, wide}, 32, 8, 'Y', 32, 8},
        {{wide, sixteen}, 0, 16, 'R', 16, 16},
        {{wide, eight, large}, 20, 0, 'Y', 20, 8},
        {{sixteen, best16}, 16, 16, 'B', 16, 16}, // the greater depth
        {{best16, sixteen}, 16, 16, 'B', 16, 16}};
    for (const auto& [images, cx, cy, color, width, height] : cases)
        EXPECT_EQ(LoadedIcon(Ico(images), cx, cy).OnGreen(), Picture(height, std::string(width, color)))
            << cx << " by " << cy;
    EXPECT_FALSE(LoadedIcon(Ico({eight}), 1 << 20, 1 << 20));
    // A PNG's type, its bits of a pixel, and the depth below.
    for (const auto& [type, bits, below] :
         {std::tuple{0, 8u, 4u}, {2, 24u, 16u}, {4, 16u, 8u}, {6, 32u, 24u}}) {
        const std::string image = Png(4, 4, 8, type, std::string(4 + 2 * bits, '\0'));
        const std::vector<std::string> more{Square(4, below, 'W'), image}, alike{Square(4, bits, 'W'), image};
        EXPECT_NE(LoadedIcon(Ico(more), 4, 4).OnGreen()[0][0], 'W') << type;
        EXPECT_EQ(LoadedIcon(Ico(alike), 4, 4).OnGreen()[0][0], 'W') << type;
    }
}

// A pixel is the mean of those that it stands for, in which what is transparent has no colour.
TEST(Icon, IsScaledWithItsOpacity)
{
    const auto scaled = [](const Picture& picture, int cx, int cy) {
        const Paper paper(cx, cy, 'G');
        DrawIcon(paper, 0, 0, LoadedIcon(Ico({IconBmp(picture, 24)}), cx, cy));
        std::vector<COLORREF> pixels;
        for (int n = 0; n < cx * cy; ++n)
            pixels.push_back(GetPixel(paper, n % cx, n / cx));
        return pixels;
    };
    using Colors = std::vector<COLORREF>;
    const COLORREF red = ColorOf('R'), green = ColorOf('G'), light = RGB(128, 128, 255);
    EXPECT_EQ(scaled({"RR..", "RR..", "WBWB", "BWBW"}, 2, 2), (Colors{red, green, light, light}));
    EXPECT_EQ(scaled({"R..", "...", "..."}, 1, 1), Colors{RGB(28, 227, 0)}); // a ninth of it is red
    EXPECT_EQ(scaled({"RRB"}, 2, 1), (Colors{red, RGB(85, 0, 170)}));
    EXPECT_EQ(scaled({"RRR........"}, 1, 1), Colors{RGB(70, 185, 0)}); // three elevenths, rounded up
    EXPECT_EQ(scaled({"RRRKKKKKKKK"}, 1, 1), Colors{RGB(70, 0, 0)});
    const LoadedIcon twice(Ico({IconBmp({"R.", "BW"}, 24)}), 4, 4);
    EXPECT_EQ(twice.OnGreen(), (Picture{"RRGG", "RRGG", "BBWW", "BBWW"}));
}

TEST(Icon, EntriesBeyondTheFileOrWithoutASizeAreLeftOut)
{
    Bmp narrow = ToBmp({"R", "R"}, 24), low = narrow, vast = narrow;
    narrow.width = low.height = 0, vast.width = 8193, vast.height = 2 * 8192;
    for (const std::string& none : {Png(0, 4, 1, 0, "\0"s), narrow.Dib(), low.Dib(), vast.Dib()})
        EXPECT_EQ(LoadedIcon(Ico({none, Square(24, 8)})).Size(), std::pair(24, 24));
    std::string file = Ico({Square(16, 8), Square(24, 8, 'B')});
    file.replace(6 + 12, 4, Le(file.size(), 4));
    EXPECT_EQ(LoadedIcon(file, 16, 16).OnGreen(), Picture(16, std::string(16, 'B')));
    file[4] = 1; // of the second one the file says nothing
    EXPECT_FALSE(LoadedIcon(file));
}

TEST(Icon, WhatIsNoIconOrCutGivesNullAndOtherDamageDoesNoHarm)
{
    const std::string sound = Ico({Square(4, 8)});
    ASSERT_TRUE(LoadedIcon(sound));
    EXPECT_FALSE(LoadedIcon(sound, -1, 16));
    std::string cursor = sound, none = sound.substr(0, 4) + Le(0, 2), many = sound;
    cursor[2] = 2;
    many[5] = '\x7F';
    Bmp topDown = ToBmp({"RR", "GG"}, 24, true), odd = ToBmp({"RR", "GG", "BB"}, 24),
        packed = ToBmp({"RR", "GG"}, 8);
    packed.compression = BI_RLE8, packed.pixels = "\2\1\0\1"s + std::string(20, '\0');
    for (const std::string& file : {cursor, none, many, Ico({topDown.Dib()}), Ico({odd.Dib()}),
                                    Ico({packed.Dib()}), ToBmp({"R"}, 24).File(), ""s})
        EXPECT_FALSE(LoadedIcon(file));
    const std::string image = IconBmp({"R.G", "B.W"}, 8);
    ForEachCut(Ico({image}), [](const std::string& file) { EXPECT_FALSE(LoadedIcon(file)) << file.size(); });
    for (const std::string& file : {Ico({image, IconBmp({"R."}, 32)}), Ico({Png(2, 1, 8, 6, "\0abcdefgh"s)})})
        ForEachLie(file, [](const std::string& broken) {
            const LoadedIcon icon(broken, 16, 16);
            EXPECT_EQ(DrawIcon(Paper(2, 2), 0, 0, icon), icon ? 1 : 0);
        });
}

TEST(Icon, DrawingClips)
{
    const LoadedIcon icon(Ico({IconBmp({"RM", "BW"}, 24)}));
    EXPECT_EQ(icon.OnGreen(1, 1), (Picture{"GG", "GR"}));
    EXPECT_EQ(icon.OnGreen(-1, 0), (Picture{"MG", "WG"}));
    EXPECT_EQ(icon.OnGreen(1, 0), (Picture{"GR", "GB"}));
    for (const int far : {2, -2, INT32_MAX, INT32_MIN})
        EXPECT_EQ(icon.OnGreen(far, far), (Picture{"GG", "GG"})) << far;
}

TEST(Icon, HandlesEndOnceAndAreNoOthers)
{
    const NoLeak noLeak;
    const auto icon = static_cast<HICON>(LoadFile(Ico({Square(4, 8)}), IMAGE_ICON));
    const Paper paper(4, 4);
    SIZE size{};
    EXPECT_EQ(DeleteObject(icon), 0);
    EXPECT_EQ(GetIconSize(icon, nullptr), 0);
    EXPECT_EQ(DrawIcon(nullptr, 0, 0, icon), 0);
    EXPECT_EQ(DestroyIcon(icon), 1);
    for (const HICON none : {icon, HICON{}, reinterpret_cast<HICON>(paper.Bitmap())}) {
        EXPECT_EQ(DestroyIcon(none), 0);
        EXPECT_EQ(GetIconSize(none, &size), 0);
        EXPECT_EQ(DrawIcon(paper, 0, 0, none), 0);
    }
}

} // namespace
