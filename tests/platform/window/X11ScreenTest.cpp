// Screens of more than one monitor, and of fine dots.

#include "tests/platform/window/X11Support.h"

namespace {

using namespace test;
using testing::HasSubstr;

struct X11ScreenTest : X11Test
{
    void SetUp() override
    {
        unsetenv("KX_SCALE");
        Begin();
    }
    void TearDown() override
    {
        X11Test::TearDown(); // the desktop's thread reads the environment
        unsetenv("KX_SCALE");
    }
    // The same server, as one finds it who comes now, with that scale.
    void Reopen(const char* scale = "")
    {
        ASSERT_TRUE(KXHost::UseMemoryDesktop());
        setenv("KX_SCALE", scale, 1);
        ASSERT_TRUE(KXHost::UseDisplay(server->Name().c_str()));
    }
};

TEST_F(X11ScreenTest, TheDesktopIsThePrimaryMonitor)
{
    outside->Cover(0, 0, 240, 480, kGreen);
    outside->AddMonitor("left", 0, 0, 240, 480, false);
    outside->AddMonitor("main", 240, 30, 400, 300, true);
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 400, 300}));
    ColorWindow window(kRed, {10, 20, 110, 120}, WS_POPUP, "window");
    ShowSeen(window, kRed, 250, 50);
    EXPECT_NE(outside->Pixel(249, 50), kRed);
    outside->MoveMouse(255, 56);
    EXPECT_TRUE(Pump([&] { return window.Heard("move 0 5,6;"); })) << window.heard;
    EXPECT_EQ(SeenAt(10, 20), kRed);
    EXPECT_NE(SeenAt(9, 20), kRed);
    EXPECT_EQ(SeenAt(399, 449), RGB(0, 0, 0)) << "up to the screen's end";
    EXPECT_EQ(SeenAt(399, 450), CLR_INVALID);
    EXPECT_EQ(SeenAt(400, 449), CLR_INVALID);

    // Another program moves it, to the left monitor.
    outside->Place(outside->Find("window"), 100, 50, 100, 100);
    EXPECT_TRUE(Lies(window.handle, {-140, 20, -40, 120}));

    window.heard.clear();
    outside->AddMonitor("main", 200, 0, 440, 480, true);
    EXPECT_TRUE(Pump([&] { return window.Heard("display 32 440,480;"); })) << window.heard;
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 440, 480}));
    EXPECT_TRUE(Lies(window.handle, {-100, 50, 0, 150}));
    EXPECT_THAT(window.heard, HasSubstr("place 0 -100,50;"));
    EXPECT_EQ(SeenAt(439, 479), RGB(0, 0, 0));

    outside->AddMonitor("main", 220, 0, 420, 480, true);
    EXPECT_TRUE(Lies(window.handle, {-120, 50, -20, 150}));
    EXPECT_TRUE(Pump([&] { return window.Heard("display 32 420,480;"); }));
    window.heard.clear();
    outside->AddMonitor("main", 220, 0, 420, 400, true);
    EXPECT_TRUE(Pump([&] { return window.Heard("display 32 420,400;"); }));
    EXPECT_THAT(window.heard, testing::Not(HasSubstr("place"))) << "only its size changed";
}

TEST_F(X11ScreenTest, WithoutAPrimaryMonitorTheFirstServesAndWithoutAnyTheScreen)
{
    outside->TurnOffMonitors();
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 640, 480}));
    outside->Cover(0, 0, 1, 1, kGreen);
    EXPECT_EQ(SeenAt(0, 0), kGreen);
    outside->AddMonitor("left", 0, 0, 240, 480, false);
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 240, 480}));
    outside->AddMonitor("right", 240, 0, 400, 300, false);
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 240, 480}));
}

TEST_F(X11ScreenTest, WindowsAreEnlargedWhereDotsAreFine)
{
    for (const auto& [resources, width] :
         {std::pair{"*color: red", 640}, {"Xft.dpi:288", 214}, {"*color: red\nXft.dpi:\t192\n", 320}}) {
        outside->SetResources(resources);
        Reopen();
        EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), width) << resources;
    }
    for (const auto& [word, width] : {std::pair{"1", 640}, {"3", 214}, {"9", 214}, {"nonsense", 640}}) {
        Reopen(word);
        EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), width) << "the environment has the last word: " << word;
    }
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 320, 240}));
    ColorWindow window(kRed, {10, 20, 61, 71}, WS_POPUP, "window");
    ShowSeen(window, kRed, 20, 40);
    EXPECT_EQ(outside->PlaceOf(outside->Find("window")), (RECT{20, 40, 122, 142}));
    EXPECT_TRUE(Shows(121, 141, kRed));
    const HDC own = GetDC(window.handle);
    SetPixel(own, 3, 5, kBlue);
    ReleaseDC(window.handle, own);
    EXPECT_TRUE(Shows(27, 51, kBlue));
    for (const POINT at : {POINT{26, 50}, POINT{27, 50}, POINT{26, 51}})
        EXPECT_EQ(outside->Pixel(at.x, at.y), kBlue);
    for (const POINT at : {POINT{25, 50}, POINT{28, 50}, POINT{26, 49}, POINT{26, 52}})
        EXPECT_EQ(outside->Pixel(at.x, at.y), kRed);
    EXPECT_EQ(SeenAt(13, 25), kBlue);
    EXPECT_EQ(SeenAt(14, 25), kRed);
    outside->MoveMouse(27, 51);
    EXPECT_TRUE(Pump([&] { return window.Heard("move 0 3,5;"); })) << window.heard;
    // A size that is no multiple is covered to its last pixel.
    outside->Place(outside->Find("window"), 21, 40, 131, 60);
    EXPECT_TRUE(Lies(window.handle, {10, 20, 76, 50}));
    EXPECT_TRUE(Shows(151, 99, kRed));
}

// The server refuses to read beyond its screen, be it by a part of a pixel: here 539 and 430 dots are seen.
TEST_F(X11ScreenTest, TheScreensEndIsReadAsFarAsPixelsAreWhole)
{
    outside->AddMonitor("main", 101, 50, 500, 400, true);
    outside->Cover(101, 50, 3, 3, kGreen);
    Reopen("3");
    const Paper copy(180, 144);
    BitBlt(copy, 0, 0, 180, 144, Desktop(), 0, 0, SRCCOPY);
    EXPECT_EQ(GetPixel(copy, 0, 0), kGreen);
}

// With shared memory, and on a server that can't share. Where each pixel is nine of its own a row is more
// than a piece.
TEST_F(X11ScreenTest, ManyPixelsAreSentAndReadInPieces)
{
    const std::vector<std::string> apart{"-extension", "MIT-SHM"};
    for (const auto& [scale, options] : {std::pair{1, std::vector<std::string>{}}, {1, apart}, {3, apart}}) {
        Begin("1800x1500x24", options);
        Reopen(std::to_string(scale).c_str());
        const SIZE whole{1800 / scale, 1500 / scale};
        ColorWindow window(kRed, {0, 0, whole.cx, whole.cy});
        ShowSeen(window, kRed, 1799, 1499);
        for (const auto& [x, y] :
             {std::pair{0, 0}, {1799, 0}, {1799, 500}, {1799, 1000}, {900, 750}, {0, 1499}})
            EXPECT_EQ(outside->Pixel(x, y), kRed) << scale << ": " << x << ", " << y;
        const Paper copy(whole.cx, whole.cy);
        BitBlt(copy, 0, 0, whole.cx, whole.cy, Desktop(), 0, 0, SRCCOPY);
        EXPECT_EQ(GetPixel(copy, whole.cx - 1, whole.cy - 1), kRed) << scale;
    }
}

} // namespace
