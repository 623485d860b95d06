#include "tests/platform/gdi/LoadedImage.h"
#include "tests/support/Test.h"

#include <ctime>

using namespace test;

namespace {

// A picture in which every pixel differs from its neighbours.
Picture Colorful(int width, int height)
{
    Picture picture;
    for (int y = 0; y < height; ++y) {
        picture.emplace_back();
        for (int x = 0; x < width; ++x)
            picture.back() += "RGBCMYW"[(x * 3 + y * 5 + x * y) % 7];
    }
    return picture;
}

struct Copy
{
    int x, y, cx, cy, xSrc, ySrc;
};

// A pixel, null where there is none.
char* At(Picture& picture, int x, int y)
{
    const bool bIn = x >= 0 && y >= 0 && y < std::ssize(picture) && x < std::ssize(picture[0]);
    return bIn ? &picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] : nullptr;
}

// The result of a copy on a picture: pixel by pixel, from what the source was before. `clip` tells where to
// paint, `key` is left out unless it is 0.
template <class Clip>
Picture Copied(const Picture& to, Picture from, const Copy& copy, char key, Clip&& clip)
{
    Picture result = to;
    for (int n = 0; n < copy.cy; ++n)
        for (int m = 0; m < copy.cx; ++m) {
            char* const pixel = At(result, copy.x + m, copy.y + n);
            const char* const source = At(from, copy.xSrc + m, copy.ySrc + n);
            if (pixel && source && clip(copy.x + m, copy.y + n) && *source != key) *pixel = *source;
        }
    return result;
}

const auto anywhere = [](int, int) { return true; };

int Blit(HDC to, const Copy& copy, HDC from)
{
    return BitBlt(to, copy.x, copy.y, copy.cx, copy.cy, from, copy.xSrc, copy.ySrc, SRCCOPY);
}

int BlitKeyed(HDC to, const Copy& copy, HDC from, char key)
{
    return TransparentBlt(to, copy.x, copy.y, copy.cx, copy.cy, from, copy.xSrc, copy.ySrc, copy.cx, copy.cy,
                          ColorOf(key));
}

} // namespace

TEST(BitBlt, CopiesABlockAndCutsItToBothSurfaces)
{
    const Picture source = Colorful(8, 5); // rows without a gap, which are copied all at once
    const Paper from(source);
    for (const Copy& copy :
         {Copy{3, 1, 2, 2, 2, 1}, Copy{-2, -1, 6, 5, 0, 0}, Copy{3, 2, 9, 9, 0, 0}, Copy{0, 0, 4, 4, -2, -1},
          Copy{0, 0, 4, 4, 6, 3}, Copy{-3, 1, 9, 1, -5, 2}, Copy{1, 1, 0, 3, 0, 0}, Copy{1, 1, -2, 3, 0, 0},
          Copy{9, 9, 3, 3, 0, 0}, Copy{0, 0, 3, 3, 8, 0}, Copy{0, 0, 8, 5, 0, 0}}) {
        for (const bool bAsLarge : {false, true}) {
            const Paper to(bAsLarge ? 8 : 5, bAsLarge ? 5 : 4);
            const Picture before = to.Read();
            EXPECT_EQ(Blit(to, copy, from), 1);
            EXPECT_EQ(to.Read(), Copied(before, source, copy, 0, anywhere)) << copy.x << ' ' << copy.xSrc;
        }
    }
    EXPECT_EQ(from.Read(), source);

    const Paper large(1040, 1030), to(1040, 1030); // more than caches hold
    for (int y = 0; y < 1030; y += 103)
        for (int x = 0; x < 1040; x += 8)
            Blit(large, {x, y, 8, 5, 0, 0}, from);
    EXPECT_EQ(Blit(to, {0, 1, 1040, 1025, 0, 3}, large), 1);
    for (const int y : {1, 2, 101, 102, 103, 927, 1025})
        EXPECT_EQ(Read(to, 0, y, 1040, y + 1), Read(large, 0, y + 2, 1040, y + 3)) << y;
    EXPECT_EQ(GetPixel(to, 0, 0), ColorOf('.'));
    EXPECT_EQ(GetPixel(to, 1039, 1026), ColorOf('.'));

    constexpr int kWidth = (1 << 20) + 15; // in steps of 16, and the rest
    const Paper wide(kWidth, 1, 'R'), row(kWidth, 1);
    for (const int x : {1, 0}) { // off the boundaries of vectors, and on them
        EXPECT_EQ(GetPixel(row, x, 0), ColorOf('.'));
        EXPECT_EQ(Blit(row, {x, 0, kWidth - x, 1, 0, 0}, wide), 1);
        EXPECT_EQ(GetPixel(row, kWidth - 1, 0), ColorOf('R'));
    }
}

// Each direction, within one surface: whole, and cut into parts that lie side by side and below each other.
TEST(BitBlt, OverlappingCopiesReadWhatWasThereBefore)
{
    const Picture before = Colorful(9, 8);
    const std::array<RECT, 5> parts{{{0, 0, 3, 3}, {4, 0, 6, 3}, {7, 0, 9, 3}, {0, 3, 4, 8}, {5, 3, 9, 8}}};
    for (const int nParts : {2, 5}) {
        const Scoped<HRGN> region(CreateRectsRgn(parts.data(), nParts));
        const auto inParts = [&](int x, int y) { return PtInRegion(region, x, y) != 0; };
        for (int dx = -3; dx <= 3; ++dx)
            for (int dy = -3; dy <= 3; ++dy) {
                const Copy copy{dx, dy, 9, 8, 0, 0};
                for (const char key : {'\0', 'G'}) {
                    const Paper whole(before);
                    const Paper clipped(before);
                    SelectClipRgn(clipped, region);
                    for (const HDC dc : {HDC{whole}, HDC{clipped}})
                        EXPECT_EQ(key ? BlitKeyed(dc, copy, dc, key) : Blit(dc, copy, dc), 1);
                    SelectClipRgn(clipped, nullptr);
                    EXPECT_EQ(whole.Read(), Copied(before, before, copy, key, anywhere)) << dx << dy << key;
                    EXPECT_EQ(clipped.Read(), Copied(before, before, copy, key, inParts)) << dx << dy << key;
                }
            }
    }
}

// A clip of many rectangles cuts as one by one they would, and those out of a copy's reach cost it nothing:
// at a look at each, these copies would take minutes.
TEST(BlockCopy, UnderAClipOfManyRectanglesTouchesThoseInItsReach)
{
    constexpr int kSide = 256;
    std::vector<RECT> chess;
    for (int y = 0; y < kSide; ++y)
        for (int x = y % 2; x < kSide; x += 2)
            chess.push_back({x, y, x + 1, y + 1});
    const Scoped<HRGN> region(CreateRectsRgn(chess.data(), static_cast<int>(chess.size())));
    const auto inChess = [](int x, int y) { return (x + y) % 2 == 0; };
    const Paper often(kSide, kSide, 'W');
    SelectClipRgn(often, region);
    const Picture source = Colorful(4, 3);
    const Paper from(source);
    const std::clock_t begin = std::clock();
    for (int n = 0; n < 100'000; ++n)
        Blit(often, {n % kSide, n / kSide % kSide, 4, 3, 0, 0}, from);
    EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 5);
    for (const Copy& copy :
         {Copy{250, 250, 4, 3, 0, 0}, Copy{-1, 9, 4, 3, 0, 0}, Copy{254, 254, 4, 3, 0, 0}}) {
        const Paper paper(kSide, kSide, 'W');
        SelectClipRgn(paper, region);
        EXPECT_EQ(Blit(paper, copy, from), 1);
        EXPECT_EQ(BlitKeyed(paper, {100, 101, 4, 3, 0, 0}, from, 'R'), 1);
        SelectClipRgn(paper, nullptr);
        Picture expected = Copied(Picture(kSide, std::string(kSide, 'W')), source, copy, 0, inChess);
        expected = Copied(expected, source, {100, 101, 4, 3, 0, 0}, 'R', inChess);
        EXPECT_EQ(paper.Read(), expected) << copy.x;
    }
}

TEST(BitBlt, ReadsAndPaintsTheDesktop)
{
    const HDC desktop = GetDC(nullptr);
    BitBlt(desktop, DESKTOP_WIDTH - 1, DESKTOP_HEIGHT - 1, 2, 2, Paper(2, 2, 'R'), 0, 0, SRCCOPY);
    const Paper shot(3, 3, 'W');
    BitBlt(shot, 0, 0, 3, 3, desktop, DESKTOP_WIDTH - 2, DESKTOP_HEIGHT - 2, SRCCOPY);
    EXPECT_EQ(shot.Read(), (Picture{"??W", "?RW", "WWW"}));
    SetPixel(desktop, DESKTOP_WIDTH - 1, DESKTOP_HEIGHT - 1, DESKTOP_COLOR);
    ReleaseDC(nullptr, desktop);
}

TEST(BlockCopy, RefusesBadSurfacesAndOperations)
{
    const Paper paper(2, 2, 'W');
    const Paper from(2, 2, 'R');
    EXPECT_EQ(BitBlt(nullptr, 0, 0, 2, 2, from, 0, 0, SRCCOPY), 0);
    EXPECT_EQ(BitBlt(paper, 0, 0, 2, 2, nullptr, 0, 0, SRCCOPY), 0);
    EXPECT_EQ(BitBlt(paper, 0, 0, 2, 2, from, 0, 0, 0x42), 0);
    EXPECT_EQ(StretchBlt(paper, 0, 0, 2, 2, from, 0, 0, 1, 1, 0x42), 0);
    EXPECT_EQ(StretchBlt(paper, 0, 0, -2, 2, from, 0, 0, 1, 1, SRCCOPY), 0);
    EXPECT_EQ(StretchBlt(paper, 0, 0, 2, 2, from, 0, 0, 1, -1, SRCCOPY), 0);
    EXPECT_EQ(StretchBlt(nullptr, 0, 0, 2, 2, from, 0, 0, 1, 1, SRCCOPY), 0);
    EXPECT_EQ(TransparentBlt(nullptr, 0, 0, 2, 2, from, 0, 0, 2, 2, 0), 0);
    EXPECT_EQ(TransparentBlt(paper, 0, 0, 2, 2, nullptr, 0, 0, 2, 2, 0), 0);
    EXPECT_EQ(TransparentBlt(paper, 0, 0, 2, -2, from, 0, 0, 2, 2, 0), 0);
    for (const Copy& copy : {Copy{0, 0, 2, 2, 1, 0}, Copy{0, 0, 2, 2, 0, -1}, Copy{0, 0, 3, 2, 0, 0},
                             Copy{0, 0, 1, INT_MAX, 0, 1}})
        EXPECT_EQ(BlitKeyed(paper, copy, from, 'G'), 0) << "a source that leaves its surface";
    EXPECT_EQ(paper.Read(), (Picture{"WW", "WW"}));
}

TEST(BlockCopy, OfAnySizeAndPlaceStaysWithinTheSurfaces)
{
    const std::array<int, 7> numbers{INT_MIN, -1'000'000'000, -1, 0, 2, 1'500'000'000, INT_MAX};
    const std::array<int, 4> sizes{0, 2, 1'500'000'000, INT_MAX};
    const Paper paper(3, 3, 'W');
    const Paper from(4, 4, 'R');
    const NoLeak noLeak;
    std::minstd_rand random(1);
    const auto at = [&] { return numbers[random() % 7]; };
    const auto size = [&] { return sizes[random() % 4]; };
    for (int n = 0; n < 10'000; ++n) {
        const std::array<HDC, 2> sources{from, paper};
        const HDC source = sources[random() % 2];
        BitBlt(paper, at(), at(), at(), at(), source, at(), at(), SRCCOPY);
        StretchBlt(paper, at(), at(), size(), size(), source, at(), at(), size(), size(), SRCCOPY);
        TransparentBlt(paper, at(), at(), size(), size(), source, at() % 5, 0, size(), 1 + n % 4, 0xFF);
    }
    EXPECT_NE(GetPixel(paper, 2, 2), CLR_INVALID);
}

// Widths around those of vector registers, at each alignment.
TEST(TransparentBlt, LeavesOutTheKeyAtAnyWidth)
{
    Picture source = Colorful(70, 3);
    source[1].replace(8, 40, 40, 'C'); // whole lines of the cache without a pixel to copy
    const Paper from(source);
    for (int width = 0; width <= 67; ++width) {
        const Copy copy{width % 5, 1, width, 2, width % 3, 0};
        const Paper to(72, 3, 'W');
        ASSERT_EQ(BlitKeyed(to, copy, from, 'C'), 1);
        ASSERT_EQ(to.Read(), Copied(Picture(3, std::string(72, 'W')), source, copy, 'C', anywhere)) << width;
    }
}

TEST(TransparentBlt, HighBytesOfPixelsAndKeyDoNotCount)
{
    Bmp bmp = ToBmp({"KKKK"}, 32);
    bmp.pixels = Le(0xFF00FF00, 4) + Le(0x0000FF00, 4) + Le(0x80FF0000, 4) + Le(0xFF01, 4);
    const Scoped<HBITMAP> loaded(Load(bmp));
    const Paper from(1, 1);
    const HGDIOBJ first = SelectObject(from, loaded);
    const Paper to(4, 1, 'W');
    EXPECT_EQ(TransparentBlt(to, 0, 0, 4, 1, from, 0, 0, 4, 1, 0xAB00FF00), 1);
    EXPECT_EQ(to.Read(), (Picture{"WWR?"}));
    EXPECT_EQ(TransparentBlt(to, 0, 0, 2, 1, from, 0, 0, 4, 1, 0x0000FF00), 1);
    EXPECT_EQ(to.Read(), (Picture{"WRR?"}));
    SelectObject(from, first);
}

TEST(StretchBlt, TakesThePixelThatTheCentreFallsInto)
{
    const Paper from({"RGBC", "MYWR"});
    const auto stretched = [&](int cx, int cy, int xSrc, int cxSrc, int cySrc) {
        const Paper to(cx, cy);
        EXPECT_EQ(StretchBlt(to, 0, 0, cx, cy, from, xSrc, 0, cxSrc, cySrc, SRCCOPY), 1);
        return to.Read();
    };
    EXPECT_EQ(stretched(8, 4, 0, 4, 2), (Picture{"RRGGBBCC", "RRGGBBCC", "MMYYWWRR", "MMYYWWRR"}));
    EXPECT_EQ(stretched(6, 1, 1, 2, 1), (Picture{"GGGBBB"}));
    EXPECT_EQ(stretched(2, 1, 0, 4, 2), (Picture{"RB"})); // on an edge: the left, the upper
    EXPECT_EQ(stretched(3, 2, 0, 4, 2), (Picture{"RGC", "MYR"}));
    EXPECT_EQ(stretched(5, 1, 0, 4, 1), (Picture{"RGGBC"}));
    EXPECT_EQ(stretched(4, 2, 0, 4, 2), from.Read());
    EXPECT_EQ(stretched(4, 4, 0, 4, 2), (Picture{"RGBC", "RGBC", "MYWR", "MYWR"}));
    EXPECT_EQ(stretched(8, 1, -2, 4, 1), (Picture{"....RRGG"})); // nothing outside is read
    EXPECT_EQ(stretched(4, 4, 3, 2, 4), (Picture{"CC..", "RR..", "....", "...."}));
    EXPECT_EQ(stretched(2, 2, 0, 0, 2), (Picture{"..", ".."}));
    EXPECT_EQ(stretched(2, 2, 0, 2, 0), (Picture{"..", ".."}));
}

TEST(StretchBlt, CutsAndKeysLikeTheWhole)
{
    const Paper from({"RGB", "CMY"});
    const Paper to(6, 4, 'W');
    const RECT parts[] = {{0, 0, 2, 2}, {3, 1, 6, 4}};
    const Scoped<HRGN> region(CreateRectsRgn(parts, 2));
    SelectClipRgn(to, region);
    EXPECT_EQ(TransparentBlt(to, -1, -1, 6, 6, from, 0, 0, 3, 2, ColorOf('G')), 1);
    EXPECT_EQ(to.Read(), (Picture{"RW    ", "RW BBW", "   YYW", "   YYW"}));
    EXPECT_EQ(StretchBlt(to, -1, -1, 6, 6, from, 0, 0, 3, 2, SRCCOPY), 1);
    SelectClipRgn(to, nullptr);
    EXPECT_EQ(to.Read(), (Picture{"RGWWWW", "RGWBBW", "WWWYYW", "WWWYYW"}));
    EXPECT_EQ(StretchBlt(to, 4, 3, 4, 4, from, 0, 0, 2, 2, SRCCOPY), 1);
    EXPECT_EQ(to.Read(), (Picture{"RGWWWW", "RGWBBW", "WWWYYW", "WWWYRR"}));
    const Paper high(3, 4, 'W'); // stretched in height alone
    EXPECT_EQ(TransparentBlt(high, 0, 0, 3, 4, from, 0, 0, 3, 2, ColorOf('G')), 1);
    EXPECT_EQ(high.Read(), (Picture{"RWB", "RWB", "CMY", "CMY"}));
}

TEST(StretchBlt, WithinOneSurfaceReadsWhatWasThereBefore)
{
    const Paper paper({"RGBW", "CMYW"});
    EXPECT_EQ(StretchBlt(paper, 0, 0, 4, 2, paper, 0, 0, 2, 1, SRCCOPY), 1);
    EXPECT_EQ(paper.Read(), (Picture{"RRGG", "RRGG"}));
    const Paper keyed({"RGBW"});
    EXPECT_EQ(TransparentBlt(keyed, 0, 0, 4, 1, keyed, 0, 0, 2, 1, ColorOf('R')), 1);
    EXPECT_EQ(keyed.Read(), (Picture{"RGGG"}));
}

TEST(CopyObserver, HearsOfEachCopyAsItWasCalled)
{
    const NoLeak noLeak;
    const Paper to(2, 2);
    const Paper from(2, 2);
    std::vector<KXHost::CopyRecord> heard;
    KXHost::SetCopyObserver([&](const KXHost::CopyRecord& copy) {
        heard.push_back(copy);
        BitBlt(to, 0, 0, 1, 1, from, 0, 0, SRCCOPY); // of its own copies it doesn't hear
        throw 1;
    });
    BitBlt(nullptr, 1, -2, 3, 4, from, 5, 6, SRCCOPY);
    StretchBlt(to, 1, 2, -3, 4, nullptr, 5, 6, 7, 8, 0x42);
    TransparentBlt(to, 1, 2, 3, 4, from, 5, 6, 7, 8, 0x99);
    KXHost::SetCopyObserver({});
    BitBlt(to, 0, 0, 1, 1, from, 0, 0, SRCCOPY);
    using Kind = KXHost::CopyKind;
    const HDC hTo = to, hFrom = from;
    using testing::FieldsAre;
    EXPECT_THAT(heard, testing::ElementsAre(
                           FieldsAre(Kind::BitBlt, nullptr, 1, -2, 3, 4, hFrom, 5, 6, 3, 4, 0u),
                           FieldsAre(Kind::StretchBlt, hTo, 1, 2, -3, 4, nullptr, 5, 6, 7, 8, 0u),
                           FieldsAre(Kind::TransparentBlt, hTo, 1, 2, 3, 4, hFrom, 5, 6, 7, 8, 0x99u)));
}
