#include "KXGifRender.h"
#include "tests/draw/Pictures.h"
#include "tests/platform/gdiplus/Builders.h"

using namespace test;
using testing::ElementsAre;

namespace {

// Shows what deriving classes see.
struct Player : CKXGifRender
{
    using CKXGifRender::CanPlay, CKXGifRender::Release, CKXGifRender::PlayNextFrame;
    using CKXGifRender::FixRender, CKXGifRender::GetFixRenderRect;
    using CKXGifRender::m_dwLastTime, CKXGifRender::m_nCurFrame, CKXGifRender::m_nFrameDelay;
    using CKXGifRender::m_nPlayState;
};

struct GifRender : PictureTest
{
    // Frames of one pixel, each with its delay.
    static std::string Frames(const std::string& letters, const std::vector<unsigned>& delays)
    {
        std::vector<GifFrame> frames;
        for (std::size_t n = 0; n < letters.size(); ++n)
            frames.push_back({.picture = {{letters[n]}}, .delay = delays[n]});
        return Gif(1, 1, frames);
    }
    int Load(Player& loaded, const std::string& file)
    {
        dir.Write("a.gif", file);
        return loaded.Load(dir.Win("a.gif"));
    }
    // The active frame's first pixel.
    char Shown(CKXGifRender& shown)
    {
        dc.FillSolidRect(0, 0, 8, 6, ColorOf('W'));
        shown.Render(&dc, 2, 1);
        return LetterOf(dc.GetPixel(2, 1));
    }

    Player gif;
};

TEST_F(GifRender, FramesGoRoundWithTheirDelays)
{
    // Below 10 ms and above 65,280 ms a frame takes 100.
    ASSERT_EQ(Load(gif, Frames("RGBCMY", {0, 1, 5, 6528, 6529, 65535})), 1);
    EXPECT_EQ(gif.Play(), 1);
    std::string shown;
    std::vector<DWORD> delays;
    for (int n = 0; n < 8; ++n) {
        shown += Shown(gif);
        delays.push_back(gif.m_nFrameDelay);
        gif.PlayNextFrame();
    }
    EXPECT_EQ(shown, "RGBCMYRG");
    EXPECT_THAT(delays, ElementsAre(100, 10, 50, 65280, 100, 100, 100, 10));
}

TEST_F(GifRender, PlayingMovesOneFrameWhenTheDelayHasPassed)
{
    Load(gif, Frames("RGBC", {10, 10, 10, 10}));
    gif.Play();
    gif.m_dwLastTime = 0xFFFFFFF0;
    const auto at = [&](unsigned long dwNow) { return gif.Playing(dwNow) == 1 ? Shown(gif) : '0'; };
    EXPECT_EQ(at(0x53), 'R');             // 99 ms
    EXPECT_EQ(at(0x54), 'G');             // the clock has wrapped
    EXPECT_EQ(at(0x700000054 + 99), 'G'); // only its low 32 bits count
    EXPECT_EQ(at(1000), 'B');             // late: one frame all the same
    EXPECT_EQ(gif.m_dwLastTime, 1000u);
    gif.Stop();
    EXPECT_EQ(Shown(gif), 'B'); // left where it was
    gif.Play();
    EXPECT_EQ(Shown(gif), 'R');
    EXPECT_EQ(gif.m_dwLastTime, 1000u);
}

TEST_F(GifRender, CallsLeadFromStateToState)
{
    Load(gif, Frames("RG", {10, 10}));
    // The result and the state that follow on stopped, playing and paused.
    using Three = std::array<int, 3>;
    const std::tuple<const char*, std::function<int()>, Three, Three> cases[] = {
        {"Play", [&] { return gif.Play(); }, {1, 0, 0}, {1, 1, 2}},
        {"Pause", [&] { return gif.Pause(), 0; }, {0, 0, 0}, {2, 2, 1}},
        {"Stop", [&] { return gif.Stop(); }, {0, 1, 1}, {0, 0, 0}},
        {"Playing", [&] { return gif.Playing(5000); }, {0, 1, 0}, {0, 1, 2}},
    };
    for (const auto& [pszName, call, results, states] : cases)
        for (std::size_t n = 0; n < 3; ++n) {
            gif.m_nPlayState = static_cast<int>(n);
            EXPECT_EQ(call(), results[n]) << pszName << " on " << n;
            EXPECT_EQ(gif.m_nPlayState, states[n]) << pszName << " on " << n;
        }
}

TEST_F(GifRender, OneFrameIsDrawnNotPlayed)
{
    EXPECT_EQ(Load(gif, Frames("R", {10})), 1);
    EXPECT_EQ(gif.CanPlay(), 0);
    EXPECT_EQ(gif.Play(), 0);
    gif.m_nPlayState = 1;
    EXPECT_EQ(gif.Playing(5000), 0);
    EXPECT_EQ(Shown(gif), 'R');
    gif.Render(nullptr, 0, 0);
}

TEST_F(GifRender, PagesWithoutDelaysPlayAtATenthOfASecond)
{
    ASSERT_EQ(Load(gif, Tiff({GrayTiff(1, 1, std::string(1, '\0')), GrayTiff(1, 1, "\xFF")})), 1);
    EXPECT_EQ(gif.CanPlay(), 1);
    gif.m_nFrameDelay = 7;
    EXPECT_EQ(gif.Play(), 1);
    EXPECT_EQ(gif.m_nFrameDelay, 100u);
    EXPECT_EQ(gif.Playing(5000), 1);
    EXPECT_EQ(gif.m_nCurFrame, 1u);
    EXPECT_EQ(Shown(gif), '.'); // pages aren't frames in time: the first stays
}

TEST_F(GifRender, FailedLoadsHaveDroppedTheOldPicture)
{
    const NoLeak noLeak;
    dir.Write("bad.gif", "GIF89a");
    for (const CString& strPath : {dir.Win("none.gif"), dir.Win("bad.gif"), CString()}) {
        Load(gif, Frames("RG", {30, 30}));
        gif.Play();
        gif.m_dwLastTime = 77;
        EXPECT_EQ(gif.Load(strPath), 0);
        EXPECT_EQ(gif.GetImage() == nullptr, strPath.IsEmpty()); // an object without a picture
        EXPECT_EQ(Shown(gif), 'W');
        EXPECT_EQ(gif.m_nPlayState, 1);
        EXPECT_EQ(gif.m_nFrameDelay, 300);
        EXPECT_EQ(gif.m_dwLastTime, 77); // stay
        EXPECT_EQ(gif.Playing(5000), 0);
        gif.PlayNextFrame();
        EXPECT_EQ(gif.m_nCurFrame, 0xFFFFFFFFu);
        gif.Stop();
        EXPECT_EQ(gif.Play(), 0);
    }
}

TEST_F(GifRender, CopiesShareThePictureUntilTheLast)
{
    const NoLeak noLeak;
    {
        Player copy;
        {
            Player first;
            Load(first, Frames("RG", {10, 20}));
            first.Play();
            copy = first;
            first.PlayNextFrame();
        }
        EXPECT_EQ(Shown(copy), 'G'); // the active frame is the picture's
        EXPECT_EQ(copy.m_nCurFrame, 0u);
        copy.PlayNextFrame();
        EXPECT_EQ(copy.m_nFrameDelay, 200u);
        gif = copy;
        copy.Release();
        EXPECT_EQ(copy.GetImage(), nullptr);
        EXPECT_EQ(copy.CanPlay(), 0);
    }
    EXPECT_EQ(Shown(gif), 'G');
    gif.Release();
}

TEST_F(GifRender, AFixedRectangleHoldsThePictureWithinTheOneGiven)
{
    CRect fixed;
    gif.GetFixRenderRect(CRect(1, 2, 3, 4), fixed);
    EXPECT_EQ(fixed, CRect(1, 2, 3, 4)); // no picture
    Gdiplus::Graphics graphics(paper);
    gif.FixRender(graphics, CRect(0, 0, 8, 6));
    EXPECT_EQ(paper.Read(), Block(0, 0, 0, 0));
    Load(gif, Gif(8, 4, {{.picture = Plain(8, 4)}}));
    gif.GetFixRenderRect(CRect(2, 0, 6, 4), fixed);
    EXPECT_EQ(fixed, CRect(2, 1, 6, 3));
    gif.FixRender(graphics, CRect(2, 0, 6, 4));
    EXPECT_EQ(paper.Read(), Block(2, 1, 6, 3));
}

} // namespace
