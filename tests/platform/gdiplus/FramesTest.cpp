#include "tests/platform/gdiplus/Builders.h"
#include "tests/platform/gdiplus/Images.h"

#include <span>

namespace {

using namespace test;

using FramesTest = DrawingTest;

std::vector<Picture> Played(const Loaded& loaded)
{
    std::vector<Picture> frames;
    for (UINT n = 0; n < CountOf(loaded); ++n)
        frames.push_back(Shown(loaded, n));
    return frames;
}

TEST_F(FramesTest, PalettesAndPassesOfFrames)
{
    const Loaded own(Gif(2, 1, {{{"RB"}}, {{"RB"}, 0, 0, 0, 0, false, "BR"}, {{"RB"}}}));
    EXPECT_THAT(Played(own), testing::ElementsAre(Picture{"RB"}, Picture{"RB"}, Picture{"RB"}));
    EXPECT_EQ(own.GetPixelFormat(), PixelFormat8bppIndexed);
    // A remark of what would make red transparent.
    const std::string frame = GifFrameBytes({{"RB"}});
    const std::string remark = "!\xFE\4\1\0\0"s + static_cast<char>(kLetters.find('R')) + '\0';
    EXPECT_EQ(Loaded(GifHead(2, 1) + remark + frame.substr(frame.find(',')) + ';').Letters(), Picture{"RB"});
    std::string first = Gif(3, 1, {{{"KR."}}});
    first[GifHead(3, 1).size() + 6] = 0; // the first colour, black, is the transparent one
    EXPECT_EQ(Loaded(first).Letters(), Picture{" RW"});
    // Rows that come in passes.
    Picture rows;
    for (const char letter : std::string("RGBCMYWRGBCRGBYW"s)) {
        rows.emplace_back(3, letter);
        EXPECT_EQ(Loaded(Gif(0, 0, {{rows, 0, 0, 0, 0, true}})).Letters(), rows);
    }
    EXPECT_EQ(Loaded(Gif(0, 0, {{{"RG"}, 1, 1}})).Letters(), (Picture{"   ", " RG"})); // of the frame's size
    for (const Picture& large :
         {Picture(1, std::string(300, 'R')), Picture(300, "G"), Picture(257, std::string(256, 'B'))})
        EXPECT_EQ(Loaded(Gif(0, 0, {{large}})).Letters(), large);
}

// The frames by plain means: the canvas is kept unless the frame says otherwise.
std::vector<Picture> ByHand(int cx, int cy, const std::vector<GifFrame>& frames)
{
    Picture canvas(static_cast<std::size_t>(cy), std::string(static_cast<std::size_t>(cx), ' '));
    std::vector<Picture> shown;
    for (const GifFrame& frame : frames) {
        const Picture before = canvas;
        const auto each = [&](auto&& change) {
            for (std::size_t y = 0; y < frame.picture.size(); ++y)
                for (std::size_t x = 0; x < frame.picture[y].size(); ++x)
                    if (y + frame.top < canvas.size() && x + frame.left < canvas[0].size())
                        change(canvas[y + frame.top][x + frame.left], frame.picture[y][x]);
        };
        each([](char& at, char letter) { at = letter == '.' ? at : letter; });
        shown.push_back(canvas);
        if (frame.disposal == 2) each([](char& at, char) { at = ' '; });
        if (frame.disposal == 3) canvas = before;
    }
    return shown;
}

TEST_F(FramesTest, AFrameSelectedOutOfOrderShowsWhatPlayingToItShows)
{
    std::minstd_rand random(7);
    const auto below = [&](unsigned n) { return static_cast<std::uint32_t>(random() / 64 % n); };
    for (int nRound = 0; nRound < 30; ++nRound) {
        std::vector<GifFrame> frames(8);
        for (GifFrame& frame : frames) {
            frame = {Picture(1 + below(6)), below(7), below(7), below(6), below(9), below(2) == 1};
            const std::size_t nWidth = 1 + below(6);
            for (std::string& row : frame.picture)
                for (std::size_t x = 0; x < nWidth; ++x)
                    row += "RGBCMY."[below(7)];
        }
        const auto shown = ByHand(6, 5, frames);
        const Loaded loaded(Gif(6, 5, frames));
        EXPECT_EQ(Played(loaded), shown);
        for (int i = 0; i < 12; ++i) {
            const UINT nFrame = below(8);
            ASSERT_EQ(Shown(loaded, nFrame), shown[nFrame]) << nFrame;
        }
    }
    const std::vector<GifFrame> hole = {{{"RG"}}, {{"B"}, 1, 0, 2}, {{"Y"}}}; // in what was opaque
    const Loaded holed(Gif(2, 1, hole));
    EXPECT_EQ(Played(holed), ByHand(2, 1, hole));
    EXPECT_EQ(holed.Pixel(1, 0), 0u);
}

// Long GIFs, of which no frames are kept. Each frame has a pixel of its own, in a row.
std::string LongGif(const std::string& letters, std::uint32_t side = 1024, std::uint32_t disposal = 0)
{
    std::vector<GifFrame> frames;
    for (std::size_t n = 0; n < letters.size(); ++n)
        frames.push_back({{{letters[n]}}, static_cast<std::uint32_t>(n), 0, disposal});
    return Gif(side, side, frames);
}

// A mark that is left on the picture is there as long as what it is drawn from isn't decoded anew.
TEST_F(FramesTest, PlayersThatShareAPictureGoOnEachFromItsOwnFrame)
{
    const Loaded shared(LongGif("RGBCMYWRGBCM"));
    ASSERT_GT(CountOf(shared) << 20, MAX_KEPT_FRAMES_PIXELS);
    const auto step = [&](UINT nFrame) {
        EXPECT_EQ(GdipImageSelectActiveFrame(shared, &FrameDimensionTime, nFrame), Ok);
        EXPECT_EQ(shared.Pixel(nFrame, 0), 0xFF000000 | PixelOf("RGBCMYWRGBCM"[nFrame]));
        EXPECT_EQ(shared.Pixel(nFrame + 1, 0), 0u);
        return shared.Pixel(500, 500);
    };
    EXPECT_EQ(step(5), 0u);
    GdipBitmapSetPixel(shared.Bitmap(), 500, 500, 0xFF0000FF);
    EXPECT_EQ(step(0), 0u);
    GdipBitmapSetPixel(shared.Bitmap(), 500, 500, 0xFF00FF00);
    EXPECT_EQ(step(0), 0xFF00FF00);
    for (const UINT n : {1u, 2u, 3u, 4u}) {
        EXPECT_EQ(step(n + 5), 0xFF0000FF);
        EXPECT_EQ(step(n), 0xFF00FF00);
    }
    // At the last frame a player has no more use for its place.
    EXPECT_EQ(step(11), 0xFF0000FF);
    EXPECT_EQ(step(0), 0u);
    EXPECT_EQ(step(5), 0xFF00FF00);
    // Frames that together have as many pixels as may be kept are kept, and players have no places.
    const Loaded kept(LongGif("RGBCMYWR"));
    ASSERT_EQ(CountOf(kept) << 20, MAX_KEPT_FRAMES_PIXELS);
    for (const UINT n : {5u, 0u, 5u}) {
        GdipImageSelectActiveFrame(kept, &FrameDimensionTime, n);
        EXPECT_EQ(kept.Pixel(500, 500), 0u) << n;
        if (n == 5) GdipBitmapSetPixel(kept.Bitmap(), 500, 500, 0xFF0000FF);
    }
}

TEST_F(FramesTest, OnlySoManyPlayersKeepTheirPlaces)
{
    // There are as many as the pixels suffice for, with those that are saved, or 64, and the picture's own.
    for (const auto& [side, disposal, nPlaces] :
         {std::tuple{1024u, 0u, 8u + 1}, {1024u, 3u, 7u + 1}, {256u, 0u, 64u + 1}}) {
        const UINT nLast = 2 * nPlaces;
        const Loaded shared(LongGif(std::string(nLast + 2, 'R'), side, disposal));
        const auto select = [&](UINT n) { GdipImageSelectActiveFrame(shared, &FrameDimensionTime, n); };
        for (UINT n = 0; n < nLast; ++n) { // each at an earlier frame than those before
            select(nLast - n);
            GdipBitmapSetPixel(shared.Bitmap(), 200, 200, 0xFF000000 + n);
        }
        UINT nMarked = 0;
        for (UINT n = nLast; n-- > 0;) {
            select(nLast - n);
            if (shared.Pixel(200, 200) != 0xFF000000 + n) continue;
            EXPECT_EQ(n, nLast - ++nMarked) << "not the latest";
        }
        EXPECT_EQ(nMarked, nPlaces);
    }
}

TEST_F(FramesTest, FramesThatAreCutOffDontCount)
{
    const std::string one = Gif(2, 2, {{{"RG", "BY"}}}), two = Gif(2, 2, {{{"RG", "BY"}}, {{"WW", "WW"}}});
    const std::size_t nSecond = one.size() - 1;
    for (std::size_t size = 0; size < two.size(); ++size) {
        const Loaded cut(two.substr(0, size));
        const bool bAny = size >= nSecond - 4; // the codes of a row are there
        EXPECT_EQ(cut.GetLastStatus(), bAny ? Ok : size < 6 ? UnknownImageFormat : GenericError) << size;
        if (!bAny) continue;
        EXPECT_EQ(CountOf(cut), size == two.size() - 1 ? 2u : 1u) << size;
        EXPECT_EQ(cut.Letters(), size < nSecond - 2 ? (Picture{"RG", "  "}) : (Picture{"RG", "BY"})) << size;
    }
    // Blocks that are all there but hold too little: the rest stays.
    std::string shorter = two;
    const std::size_t at = shorter.rfind("\x80\x07"); // the codes of the second frame
    shorter.replace(at + 3, 3, "\x81\x81\x81");
    EXPECT_EQ(Shown(Loaded(shorter), 1), (Picture{"WW", "BY"}));
    // A frame of 64 million pixels in a few bytes isn't believed.
    std::string lying = Gif(2, 2, {{{"RG", "BY"}}, {{"WW", "WW"}}, {{"WW", "WW"}}});
    lying.replace(nSecond + 8 + 5, 4, "\0\x20\0\x20"s);
    EXPECT_EQ(CountOf(Loaded(lying)), 1u);
    lying.replace(nSecond + 8 + 5, 4, "\0\0\2\0"s); // nor does one without a pixel count
    EXPECT_EQ(CountOf(Loaded(lying)), 1u);
    std::string endless = GifHead(1, 1);
    for (int n = 0; n <= 65'536; ++n)
        endless += GifFrameBytes({{"R"}});
    EXPECT_EQ(CountOf(Loaded(endless)), 65'536u);
}

TEST_F(FramesTest, DelaysOfAllFramesAreOneProperty)
{
    const std::vector<GifFrame> frames = {{{"R"}}, {{"R"}, 0, 0, 0, 6529}, {{"R"}, 0, 0, 2, 65535}};
    std::string file = Gif(1, 1, frames);
    const Loaded gif(file);
    UINT size = 0;
    EXPECT_EQ(GdipGetPropertyItemSize(gif, PropertyTagFrameDelay, &size), Ok);
    ASSERT_EQ(size, sizeof(PropertyItem) + 12);
    std::vector<PropertyItem> block(2);
    EXPECT_EQ(GdipGetPropertyItem(gif, PropertyTagFrameDelay, size - 1, block.data()), InvalidParameter);
    EXPECT_EQ(GdipGetPropertyItem(gif, PropertyTagFrameDelay, size, block.data()), Ok);
    EXPECT_THAT(block[0], testing::FieldsAre(PropertyTagFrameDelay, 12, PropertyTagTypeLong, &block[1]));
    EXPECT_THAT(std::span(static_cast<const DWORD*>(block[0].value), 3),
                testing::ElementsAre(0, 6529, 65535));
    file.insert(GifHead(1, 1).size(), "!\xFE\3abc\0!\xFF\x0BNETSCAPE2.0\3\1\5\0\0"s); // passed over
    EXPECT_EQ(CountOf(Loaded(file)), 3u);

    EXPECT_EQ(GdipGetPropertyItemSize(Loaded(file), 0x112, &size), PropertyNotFound);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(GdipGetPropertyItemSize(Loaded(Gif(1, 1, {frames[1]})), PropertyTagFrameDelay, &size),
              PropertyNotFound);
}

TEST_F(FramesTest, APictureHasOneDimension)
{
    GUID dimension{};
    UINT n = 0;
    const Loaded gif(Gif(1, 1, {{{"R"}}, {{"G"}}})), still(Gif(1, 1, {{{"R"}}})), plain(Picture{"RG"});
    GdipBitmapSetPixel(gif.Bitmap(), 0, 0, 0xFF0000FF);
    for (const auto& [loaded, expected] : {std::pair<const Loaded*, GUID>(&gif, FrameDimensionTime),
                                           {&still, FrameDimensionTime},
                                           {&plain, FrameDimensionPage}}) {
        EXPECT_EQ(GdipImageGetFrameDimensionsCount(*loaded, &n), Ok);
        EXPECT_EQ(n, 1u);
        EXPECT_EQ(GdipImageGetFrameDimensionsList(*loaded, &dimension, 1), Ok);
        EXPECT_EQ(std::memcmp(&dimension, &expected, sizeof dimension), 0);
        EXPECT_EQ(GdipImageGetFrameDimensionsList(*loaded, &dimension, 2), InvalidParameter);
        EXPECT_EQ(GdipImageSelectActiveFrame(*loaded, &dimension, 0), Ok);
        EXPECT_EQ(GdipImageSelectActiveFrame(*loaded, &dimension, 2), InvalidParameter);
    }
    EXPECT_EQ(gif.Letters(), (Picture{"B"})) << "decoded anew";
    EXPECT_EQ(GdipImageSelectActiveFrame(gif, &FrameDimensionPage, 0), InvalidParameter);
    EXPECT_EQ(GdipImageGetFrameCount(gif, &FrameDimensionPage, &n), InvalidParameter);
    EXPECT_EQ(Shown(gif, 1), (Picture{"G"}));
    EXPECT_EQ(GdipImageRotateFlip(gif, RotateNoneFlipX), Ok); // one frame after that
    EXPECT_EQ(gif.Letters(), (Picture{"G"}));
    EXPECT_EQ(CountOf(gif), 1u);
}

} // namespace
